#pragma once
// The small helpers that the graph effects share: binomials and the walks over neighbours,
// common neighbours and edges of the graph store.
//
// Change functions follow one convention: the increase of the statistic when {i,j} is added.
// With added = 1 the store excludes the edge everywhere; with added = 0 the adjacency and
// degrees exclude it while shared partners and triangles still count it.
// Notation in the comments: d degree, s = shared partners of i and j, t triangles at a node,
// L the shared partners of a pair, C(m, k) the binomial coefficient (0 when m < k).

#include <algorithm>
#include <array>
#include <bit>
#include <climits>
#include <cstdint>
#include <vector>

#include "base/compiler.h"
#include "effects/term.h"
#include "network/graph.h"
#include "network/sparse_graph.h"

namespace vexa {

// The largest clique size the census and the clique changes can count.
inline constexpr int max_clique_depth = 64;

// C(m, k) for small k; 0 when m < k (so negative m gives 0, not a signed product).
inline int64_t choose(int64_t m, int k) {
    if (m < k || k < 0) return 0;
    int64_t value = 1;
    for (int r = 0; r < k; ++r) value = value * (m - r) / (r + 1);
    return value;
}
inline int64_t choose2(int64_t m) { return m >= 2 ? m * (m - 1) / 2 : 0; }

// The added flag as 1 (addition) or 0 (removal): the shared partners of a pair {x,k} with k a
// neighbour of the other endpoint still count that endpoint during a removal, by one too many.
inline int correction(int added) { return added == 1 ? 0 : -1; }

// Either graph store: the effects read both through the same accessors, so that totals and
// changes agree exactly between them. Where the dense store has a faster path (bit rows, a row
// of the partner matrix) it keeps it through an overload.
template <class G>
concept GraphStore = G::kind == NetworkKind::graph;

template <GraphStore G>
inline int32_t degree_of(const G& g, int v) {
    return g.degree[static_cast<size_t>(v)];
}
template <GraphStore G>
inline int32_t triangles_at(const G& g, int v) {
    return g.triangles[static_cast<size_t>(v)];
}

// The shared partners of a fixed node a with any node k, read as row[k]: the dense store's row
// of its partner matrix, or for the sparse store a reader that looks the pair up.
struct SparsePartnerRow {
    const PairTable* table;
    const uint64_t* filter;  // the node's partner filter
    int a;
    int32_t operator[](int k) const {
        if (!SparseGraph::may_share(filter, k)) return 0;
        return table->get(PairTable::key(a, k));
    }
};
inline const uint16_t* partners_of(const Graph& g, int a) { return g.partners_row(a); }
inline SparsePartnerRow partners_of(const SparseGraph& g, int a) {
    return {&g.shared_partners, g.filter_of(a), a};
}

// Calls fn(k) for every common neighbour k of i and j, stopping once `count` of them (the
// shared-partner count, known beforehand) have been met: on sparse graphs most dyads have
// none and cost nothing. Walks the shorter neighbour list testing the other row's bits, or on
// dense rows ANDs the two rows a word at a time.
template <typename Fn>
inline void for_each_common_neighbour(const Graph& g, int i, int j, int count, Fn&& fn) {
    if (count <= 0) return;
    const std::span<const int32_t> list_i = g.neighbours_of(i);
    const std::span<const int32_t> list_j = g.neighbours_of(j);
    const bool i_shorter = list_i.size() <= list_j.size();
    const std::span<const int32_t> shorter = i_shorter ? list_i : list_j;
    if (shorter.size() <= 4 * static_cast<size_t>(g.row_words)) {
        const uint64_t* other = g.row(i_shorter ? j : i);
        for (const int32_t k : shorter) {
            if ((other[k >> 6] >> (k & 63)) & 1u) {
                fn(k);
                if (--count == 0) return;
            }
        }
        return;
    }
    const uint64_t* a = g.row(i);
    const uint64_t* b = g.row(j);
    for (int w = 0; count > 0 && w < g.row_words; ++w) {
        for (uint64_t both = a[w] & b[w]; both != 0; both &= both - 1) {
            fn(w * 64 + std::countr_zero(both));
            --count;
        }
    }
}

// The sparse store's walk meets the common neighbours in the same order as the dense one: the
// shorter list's order when it is short, else ascending (one scan of the shorter list per
// neighbour met, a path only networks far denser than this store is chosen for take).
// Membership in the other list is a scan of it.
template <typename Fn>
inline void for_each_common_neighbour(const SparseGraph& g, int i, int j, int count, Fn&& fn) {
    if (count <= 0) return;
    const std::span<const int32_t> list_i = g.neighbours_of(i);
    const std::span<const int32_t> list_j = g.neighbours_of(j);
    const bool i_shorter = list_i.size() <= list_j.size();
    const std::span<const int32_t> shorter = i_shorter ? list_i : list_j;
    const std::span<const int32_t> other = i_shorter ? list_j : list_i;
    if (shorter.size() <= 4 * static_cast<size_t>(g.row_words)) {
        for (const int32_t k : shorter) {
            if (list_has(other, k)) {
                fn(k);
                if (--count == 0) return;
            }
        }
        return;
    }
    for (int last = -1; count > 0; --count) {
        int next = INT_MAX;
        for (const int32_t k : shorter) {
            if (k > last && k < next && list_has(other, k)) next = k;
        }
        if (next == INT_MAX) return;
        fn(next);
        last = next;
    }
}

// Calls fn(k) for every neighbour k of v, from the store's neighbour list: the reads fn makes
// for each (shared-partner entries scattered over an n x n matrix) do not wait on a bit scan
// and overlap in memory.
template <GraphStore G, typename Fn>
inline void for_each_neighbour(const G& g, int v, Fn&& fn) {
    for (const int32_t k : g.neighbours_of(v)) fn(k);
}

// Asks for partners[k] of every neighbour k of v ahead of reading them. The entries lie
// scattered over an n x n matrix; asked for together, their cache misses overlap instead of
// queueing one behind the other as the summing loop meets them (on a network of 5,000 nodes
// the alternating two-path change runs twice as fast).
inline void prefetch_partners(const Graph& g, const uint16_t* partners, int v) {
    for (const int32_t k : g.neighbours_of(v)) prefetch(partners + k);
}
// The same for the sparse store: the home slots of the pairs in its table.
inline void prefetch_partners(const SparseGraph& g, const SparsePartnerRow& partners, int v) {
    for (const int32_t k : g.neighbours_of(v)) {
        if (SparseGraph::may_share(partners.filter, k))
            partners.table->prefetch(PairTable::key(partners.a, k));
    }
}

// Calls fn(u, v) once for every edge with u < v.
template <typename Fn>
inline void for_each_edge(const Graph& g, Fn&& fn) {
    for (int u = 0; u < g.node_count; ++u) {
        const uint64_t* r = g.row(u);
        const int first = u + 1;
        for (int w = first >> 6; w < g.row_words; ++w) {
            uint64_t bits = r[w];
            if (w == (first >> 6)) bits &= ~uint64_t{0} << (first & 63);
            for_each_bit(bits, w * 64, [&](int v) { fn(u, v); });
        }
    }
}

// The same order from the sparse store's lists: each node's higher neighbours, sorted.
// O(E log d); allocates a buffer of the largest degree.
template <typename Fn>
inline void for_each_edge(const SparseGraph& g, Fn&& fn) {
    std::vector<int32_t> higher;
    for (int u = 0; u < g.node_count; ++u) {
        higher.clear();
        for (const int32_t v : g.neighbours_of(u)) {
            if (v > u) higher.push_back(v);
        }
        std::sort(higher.begin(), higher.end());
        for (const int32_t v : higher) fn(u, v);
    }
}

}  // namespace vexa
