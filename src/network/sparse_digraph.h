#pragma once
// The sparse digraph store: the same network and bookkeeping as the dense Digraph (arc and
// mutual-dyad counts, in-, out- and mutual degrees with the two degree histograms, and the
// three two-path counts), in memory that grows with the nodes, the arcs and the pairs that
// have a two-path, not with n^2.
//
// - Out- and in-neighbour lists, one vector a node each, kept in the order the dense store
//   keeps its lists (append on addition, the last entry into the hole on removal), so that
//   every walk over them meets the neighbours in the same order and sums come out
//   bit-identical.
// - The common receivers and common senders of unordered pairs, and the two-paths a->x->b of
//   ordered pairs, only for pairs whose count is not 0, each in a PairTable.
// - Arc membership by scanning the shorter of the sender's out-list and the receiver's
//   in-list.
//
// Counts are 32 bits wide, so no node count is refused for their sake. After the lists and
// tables have grown to the chain's largest network, a toggle allocates nothing.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/matrix_text.h"
#include "base/progress.h"
#include "network/bookkeeping.h"
#include "network/network_kind.h"
#include "network/pair_table.h"

namespace vexa {

struct Rng;
struct SeedSource;
struct Workspace;

struct SparseDigraph {
    static constexpr NetworkKind kind = NetworkKind::digraph;

    int32_t node_count = 0;
    int32_t arc_count = 0;
    int32_t mutual_count = 0;  // mutual dyads, each counted once
    // Which of the three pair tables the store keeps; those it does not keep stay empty.
    Bookkeeping kept = Bookkeeping::all;

    std::vector<std::vector<int32_t>> out_lists;  // receivers of each node, in dense order
    std::vector<std::vector<int32_t>> in_lists;   // senders of each node, in dense order
    std::vector<int32_t> in_degree_values;
    std::vector<int32_t> out_degree_values;
    std::vector<int32_t> mutual_degree_values;
    std::vector<int32_t> in_degree_histogram;   // n: entry d = nodes of in-degree d
    std::vector<int32_t> out_degree_histogram;  // n: entry d = nodes of out-degree d
    PairTable common_receivers;                 // {a, b}: #x with a->x and b->x
    PairTable common_senders;                   // {a, b}: #x with x->a and x->b
    PairTable two_paths;                        // (a, b): #x with a->x->b

    int32_t out_degree(int v) const { return out_degree_values[static_cast<size_t>(v)]; }
    int32_t in_degree(int v) const { return in_degree_values[static_cast<size_t>(v)]; }
    int32_t mutual_degree(int v) const { return mutual_degree_values[static_cast<size_t>(v)]; }
    std::span<const int32_t> out_neighbours(int v) const {
        return out_lists[static_cast<size_t>(v)];
    }
    std::span<const int32_t> in_neighbours(int v) const { return in_lists[static_cast<size_t>(v)]; }
    bool has_arc(int i, int j) const {
        const std::vector<int32_t>& out = out_lists[static_cast<size_t>(i)];
        const std::vector<int32_t>& in = in_lists[static_cast<size_t>(j)];
        return out.size() <= in.size() ? std::find(out.begin(), out.end(), j) != out.end()
                                       : std::find(in.begin(), in.end(), i) != in.end();
    }
    int32_t receivers(int a, int b) const { return common_receivers.get(PairTable::key(a, b)); }
    int32_t senders(int a, int b) const { return common_senders.get(PairTable::key(a, b)); }
    int32_t paths(int a, int b) const { return two_paths.get(PairTable::ordered_key(a, b)); }
    // Ask for the table slots of pair entries ahead of reading them.
    void prefetch_receivers(int a, int b) const { common_receivers.prefetch(PairTable::key(a, b)); }
    void prefetch_senders(int a, int b) const { common_senders.prefetch(PairTable::key(a, b)); }
    void prefetch_paths(int a, int b) const { two_paths.prefetch(PairTable::ordered_key(a, b)); }
};

// An empty sparse digraph. Throws SettingError for n < 1.
SparseDigraph create_sparse_digraph(int n);

// As the dense store's: set or clear arc i->j with the arc and mutual counts, degrees,
// histograms and neighbour lists; no-ops when the arc is already in the requested state.
void add_arc(SparseDigraph& digraph, int i, int j);
void remove_arc(SparseDigraph& digraph, int i, int j);
// The three two-path counts after add_arc (added = 1) or remove_arc (any other value) of i->j.
// Cost: one pass over the out- and in-neighbours of i and j, a table update each.
void update_two_paths(SparseDigraph& digraph, int i, int j, int added);
// Drops (and frees) the tables `keep` leaves out, as the dense store's keep_only.
void keep_only(SparseDigraph& digraph, Bookkeeping keep);
// Makes the pair tables the store keeps anew from the out- and in-lists alone, node by node:
// for a store whose arcs came by add_arc alone (a reader's), the counts update_two_paths would
// have left, in a fraction of the time (each pair's count lands in its table once, and each
// table is sized once). `nodes`, when given, hears the nodes done of all (each node counts
// twice per table).
void recount_bookkeeping(SparseDigraph& digraph, const WorkDone* nodes);
// Makes the store the network of the arcs (from, to), whatever it held: the lists add_arc of
// every arc in order would leave (an arc already there skipped), entry for entry, with their
// degrees and mutual dyads, then the tables of recount_bookkeeping.
void fill_from_ties(SparseDigraph& digraph, std::span<const std::pair<int32_t, int32_t>> arcs,
                    const WorkDone* nodes);

// The bytes the store holds now (its lists, tables and arrays, at their capacity).
double held_bytes(const SparseDigraph& digraph);

// Reads an n x n matrix file or a tie list as read_digraph does (the same notes and errors),
// then makes the pair counts at once (recount_bookkeeping); `progress` hears the bytes read and
// the nodes counted.
SparseDigraph read_sparse_digraph(const std::string& path, int n, MatrixNotes* notes = nullptr,
                                  const ReadProgress* progress = nullptr);
// A random digraph with exactly arc_target arcs, drawn as random_digraph_by_count draws them
// (the same network for the same generator state).
SparseDigraph random_sparse_digraph(int n, int64_t arc_target, Rng& rng, SeedSource& seeds);

double density(const SparseDigraph& digraph);
double mean_degree(const SparseDigraph& digraph);

// Recounts every piece of bookkeeping from the out-lists alone (the in-lists included) and
// returns a description of the first disagreement, or an empty string when the store is
// consistent. O(n + arcs + sum of products of in- and out-degrees).
std::string check_bookkeeping(const SparseDigraph& digraph);

inline bool has_tie(const SparseDigraph& digraph, int i, int j) { return digraph.has_arc(i, j); }
inline void add_tie(SparseDigraph& digraph, int i, int j) { add_arc(digraph, i, j); }
inline void remove_tie(SparseDigraph& digraph, int i, int j) { remove_arc(digraph, i, j); }
inline void update_after_toggle(SparseDigraph& digraph, int i, int j, int added) {
    update_two_paths(digraph, i, j, added);
}
inline int64_t tie_count(const SparseDigraph& digraph) { return digraph.arc_count; }
// Asks ahead for the table slots of the pair counts a proposal on (i, j) reads first.
inline void prefetch_dyad(const SparseDigraph& digraph, int i, int j) {
    digraph.prefetch_paths(i, j);
    digraph.prefetch_receivers(i, j);
    digraph.prefetch_senders(i, j);
}

inline void prepare_totals(const SparseDigraph&, Workspace&) {}
inline void prepare_change(const SparseDigraph&, Workspace&, int, int) {}

// Calls fn(a, b) for every arc a->b in the dense store's order: senders in order, each
// sender's receivers sorted. O(arcs log degree); allocates a buffer of the largest out-degree.
template <typename Fn>
void for_each_arc(const SparseDigraph& digraph, Fn&& fn) {
    std::vector<int32_t> sorted;
    for (int a = 0; a < digraph.node_count; ++a) {
        const std::span<const int32_t> list = digraph.out_neighbours(a);
        sorted.assign(list.begin(), list.end());
        std::sort(sorted.begin(), sorted.end());
        for (const int32_t b : sorted) fn(a, b);
    }
}

template <typename Fn>
void for_each_tie(const SparseDigraph& digraph, Fn&& fn) {
    for_each_arc(digraph, fn);
}

}  // namespace vexa
