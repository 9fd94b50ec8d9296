#pragma once
// The sparse graph store: the same network and bookkeeping as the dense Graph (degrees and
// their histogram, shared partners and their histogram, triangles at every node and their
// histogram), in memory that grows with the nodes, the ties and the pairs that share a
// partner, not with n^2. Networks of 100,000 nodes fit in a few hundred megabytes.
//
// - Neighbour lists, one vector a node, kept in the order the dense store keeps its lists
//   (append on addition, the last entry into the hole on removal), so that every walk over
//   them meets the neighbours in the same order and sums come out bit-identical.
// - Shared-partner counts only for pairs that have one, in an open-addressing hash table keyed
//   by the pair (linear probing, backward-shift deletion, so no tombstones build up). A pair
//   whose count falls to 0 leaves the table.
// - Tie membership by scanning the shorter of the two neighbour lists.
//
// After the lists and the table have grown to the chain's largest network, a toggle
// allocates nothing.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/compiler.h"
#include "base/matrix_text.h"
#include "base/progress.h"
#include "network/bookkeeping.h"
#include "network/network_kind.h"
#include "network/pair_table.h"

namespace vexa {

struct Rng;
struct SeedSource;

struct SparseGraph {
    static constexpr NetworkKind kind = NetworkKind::graph;

    int32_t node_count = 0;
    int32_t edge_count = 0;
    // The dense store's 64-bit words per adjacency row: the common-neighbour walk takes the
    // same path as the dense store's (and so meets the neighbours in the same order) by it.
    int32_t row_words = 0;
    // What the store keeps of shared partners (the table, its filter and histogram) and
    // triangles; the containers of what it does not keep are empty.
    Bookkeeping kept = Bookkeeping::all;

    std::vector<std::vector<int32_t>> neighbours;  // n lists, in the dense store's order
    PairTable shared_partners;                     // pairs with at least one shared partner
    std::vector<int32_t> degree;                   // n
    std::vector<int32_t> degree_histogram;         // n: entry d = nodes of degree d
    // n - 1: entry s = unordered pairs with s partners (entry 0 passes 2^31 beyond 65,536 nodes)
    std::vector<int64_t> shared_partner_histogram;
    std::vector<int32_t> triangles;  // n: triangles at each node
    // Entry t = nodes in t triangles. As long as the dense store's ((n-2)(n-1)/2 + 1) up to
    // 2^20 entries; on larger networks it starts at n entries and grows to reach the largest
    // count met.
    std::vector<int32_t> triangle_histogram;
    // Scratch of the update: 1 at the neighbours of one endpoint while the other's are walked.
    std::vector<uint8_t> marks;
    // Per node, filter_words words (one cache line): bit filter_bit(k) of node a's words is set
    // whenever the pair {a, k} enters the table, and is never cleared. A clear bit proves that
    // a and k share no partner, so most lookups of a proposal (pairs without partners, on a
    // sparse network) end in a line of this array instead of a miss in the table.
    static constexpr int filter_words = 8;
    std::vector<uint64_t> partner_filter;

    static uint32_t filter_bit(int k) { return (static_cast<uint32_t>(k) * 0x9e3779b1u) >> 23; }
    const uint64_t* filter_of(int a) const {
        return partner_filter.data() + static_cast<size_t>(a) * filter_words;
    }
    static bool may_share(const uint64_t* filter, int k) {
        const uint32_t bit = filter_bit(k);
        return (filter[bit >> 6] >> (bit & 63)) & 1u;
    }
    // Marks that a and k may share a partner from now on.
    void set_filter(int a, int k) {
        const uint32_t bit = filter_bit(k);
        partner_filter[static_cast<size_t>(a) * filter_words + (bit >> 6)] |= uint64_t{1}
                                                                              << (bit & 63);
    }

    std::span<const int32_t> neighbours_of(int v) const {
        return neighbours[static_cast<size_t>(v)];
    }
    int32_t partners(int a, int b) const {
        if (!may_share(filter_of(a), b)) return 0;
        return shared_partners.get(PairTable::key(a, b));
    }
};

// Allocates an empty sparse graph. Throws SettingError for n < 1.
SparseGraph create_sparse_graph(int n);

// Whether v is in a neighbour list.
inline bool list_has(std::span<const int32_t> list, int v) {
    for (const int32_t k : list) {
        if (k == v) return true;
    }
    return false;
}

inline bool has_edge(const SparseGraph& graph, int i, int j) {
    const std::span<const int32_t> a = graph.neighbours_of(i);
    const std::span<const int32_t> b = graph.neighbours_of(j);
    return a.size() <= b.size() ? list_has(a, j) : list_has(b, i);
}

// As the dense store's: set or clear {i,j} with the edge count, degrees, their histogram and
// the neighbour lists; no-ops when the edge is already in the requested state.
void add_edge(SparseGraph& graph, int i, int j);
void remove_edge(SparseGraph& graph, int i, int j);
// Shared partners, triangles and both histograms after add_edge (added = 1) or remove_edge, as
// far as the store keeps them. Cost: one pass over the neighbours of i and j, a table update
// each.
void update_shared_partners(SparseGraph& graph, int i, int j, int added);
// Drops (and frees) the counts `keep` leaves out, as the dense store's keep_only.
void keep_only(SparseGraph& graph, Bookkeeping keep);
// Makes the shared partners, triangles, their histograms and the partner filter that the store
// keeps anew from the neighbour lists alone, node by node: for a store whose edges came by
// add_edge alone (a reader's), the counts update_shared_partners would have left, in a fraction
// of the time (each pair's count lands in the table once, not once per partner, and the table
// is sized once). `nodes`, when given, hears the nodes done of all (each node counts twice).
void recount_bookkeeping(SparseGraph& graph, const WorkDone* nodes);
// Makes the store the network of the ties (from, to), whatever it held: the lists add_edge of
// every tie in order would leave (a tie already there skipped), entry for entry, with their
// degrees, then the counts of recount_bookkeeping. What a reader of millions of ties needs:
// the lists are laid out once at their final length instead of growing tie by tie.
void fill_from_ties(SparseGraph& graph, std::span<const std::pair<int32_t, int32_t>> ties,
                    const WorkDone* nodes);

// The bytes the store holds now (its lists, tables and arrays, at their capacity).
double held_bytes(const SparseGraph& graph);

// Reads an n x n matrix file or a tie list as read_graph does, then makes the pair counts at
// once (recount_bookkeeping); `progress` hears the bytes read and the nodes counted.
SparseGraph read_sparse_graph(const std::string& path, int n, MatrixNotes* notes = nullptr,
                              const ReadProgress* progress = nullptr);
// A random graph with exactly edge_target edges, drawn as random_graph draws them (the same
// network for the same generator state).
SparseGraph random_sparse_graph(int n, int64_t edge_target, Rng& rng, SeedSource& seeds);

double density(const SparseGraph& graph);

// Recounts every piece of bookkeeping from the neighbour lists alone; empty when consistent.
// O(n + sum of squared degrees).
std::string check_bookkeeping(const SparseGraph& graph);

inline bool has_tie(const SparseGraph& graph, int i, int j) { return has_edge(graph, i, j); }
inline void add_tie(SparseGraph& graph, int i, int j) { add_edge(graph, i, j); }
inline void remove_tie(SparseGraph& graph, int i, int j) { remove_edge(graph, i, j); }
inline void update_after_toggle(SparseGraph& graph, int i, int j, int added) {
    update_shared_partners(graph, i, j, added);
}
inline int64_t tie_count(const SparseGraph& graph) { return graph.edge_count; }
// Asks ahead for the partner filters of both ends and the table slot of the pair.
inline void prefetch_dyad(const SparseGraph& graph, int i, int j) {
    if (graph.partner_filter.empty()) return;
    prefetch(graph.filter_of(i));
    prefetch(graph.filter_of(j));
    graph.shared_partners.prefetch(PairTable::key(i, j));
}

// Calls fn(u, v) once for every edge, u < v, from the neighbour lists (as the dense store).
template <typename Fn>
void for_each_tie(const SparseGraph& graph, Fn&& fn) {
    for (int u = 0; u < graph.node_count; ++u) {
        for (const int32_t v : graph.neighbours_of(u)) {
            if (u < v) fn(u, v);
        }
    }
}

}  // namespace vexa
