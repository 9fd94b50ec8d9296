#pragma once
// The change and total functions of every graph structural effect, one pair per catalogue
// row, and the small helpers they share. The catalogue table points at these; nothing else
// should call them directly except the combiner and the totals pass.
//
// Change functions follow one convention (see GraphChangeFn): the increase of the statistic
// when {i,j} is added. With added = 1 the store excludes the edge everywhere; with added = 0
// the adjacency and degrees exclude it while shared partners and triangles still count it.
// Notation in the comments: d degree, s = shared partners of i and j, t triangles at a node,
// L the shared partners of a pair, C(m, k) the binomial coefficient (0 when m < k).

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

#include "effects/graph_catalogue.h"
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

inline int32_t degree_of(const Graph& g, int v) { return g.degree[static_cast<size_t>(v)]; }
inline int32_t triangles_at(const Graph& g, int v) { return g.triangles[static_cast<size_t>(v)]; }

// Calls fn(k) for every common neighbour k of i and j, stopping once `count` of them (the
// shared-partner count, known beforehand) have been met: on sparse graphs most dyads have
// none and cost nothing.
template <typename Fn>
inline void for_each_common_neighbour(const Graph& g, int i, int j, int count, Fn&& fn) {
    const uint64_t* a = g.row(i);
    const uint64_t* b = g.row(j);
    for (int w = 0; count > 0 && w < g.row_words; ++w) {
        for (uint64_t both = a[w] & b[w]; both != 0; both &= both - 1) {
            fn(w * 64 + std::countr_zero(both));
            --count;
        }
    }
}

// Writes the positions of the set bits of words [first, last) of a row to out and returns
// their number; out needs room for every bit plus 1. The first bit of a word is written without
// a branch (a position that does not count is overwritten by the next), so that the words of a
// sparse row, about half of them empty, cost no mispredicted branch each.
inline int gather_bits(const uint64_t* row, int first, int last, int* out) {
    constexpr uint64_t top = uint64_t{1} << 63;  // keeps the bit count defined on an empty word
    int filled = 0;
    for (int w = first; w < last; ++w) {
        const uint64_t bits = row[w];
        const int base = w * 64;
        out[filled] = base + std::countr_zero(bits | top);
        filled += static_cast<int>((bits | (uint64_t{0} - bits)) >> 63);  // 1 when bits != 0
        for (uint64_t rest = bits & (bits - 1); rest != 0; rest &= rest - 1) {
            out[filled++] = base + std::countr_zero(rest);
        }
    }
    return filled;
}

// Calls fn(k) for every neighbour k of v in ascending order, stopping after the last one. The
// neighbours are gathered sixteen words at a time first, so that the reads fn makes for each
// (shared-partner entries scattered over an n x n matrix) are independent of the bit scanning
// and overlap in memory.
template <typename Fn>
inline void for_each_neighbour(const Graph& g, int v, Fn&& fn) {
    constexpr int chunk_words = 16;
    std::array<int, chunk_words * 64 + 1> found;
    int left = degree_of(g, v);
    const uint64_t* r = g.row(v);
    for (int w = 0; w < g.row_words && left > 0; w += chunk_words) {
        const int count = gather_bits(r, w, std::min(w + chunk_words, g.row_words), found.data());
        left -= count;
        for (int a = 0; a < count; ++a) fn(found[static_cast<size_t>(a)]);
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

// Plain counts (graph_effects.cpp).
double change_edge(const Graph& g, const Term& term, int i, int j, int added);
double total_edge(const Graph& g, const Term& term);
double change_star2(const Graph& g, const Term& term, int i, int j, int added);
double change_star3(const Graph& g, const Term& term, int i, int j, int added);
double change_star4(const Graph& g, const Term& term, int i, int j, int added);
double change_star5(const Graph& g, const Term& term, int i, int j, int added);
double total_star2(const Graph& g, const Term& term);
double total_star3(const Graph& g, const Term& term);
double total_star4(const Graph& g, const Term& term);
double total_star5(const Graph& g, const Term& term);
double change_triangle(const Graph& g, const Term& term, int i, int j, int added);
double total_triangle(const Graph& g, const Term& term);
double change_isolates(const Graph& g, const Term& term, int i, int j, int added);
double total_isolates(const Graph& g, const Term& term);
double change_triangle2(const Graph& g, const Term& term, int i, int j, int added);
double total_triangle2(const Graph& g, const Term& term);
double change_bow_tie(const Graph& g, const Term& term, int i, int j, int added);
double total_bow_tie(const Graph& g, const Term& term);
double change_p3(const Graph& g, const Term& term, int i, int j, int added);
double total_p3(const Graph& g, const Term& term);
double change_q10(const Graph& g, const Term& term, int i, int j, int added);
double change_q20(const Graph& g, const Term& term, int i, int j, int added);
double change_q30(const Graph& g, const Term& term, int i, int j, int added);
double change_q31(const Graph& g, const Term& term, int i, int j, int added);
double total_q10(const Graph& g, const Term& term);
double total_q20(const Graph& g, const Term& term);
double total_q30(const Graph& g, const Term& term);
double total_q31(const Graph& g, const Term& term);
double change_path3(const Graph& g, const Term& term, int i, int j, int added);
double total_path3(const Graph& g, const Term& term);
double change_cycle4(const Graph& g, const Term& term, int i, int j, int added);
double total_cycle4(const Graph& g, const Term& term);
double change_et1(const Graph& g, const Term& term, int i, int j, int added);
double total_et1(const Graph& g, const Term& term);
double change_et2(const Graph& g, const Term& term, int i, int j, int added);
double total_et2(const Graph& g, const Term& term);
double change_unweighted(const Graph& g, const Term& term, int i, int j, int added);
double total_et0(const Graph& g, const Term& term);
double total_etnt(const Graph& g, const Term& term);
double change_two3star(const Graph& g, const Term& term, int i, int j, int added);
double total_two3star(const Graph& g, const Term& term);
double change_one2triangle(const Graph& g, const Term& term, int i, int j, int added);
double total_one2triangle(const Graph& g, const Term& term);
double change_one2et(const Graph& g, const Term& term, int i, int j, int added);
double total_one2et(const Graph& g, const Term& term);

// Cliques (cliques.cpp).
double change_clique4(const Graph& g, const Term& term, int i, int j, int added);
double change_clique5(const Graph& g, const Term& term, int i, int j, int added);
double change_clique6(const Graph& g, const Term& term, int i, int j, int added);
double change_clique7(const Graph& g, const Term& term, int i, int j, int added);
double total_clique4(const Graph& g, const Term& term);
double total_clique5(const Graph& g, const Term& term);
double total_clique6(const Graph& g, const Term& term);
double total_clique7(const Graph& g, const Term& term);

// Alternating effects (graph_alternating.cpp).
double change_as(const Graph& g, const Term& term, int i, int j, int added);
double total_as(const Graph& g, const Term& term);
double change_at(const Graph& g, const Term& term, int i, int j, int added);
double total_at(const Graph& g, const Term& term);
double change_a2p(const Graph& g, const Term& term, int i, int j, int added);
double total_a2p(const Graph& g, const Term& term);
double change_ac(const Graph& g, const Term& term, int i, int j, int added);
double total_ac(const Graph& g, const Term& term);
double change_aet(const Graph& g, const Term& term, int i, int j, int added);
double total_aet(const Graph& g, const Term& term);

}  // namespace vexa
