#pragma once
// The triad census of a digraph: every unordered triple of nodes in one of the 16 isomorphism
// classes of a directed triad. It is not counted triple by triple but derived, densest class
// first, from the configuration counts of the digraph effects (T1 to T10, the in-, out- and
// mixed 2-stars, arcs and mutual dyads), each class taking away what the denser ones already
// account for.

#include <array>
#include <cstdint>
#include <cstdio>

namespace vexa {

struct Digraph;
struct SparseDigraph;

inline constexpr int triad_class_count = 16;

// The classes in the order the census lists them, densest first.
inline constexpr std::array<const char*, triad_class_count> triad_class_names = {
    "300",  "210",  "120C", "120D", "120U", "201",  "111D", "111U",
    "030T", "030C", "102",  "021D", "021C", "021U", "012",  "003"};

struct TriadCensus {
    int32_t node_count = 0;
    // Entry k: the triples of class triad_class_names[k].
    std::array<double, triad_class_count> counts{};
    // The derivation forms n(n-1)(n-2), (n-2) x arcs and (n-2) x mutual dyads as 32-bit signed
    // products. From 1,292 nodes they cannot hold, and the counts wrap with them: then false,
    // and the counts are not to be presented as the census.
    bool exact = true;
};

// The census of a digraph. Cost: the totals of the configurations it derives from (T1 to T5
// walk the closed triples, O(adjacent pairs x n / 64); the others O(n + arcs)).
// Defined for both digraph stores.
template <class D>
TriadCensus triad_census(const D& digraph);

// "Triad Census:" and one "class\tcount" line per class in census order; for a census that is
// not exact, one line saying why in place of the counts.
void write_triad_census(FILE* out, const TriadCensus& census);

}  // namespace vexa
