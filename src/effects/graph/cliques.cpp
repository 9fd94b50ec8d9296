// The clique census and the per-toggle clique changes. Adding {i,j} creates one k-clique for
// every (k-2)-clique among the common neighbours of i and j, so both come down to counting the
// cliques of a small node set: up to 64 nodes are copied into 64-bit masks and enumerated
// there; a larger set is enumerated on the adjacency rows a word at a time. Nothing is
// allocated; the recursion depth is bounded by the clique depth.

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "effects/graph/cliques.h"
#include "effects/graph/graph_effects.h"

namespace vexa {

namespace {

using CliqueTally = std::array<int64_t, max_clique_depth>;

// Counts the cliques inside `candidates` (a set of local nodes, each with the mask `higher` of
// its neighbours numbered above it): tally[size + m - 1] gains the number of m-node cliques,
// for m up to max_size - size. Every clique is met once, from its lowest node.
void count_in_masks(const uint64_t* higher, uint64_t candidates, int size, int max_size,
                    int64_t* tally) {
    if (size + 1 >= max_size) {
        tally[size] += std::popcount(candidates);
        return;
    }
    while (candidates != 0) {
        const int v = std::countr_zero(candidates);
        candidates &= candidates - 1;
        tally[size] += 1;
        const uint64_t next = candidates & higher[v];
        if (next != 0) count_in_masks(higher, next, size + 1, max_size, tally);
    }
}

// The same on the graph's rows, for sets too large for one word: the candidates at each level
// are the AND of the rows chosen so far, from node `first` on.
void count_in_rows(const Graph& g, const uint64_t** rows, int row_count, int first, int size,
                   int max_size, int64_t* tally) {
    for (int w = first >> 6; w < g.row_words; ++w) {
        uint64_t bits = ~uint64_t{0};
        for (int r = 0; r < row_count; ++r) bits &= rows[r][w];
        if (w == (first >> 6)) bits &= ~uint64_t{0} << (first & 63);
        if (bits == 0) continue;
        if (size + 1 >= max_size) {
            tally[size] += std::popcount(bits);
            continue;
        }
        for_each_bit(bits, w * 64, [&](int v) {
            tally[size] += 1;
            rows[row_count] = g.row(v);
            count_in_rows(g, rows, row_count + 1, v + 1, size + 1, max_size, tally);
        });
    }
}

// Cliques of 1 .. max_size nodes among the common neighbours of i and j numbered from `first`
// on: tally[m-1] gains the m-node cliques.
void count_among_common(const Graph& g, int i, int j, int first, int max_size, int64_t* tally) {
    const uint64_t* ri = g.row(i);
    const uint64_t* rj = g.row(j);
    std::array<int, 64> members;
    int count = 0;
    bool wide = false;
    for (int w = first >> 6; w < g.row_words && !wide; ++w) {
        uint64_t bits = ri[w] & rj[w];
        if (w == (first >> 6)) bits &= ~uint64_t{0} << (first & 63);
        while (bits != 0) {
            if (count == 64) {
                wide = true;
                break;
            }
            members[static_cast<size_t>(count++)] = w * 64 + std::countr_zero(bits);
            bits &= bits - 1;
        }
    }
    if (wide) {
        std::array<const uint64_t*, max_clique_depth + 2> rows{};
        rows[0] = ri;
        rows[1] = rj;
        count_in_rows(g, rows.data(), 2, first, 0, max_size, tally);
        return;
    }
    if (count == 0) return;
    tally[0] += count;
    if (max_size < 2 || count < 2) return;
    std::array<uint64_t, 64> higher;
    for (int a = 0; a < count; ++a) {
        const uint64_t* ra = g.row(members[static_cast<size_t>(a)]);
        uint64_t mask = 0;
        for (int b = a + 1; b < count; ++b) {
            const int v = members[static_cast<size_t>(b)];
            if ((ra[v >> 6] >> (v & 63)) & 1u) mask |= uint64_t{1} << b;
        }
        higher[static_cast<size_t>(a)] = mask;
    }
    // Every member starts a clique of one (counted above); extend each by its higher neighbours.
    for (int a = 0; a < count; ++a) {
        const uint64_t next = higher[static_cast<size_t>(a)];
        if (next != 0) count_in_masks(higher.data(), next, 1, max_size, tally);
    }
}

// The cliques among the common neighbours of i and j numbered from `first` on, for the sparse
// store: up to 64 of them in masks as above, more in candidate lists (which allocate; a
// network with that many common neighbours of one pair is no sparse one).
void count_in_lists(const SparseGraph& g, const std::vector<int32_t>& candidates, int size,
                    int max_size, int64_t* tally) {
    if (size + 1 >= max_size) {
        tally[size] += static_cast<int64_t>(candidates.size());
        return;
    }
    std::vector<int32_t> next;
    for (size_t a = 0; a < candidates.size(); ++a) {
        tally[size] += 1;
        next.clear();
        for (size_t b = a + 1; b < candidates.size(); ++b) {
            if (has_edge(g, candidates[a], candidates[b])) next.push_back(candidates[b]);
        }
        if (!next.empty()) count_in_lists(g, next, size + 1, max_size, tally);
    }
}

void count_among_common(const SparseGraph& g, int i, int j, int first, int max_size,
                        int64_t* tally) {
    const std::span<const int32_t> list_i = g.neighbours_of(i);
    const std::span<const int32_t> list_j = g.neighbours_of(j);
    const bool i_shorter = list_i.size() <= list_j.size();
    const std::span<const int32_t> shorter = i_shorter ? list_i : list_j;
    const std::span<const int32_t> other = i_shorter ? list_j : list_i;
    std::array<int, 64> members;
    int count = 0;
    std::vector<int32_t> wide;
    for (const int32_t k : shorter) {
        if (k < first || !list_has(other, k)) continue;
        if (count < 64) {
            members[static_cast<size_t>(count++)] = k;
        } else {
            if (wide.empty()) wide.assign(members.begin(), members.end());
            wide.push_back(k);
        }
    }
    if (!wide.empty()) {
        count_in_lists(g, wide, 0, max_size, tally);
        return;
    }
    if (count == 0) return;
    tally[0] += count;
    if (max_size < 2 || count < 2) return;
    std::array<uint64_t, 64> higher;
    for (int a = 0; a < count; ++a) {
        uint64_t mask = 0;
        for (int b = a + 1; b < count; ++b) {
            if (has_edge(g, members[static_cast<size_t>(a)], members[static_cast<size_t>(b)]))
                mask |= uint64_t{1} << b;
        }
        higher[static_cast<size_t>(a)] = mask;
    }
    for (int a = 0; a < count; ++a) {
        const uint64_t next = higher[static_cast<size_t>(a)];
        if (next != 0) count_in_masks(higher.data(), next, 1, max_size, tally);
    }
}

int usable_depth(const Workspace& w) {
    return std::min({static_cast<int>(w.clique_depth), max_clique_depth,
                     static_cast<int>(w.clique_counts.size()),
                     static_cast<int>(w.clique_changes.size())});
}

}  // namespace

namespace {

// The census: each k-clique (k >= 3) is found once, from the edge of its two lowest nodes,
// among their common neighbours above both. O(E words) plus the cliques themselves.
template <class G>
void census(const G& g, Workspace& w) {
    const int depth = usable_depth(w);
    if (depth < 1) return;
    std::fill(w.clique_counts.begin(), w.clique_counts.end(), 0.0);
    w.clique_counts[0] = g.node_count;
    if (depth >= 2) w.clique_counts[1] = g.edge_count;
    if (depth < 3) return;
    CliqueTally tally{};
    for_each_edge(
        g, [&](int u, int v) { count_among_common(g, u, v, v + 1, depth - 2, tally.data()); });
    for (int k = 3; k <= depth; ++k) {
        w.clique_counts[static_cast<size_t>(k - 1)] =
            static_cast<double>(tally[static_cast<size_t>(k - 3)]);
    }
}

// The k-cliques that adding {i,j} creates: 0, 1 and s for k = 1, 2, 3, and the (k-2)-cliques
// among the common neighbours beyond. Nothing to enumerate when fewer than two common
// neighbours exist, which is most dyads of a sparse graph.
template <class G>
void changes_of(const G& g, Workspace& w, int i, int j) {
    const int depth = usable_depth(w);
    if (depth < 1) return;
    double* changes = w.clique_changes.data();
    const int32_t s = g.partners(i, j);
    changes[0] = 0.0;
    if (depth >= 2) changes[1] = 1.0;
    if (depth >= 3) changes[2] = s;
    if (depth < 4) return;
    for (int k = 4; k <= depth; ++k) changes[k - 1] = 0.0;
    if (s < 2) return;
    CliqueTally tally{};
    count_among_common(g, i, j, 0, depth - 2, tally.data());
    for (int k = 4; k <= depth; ++k)
        changes[k - 1] = static_cast<double>(tally[static_cast<size_t>(k - 3)]);
}

}  // namespace

void count_cliques(const Graph& g, Workspace& w) { census(g, w); }
void count_cliques(const SparseGraph& g, Workspace& w) { census(g, w); }
void fill_clique_changes(const Graph& g, Workspace& w, int i, int j) { changes_of(g, w, i, j); }
void fill_clique_changes(const SparseGraph& g, Workspace& w, int i, int j) {
    changes_of(g, w, i, j);
}

void prepare_totals(const Graph& graph, Workspace& workspace) {
    if (workspace.clique_depth >= 1) count_cliques(graph, workspace);
}
void prepare_totals(const SparseGraph& graph, Workspace& workspace) {
    if (workspace.clique_depth >= 1) count_cliques(graph, workspace);
}

}  // namespace vexa
