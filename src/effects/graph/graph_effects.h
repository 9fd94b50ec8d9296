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
#include <cstdint>

#include "base/compiler.h"
#include "effects/term.h"
#include "network/graph.h"

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

inline int32_t degree_of(const Graph& g, int v) { return g.degree[static_cast<size_t>(v)]; }
inline int32_t triangles_at(const Graph& g, int v) { return g.triangles[static_cast<size_t>(v)]; }

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

// Calls fn(k) for every neighbour k of v, from the store's neighbour list: the reads fn makes
// for each (shared-partner entries scattered over an n x n matrix) do not wait on a bit scan
// and overlap in memory.
template <typename Fn>
inline void for_each_neighbour(const Graph& g, int v, Fn&& fn) {
    for (const int32_t k : g.neighbours_of(v)) fn(k);
}

// Asks for partners[k] of every neighbour k of v ahead of reading them. The entries lie
// scattered over an n x n matrix; asked for together, their cache misses overlap instead of
// queueing one behind the other as the summing loop meets them (on a network of 5,000 nodes
// the alternating two-path change runs twice as fast).
inline void prefetch_partners(const Graph& g, const int32_t* partners, int v) {
    for (const int32_t k : g.neighbours_of(v)) prefetch(partners + k);
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

}  // namespace vexa
