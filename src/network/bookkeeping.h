#pragma once
// The pair and triangle counts a store may keep beside its ties, degrees and neighbour lists.
// Keeping a count costs every accepted toggle a pass over the neighbours of both ends, most of
// it scattered writes; a model that reads none of it (edge, stars, attribute effects) should
// not pay for it. Each effect declares what it reads, a chain's store keeps the union, and the
// full set is what descriptive statistics and goodness-of-fit measures read.
//
// Graphs use the first two, digraphs the last three; a store ignores the others.

#include <cstdint>

namespace vexa {

enum class Bookkeeping : uint8_t {
    none = 0,
    shared_partners = 1,    // graphs: partners of every pair, and their histogram
    triangles = 2,          // graphs: triangles at every node, and their histogram
    two_paths = 4,          // digraphs: paths a -> x -> b of every ordered pair
    common_senders = 8,     // digraphs: x -> a and x -> b
    common_receivers = 16,  // digraphs: a -> x and b -> x
    all = 31,
};

constexpr Bookkeeping operator|(Bookkeeping a, Bookkeeping b) {
    return static_cast<Bookkeeping>(static_cast<uint8_t>(a) | static_cast<uint8_t>(b));
}
constexpr Bookkeeping operator&(Bookkeeping a, Bookkeeping b) {
    return static_cast<Bookkeeping>(static_cast<uint8_t>(a) & static_cast<uint8_t>(b));
}
constexpr Bookkeeping& operator|=(Bookkeeping& a, Bookkeeping b) { return a = a | b; }
// Whether `kept` holds every count of `asked`.
constexpr bool keeps(Bookkeeping kept, Bookkeeping asked) { return (kept & asked) == asked; }

}  // namespace vexa
