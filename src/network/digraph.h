#pragma once
// The digraph store: one directed network of n nodes without loops, with the bookkeeping that
// change statistics and descriptive statistics read instead of recounting: arc and mutual-dyad
// counts, in-, out- and mutual degrees with the two degree histograms, and three n x n matrices
// of two-path counts. Everything kept is current on every toggle (add_arc or remove_arc, then
// update_two_paths), so a sampler step never recounts. A store keeps all three matrices until
// keep_only drops those a chain's model does not read.
//
// The adjacency is held twice as bit rows of 64-bit words: the out rows (arc i->j is bit j of
// row i) and their transpose, the in rows (bit i of row j). Scans of a node's senders are then
// as word-wide as scans of its receivers. Beside the rows, every node keeps its out- and
// in-neighbours as lists, so that updates and change statistics walk O(degree) entries on
// sparse networks instead of whole rows.
//
// The two-path counters are 16 bits wide. A count never exceeds n - 2, so networks of up to
// 65,537 nodes are exact and larger ones are refused at creation.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "base/compiler.h"
#include "base/large_allocator.h"
#include "base/matrix_text.h"
#include "base/progress.h"
#include "network/bookkeeping.h"
#include "network/network_kind.h"

namespace vexa {

struct Rng;
struct SeedSource;
struct Workspace;

// The largest network whose two-path counts (at most n - 2) fit in 16 bits.
inline constexpr int max_digraph_nodes = 65537;

// The neighbour lists of every node, packed in one array: node v's list is the first
// length(v) entries of row v, rows `stride` entries apart. Packed close, the lists of a sparse
// network stay in cache. A list that outgrows the stride spreads the rows to twice the stride
// in place, within room for n - 1 entries a node reserved (not touched) at creation, so that
// no toggle allocates. A copy reserves the same room, so a copied store keeps that promise.
struct NeighbourLists {
    int32_t node_count = 0;
    int32_t stride = 0;
    std::vector<int32_t, LargeAllocator<int32_t>> entries;

    NeighbourLists() = default;
    explicit NeighbourLists(int n);
    NeighbourLists(const NeighbourLists& other);
    NeighbourLists& operator=(const NeighbourLists& other);
    NeighbourLists(NeighbourLists&&) noexcept = default;
    NeighbourLists& operator=(NeighbourLists&&) noexcept = default;

    const int32_t* row(int v) const {
        return entries.data() + static_cast<size_t>(v) * static_cast<size_t>(stride);
    }
    int32_t* row(int v) {
        return entries.data() + static_cast<size_t>(v) * static_cast<size_t>(stride);
    }
};

struct Digraph {
    static constexpr NetworkKind kind = NetworkKind::digraph;

    int32_t node_count = 0;
    int32_t arc_count = 0;
    int32_t mutual_count = 0;  // mutual dyads, each counted once
    int32_t row_words = 0;     // 64-bit words per adjacency row
    // Which of the three pair matrices the store keeps; those it does not keep are empty.
    Bookkeeping kept = Bookkeeping::all;

    // n rows of row_words each: arc i->j is bit j%64 of word j/64 of out row i, and bit i%64 of
    // word i/64 of in row j. Bits beyond the last node stay clear.
    std::vector<uint64_t> out_rows;
    std::vector<uint64_t> in_rows;
    std::vector<int32_t> in_degree_values;
    std::vector<int32_t> out_degree_values;
    std::vector<int32_t> mutual_degree_values;
    std::vector<int32_t> in_degree_histogram;   // n: entry d = nodes of in-degree d
    std::vector<int32_t> out_degree_histogram;  // n: entry d = nodes of out-degree d
    NeighbourLists out_lists;  // receivers of each node; lengths are the out-degrees
    NeighbourLists in_lists;   // senders of each node; lengths are the in-degrees
    // n x n, row-major, diagonals not kept; on large pages where the system has them.
    // common_receivers[a][b] = #x with a->x and b->x (symmetric)
    // common_senders[a][b]   = #x with x->a and x->b (symmetric)
    // two_paths[a][b]        = #x with a->x->b
    std::vector<uint16_t, LargeAllocator<uint16_t>> common_receivers;
    std::vector<uint16_t, LargeAllocator<uint16_t>> common_senders;
    std::vector<uint16_t, LargeAllocator<uint16_t>> two_paths;

    const uint64_t* out_row(int v) const { return out_rows.data() + offset(v, row_words); }
    const uint64_t* in_row(int v) const { return in_rows.data() + offset(v, row_words); }
    bool has_arc(int i, int j) const { return (out_row(i)[j >> 6] >> (j & 63)) & 1u; }
    int32_t out_degree(int v) const { return out_degree_values[static_cast<size_t>(v)]; }
    int32_t in_degree(int v) const { return in_degree_values[static_cast<size_t>(v)]; }
    int32_t mutual_degree(int v) const { return mutual_degree_values[static_cast<size_t>(v)]; }
    std::span<const int32_t> out_neighbours(int v) const {
        return {out_lists.row(v), static_cast<size_t>(out_degree(v))};
    }
    std::span<const int32_t> in_neighbours(int v) const {
        return {in_lists.row(v), static_cast<size_t>(in_degree(v))};
    }
    int32_t receivers(int a, int b) const {
        return common_receivers[offset(a, node_count) + static_cast<size_t>(b)];
    }
    int32_t senders(int a, int b) const {
        return common_senders[offset(a, node_count) + static_cast<size_t>(b)];
    }
    int32_t paths(int a, int b) const {
        return two_paths[offset(a, node_count) + static_cast<size_t>(b)];
    }
    // Rows of the three matrices, for scans and for asking ahead for scattered entries.
    const uint16_t* receivers_row(int a) const {
        return common_receivers.data() + offset(a, node_count);
    }
    const uint16_t* senders_row(int a) const {
        return common_senders.data() + offset(a, node_count);
    }
    const uint16_t* paths_row(int a) const { return two_paths.data() + offset(a, node_count); }

    static size_t offset(int v, int32_t width) {
        return static_cast<size_t>(v) * static_cast<size_t>(width);
    }
};

// An empty digraph. Throws SettingError for n < 1, for n above 65,537 (the two-path counters
// could pass 65,535) and when the store needs more memory than this machine has.
Digraph create_digraph(int n);

// The bytes a store of n nodes holds at most (its arrays, and the room it reserves for the
// neighbour lists of the densest network).
double digraph_store_bytes(int n);

// Set or clear arc i->j with arc and mutual counts, degrees, histograms and neighbour lists;
// O(1) to add, O(degree) to remove. No-ops when the arc is already in the requested state;
// update_two_paths must then not be called.
void add_arc(Digraph& digraph, int i, int j);
void remove_arc(Digraph& digraph, int i, int j);

// Brings the pair matrices the store keeps up to date after add_arc (added = 1) or remove_arc
// (any other value) of i->j. Cost: one pass over the out- and in-neighbours of i and j for
// each matrix kept.
void update_two_paths(Digraph& digraph, int i, int j, int added);

// Drops (and frees) the matrices `keep` leaves out; it never adds one back. What is kept stays
// exactly as it was, so a trimmed store's totals and changes equal the full store's.
void keep_only(Digraph& digraph, Bookkeeping keep);

// The names a sampler calls for any store.
inline bool has_tie(const Digraph& digraph, int i, int j) { return digraph.has_arc(i, j); }
inline void add_tie(Digraph& digraph, int i, int j) { add_arc(digraph, i, j); }
inline void remove_tie(Digraph& digraph, int i, int j) { remove_arc(digraph, i, j); }
inline void update_after_toggle(Digraph& digraph, int i, int j, int added) {
    update_two_paths(digraph, i, j, added);
}
inline int64_t tie_count(const Digraph& digraph) { return digraph.arc_count; }
// Asks ahead for what a proposal on (i, j) reads first: the adjacency words of both
// directions, the neighbour lists of both ends and the pair counts of (i, j) and (j, i). A
// sampler calls it for the next proposal while the current one waits for its own reads.
inline void prefetch_dyad(const Digraph& d, int i, int j) {
    prefetch(d.out_row(i) + (j >> 6));
    prefetch(d.out_row(j) + (i >> 6));
    prefetch(d.out_lists.row(i));
    prefetch(d.out_lists.row(j));
    prefetch(d.in_lists.row(i));
    prefetch(d.in_lists.row(j));
    const size_t ij = Digraph::offset(i, d.node_count) + static_cast<size_t>(j);
    if (!d.two_paths.empty()) {
        prefetch(d.two_paths.data() + ij);
        prefetch(d.paths_row(j) + i);
    }
    if (!d.common_receivers.empty()) prefetch(d.common_receivers.data() + ij);
    if (!d.common_senders.empty()) prefetch(d.common_senders.data() + ij);
}

// The combiner's hooks: a digraph's effects share no counts that a totals pass or a proposal
// would prepare, so both do nothing.
inline void prepare_totals(const Digraph&, Workspace&) {}
inline void prepare_change(const Digraph&, Workspace&, int, int) {}

// Reads an n x n matrix file of whitespace-separated numbers, row i holding the arcs sent by
// node i; a value of exactly 1 off the diagonal is an arc, anything else is not. Throws
// InputFileError naming the file, and the row and column of a value that is not a number, or
// the row where a short file ends.
// `notes`, when given, counts the cells that are neither 0 nor 1. `progress`, when given, hears
// the bytes read.
Digraph read_digraph(const std::string& path, int n, MatrixNotes* notes = nullptr,
                     const ReadProgress* progress = nullptr);

// A random digraph with exactly arc_target arcs: the generator is reseeded, then senders and
// receivers are drawn in that order until the target is met. Throws SettingError when the
// target is negative or exceeds n(n-1).
Digraph random_digraph_by_count(int n, int64_t arc_target, Rng& rng, SeedSource& seeds);
// A random digraph where each arc i->j (senders, then receivers, in order) is present when
// p >= r for a fresh draw r in [0, 1] rounded to single precision; the generator is reseeded.
Digraph random_digraph_by_density(int n, float p, Rng& rng, SeedSource& seeds);

// Arcs / n / (n-1); 0 for fewer than two nodes.
double density(const Digraph& digraph);
// Arcs per node (the mean in-degree, and the mean out-degree).
double mean_degree(const Digraph& digraph);

// Recounts every piece of bookkeeping the store keeps from the out rows alone (the in rows and
// the neighbour lists included) and returns a description of the first disagreement, or an empty
// string when the store is consistent. O(n^2 words).
std::string check_bookkeeping(const Digraph& digraph);

// Whether bit b of an adjacency row is set.
inline bool bit_of(const uint64_t* row, int b) { return (row[b >> 6] >> (b & 63)) & 1u; }

// Calls fn(a, b) for every arc a->b, senders in order and each sender's receivers in order, so
// that a sum over the arcs depends on the network alone, not on the order its arcs came in.
template <typename Fn>
void for_each_arc(const Digraph& digraph, Fn&& fn) {
    for (int a = 0; a < digraph.node_count; ++a) {
        const uint64_t* row = digraph.out_row(a);
        for (int w = 0; w < digraph.row_words; ++w) {
            for (uint64_t bits = row[w]; bits != 0; bits &= bits - 1) {
                fn(a, w * 64 + std::countr_zero(bits));
            }
        }
    }
}

// The name the samplers use for every store.
template <typename Fn>
void for_each_tie(const Digraph& digraph, Fn&& fn) {
    for_each_arc(digraph, fn);
}

}  // namespace vexa
