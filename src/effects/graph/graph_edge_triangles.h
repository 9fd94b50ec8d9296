#pragma once
// The edge-triangle counts of graphs: triangles with further ties at a corner (1ET, 2ET,
// 1_2et) and edges in no triangle (0ET, ETNT). Included by the graph catalogue only.

#include "effects/graph/graph_counts.h"

namespace vexa::graph_terms {

// 1ET = sum over v of t_v (d_v - 2). At i: t -> t + s and d -> d + 1 gives t + s (d_i - 1);
// at a common neighbour one more triangle at unchanged degree gives d_k - 2.
template <GraphStore G>
inline int64_t et1_increase(const G& g, int i, int j, int added) {
    const int32_t s = g.partners(i, j);
    const int64_t di = degree_of(g, i);
    const int64_t dj = degree_of(g, j);
    int64_t sum =
        triangles_without(g, i, s, added) + triangles_without(g, j, s, added) + (di + dj - 2) * s;
    for_each_common_neighbour(g, i, j, s, [&](int k) { sum += degree_of(g, k) - 2; });
    return sum;
}

template <GraphStore G>
inline int64_t et1_count(const G& g) {
    int64_t sum = 0;
    for (int v = 0; v < g.node_count; ++v) {
        sum += static_cast<int64_t>(triangles_at(g, v)) * (degree_of(g, v) - 2);
    }
    return sum;
}

// 2ET = sum over v of t_v C(d_v - 2, 2). At i: (t + s) C(d_i - 1, 2) - t C(d_i - 2, 2)
// = s C(d_i - 1, 2) + t (d_i - 2) (t is 0 whenever d_i < 2); at a common neighbour C(d_k - 2, 2).
template <GraphStore G>
inline int64_t et2_increase(const G& g, int i, int j, int added) {
    const int32_t s = g.partners(i, j);
    const int64_t di = degree_of(g, i);
    const int64_t dj = degree_of(g, j);
    int64_t sum = s * (choose2(di - 1) + choose2(dj - 1)) +
                  (di - 2) * triangles_without(g, i, s, added) +
                  (dj - 2) * triangles_without(g, j, s, added);
    for_each_common_neighbour(g, i, j, s, [&](int k) { sum += choose2(degree_of(g, k) - 2); });
    return sum;
}

template <GraphStore G>
inline int64_t et2_count(const G& g) {
    int64_t sum = 0;
    for (int v = 0; v < g.node_count; ++v) {
        sum += static_cast<int64_t>(triangles_at(g, v)) * choose2(degree_of(g, v) - 2);
    }
    return sum;
}

// 1ET: a triangle with one further tie at one corner, the sum over v of t_v (d_v - 2).
// Change O(words) over the common neighbours; total O(n).
template <class G>
inline double change_et1(const G& g, const Term<G>&, const Workspace&, int i, int j, int added) {
    return as_double(et1_increase(g, i, j, added));
}
template <class G>
inline double total_et1(const G& g, const Term<G>&, const Workspace&) {
    return as_double(et1_count(g));
}

// 2ET: a triangle with two further ties at one corner, the sum over v of t_v C(d_v - 2, 2).
// Change O(words) over the common neighbours; total O(n).
template <class G>
inline double change_et2(const G& g, const Term<G>&, const Workspace&, int i, int j, int added) {
    return as_double(et2_increase(g, i, j, added));
}
template <class G>
inline double total_et2(const G& g, const Term<G>&, const Workspace&) {
    return as_double(et2_count(g));
}

// 0ET and ETNT have no change statistic: the chain does not carry them, so the combiner
// writes 0 and never weighs them.
template <class G>
inline double change_unweighted(const G&, const Term<G>&, const Workspace&, int, int, int) {
    return 0.0;
}

// 0ET: edges in no triangle. O(n words + E).
template <class G>
inline double total_et0(const G& g, const Term<G>&, const Workspace&) {
    int64_t sum = 0;
    for_each_edge(g, [&](int u, int v) { sum += g.partners(u, v) == 0 ? 1 : 0; });
    return as_double(sum);
}

// ETNT: the sum over v of t_v times the number of v's edges that lie in no triangle.
// O(n words + E).
template <class G>
inline double total_etnt(const G& g, const Term<G>&, const Workspace&) {
    int64_t sum = 0;
    for (int v = 0; v < g.node_count; ++v) {
        const int32_t t = triangles_at(g, v);
        if (t == 0) continue;
        const auto pv = partners_of(g, v);
        int64_t bare = 0;
        for_each_neighbour(g, v, [&](int u) { bare += pv[u] == 0 ? 1 : 0; });
        sum += t * bare;
    }
    return as_double(sum);
}

// 1_2et: 1ET minus half 2ET. Cost as 1ET and 2ET together.
template <class G>
inline double change_one2et(const G& g, const Term<G>&, const Workspace&, int i, int j, int added) {
    return as_double(et1_increase(g, i, j, added)) - as_double(et2_increase(g, i, j, added)) / 2.0;
}
template <class G>
inline double total_one2et(const G& g, const Term<G>&, const Workspace&) {
    return as_double(et1_count(g)) - as_double(et2_count(g)) / 2.0;
}

}  // namespace vexa::graph_terms
