#pragma once
// The plain structural counts of graphs: edges, stars, triangles, isolates and the
// configurations built from them. Included by the graph catalogue only.

#include <cstddef>
#include <span>
#include <type_traits>

#include "effects/graph/cliques.h"
#include "effects/graph/graph_effects.h"

namespace vexa::graph_terms {

inline double as_double(int64_t v) { return static_cast<double>(v); }

// Sum over the nodes of C(d, k), from the degree histogram.
template <GraphStore G>
inline double star_total(const G& g, int k) {
    double sum = 0.0;
    for (size_t d = 0; d < g.degree_histogram.size(); ++d) {
        const int32_t nodes = g.degree_histogram[d];
        if (nodes != 0)
            sum += static_cast<double>(nodes) * as_double(choose(static_cast<int64_t>(d), k));
    }
    return sum;
}

template <GraphStore G>
inline double star_change(const G& g, int i, int j, int k) {
    return as_double(choose(degree_of(g, i), k - 1) + choose(degree_of(g, j), k - 1));
}

template <GraphStore G>
inline int64_t neighbour_degree_sum(const G& g, int v) {
    int64_t sum = 0;
    for_each_neighbour(g, v, [&](int k) { sum += degree_of(g, k); });
    return sum;
}

template <GraphStore G>
inline int64_t triangle_count(const G& g) {
    int64_t sum = 0;
    for (const int32_t t : g.triangles) sum += t;
    return sum / 3;
}

// Triangle2 gains C(s, 2) for the new edge's own pairs of triangles, and every edge ik or jk to
// a common neighbour k gains one partner: C(L + 1, 2) - C(L, 2) = L pairs each.
template <GraphStore G>
inline int64_t triangle2_increase(const G& g, int i, int j, int added) {
    const int32_t s = g.partners(i, j);
    const auto pi = partners_of(g, i);
    const auto pj = partners_of(g, j);
    const int64_t fix = 2 * correction(added);
    int64_t sum = choose2(s);
    for_each_common_neighbour(g, i, j, s, [&](int k) { sum += pi[k] + pj[k] + fix; });
    return sum;
}

template <GraphStore G>
inline int64_t triangle2_count(const G& g) {
    int64_t sum = 0;
    for_each_edge(g, [&](int u, int v) { sum += choose2(g.partners(u, v)); });
    return sum;
}

// 3-trails through the new edge: as middle edge d_i d_j, as end edge (d_k - 1) for every
// neighbour k of either endpoint.
template <GraphStore G>
inline int64_t path3_increase(const G& g, int i, int j) {
    const int64_t di = degree_of(g, i);
    const int64_t dj = degree_of(g, j);
    return di * dj + (neighbour_degree_sum(g, i) - di) + (neighbour_degree_sum(g, j) - dj);
}

template <GraphStore G>
inline int64_t path3_count(const G& g) {
    int64_t sum = 0;
    for_each_edge(g, [&](int u, int v) {
        sum += static_cast<int64_t>(degree_of(g, u) - 1) * (degree_of(g, v) - 1);
    });
    return sum;
}

// Triangles at i and j before the toggle (during a removal they still count the s triangles
// through the edge).
template <GraphStore G>
inline int64_t triangles_without(const G& g, int v, int32_t s, int added) {
    return triangles_at(g, v) + static_cast<int64_t>(correction(added)) * s;
}

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

// Which Q statistic: the number of two-paths m joining a pair, and whether the pair is tied.
struct QKind {
    int order;
    bool tied;
};

// Adding {i,j} gives every pair {i,k} with k a neighbour of j one more two-path (and {j,k}
// with k a neighbour of i); such a pair is tied when k is a common neighbour. The pair {i,j}
// itself moves from the untied to the tied sum with its s two-paths.
template <GraphStore G>
inline int64_t q_increase(const G& g, int i, int j, int added, QKind kind) {
    const int32_t s = g.partners(i, j);
    int64_t sum = kind.tied ? choose(s, kind.order) : -choose(s, kind.order);
    const auto pi = partners_of(g, i);
    const auto pj = partners_of(g, j);
    const int fix = correction(added);
    const int step = kind.order - 1;  // C(L + 1, m) - C(L, m) = C(L, m - 1)
    // Every entry read below is one of these.
    prefetch_partners(g, pi, j);
    prefetch_partners(g, pj, i);
    if constexpr (std::is_same_v<G, Graph>) {
        const uint64_t* ri = g.row(i);
        const uint64_t* rj = g.row(j);
        int left = degree_of(g, i) + degree_of(g, j);
        for (int w = 0; w < g.row_words && left > 0; ++w) {
            const uint64_t a = ri[w];
            const uint64_t b = rj[w];
            if ((a | b) == 0) continue;
            left -= std::popcount(a) + std::popcount(b);
            const int base = w * 64;
            if (kind.tied) {
                for_each_bit(a & b, base, [&](int k) {
                    sum += choose(pi[k] + fix, step) + choose(pj[k] + fix, step);
                });
            } else {
                for_each_bit(b & ~a, base, [&](int k) { sum += choose(pi[k] + fix, step); });
                for_each_bit(a & ~b, base, [&](int k) { sum += choose(pj[k] + fix, step); });
            }
        }
    } else if (kind.tied) {
        for_each_common_neighbour(g, i, j, s, [&](int k) {
            sum += choose(pi[k] + fix, step) + choose(pj[k] + fix, step);
        });
    } else {
        // Neither list holds the other endpoint, in either state of the store.
        const std::span<const int32_t> ni = g.neighbours_of(i);
        const std::span<const int32_t> nj = g.neighbours_of(j);
        for (const int32_t k : nj) {
            if (!list_has(ni, k)) sum += choose(pi[k] + fix, step);
        }
        for (const int32_t k : ni) {
            if (!list_has(nj, k)) sum += choose(pj[k] + fix, step);
        }
    }
    return sum;
}

template <GraphStore G>
inline int64_t q_count(const G& g, QKind kind) {
    int64_t sum = 0;
    if constexpr (!std::is_same_v<G, Graph>) {
        // Only the pairs the table holds have a two-path.
        g.shared_partners.for_each([&](int u, int v, int32_t partners) {
            if (has_edge(g, u, v) == kind.tied) sum += choose(partners, kind.order);
        });
        return sum;
    }
    for (int u = 0; u < g.node_count; ++u) {
        const auto pu = partners_of(g, u);
        for (int v = u + 1; v < g.node_count; ++v) {
            if (has_edge(g, u, v) == kind.tied) sum += choose(pu[v], kind.order);
        }
    }
    return sum;
}

// edge: the number of edges. O(1).
template <class G>
inline double change_edge(const G&, const Term<G>&, const Workspace&, int, int, int) {
    return 1.0;
}
template <class G>
inline double total_edge(const G& g, const Term<G>&, const Workspace&) {
    return g.edge_count;
}

// k-stars (k = the variant, 2 to 5): the sum over nodes of C(d, k). Change C(d_i, k-1) + C(d_j,
// k-1), O(1); total from the degree histogram, O(n).
template <class G>
inline double change_star(const G& g, const Term<G>& term, const Workspace&, int i, int j, int) {
    return star_change(g, i, j, term.variant);
}
template <class G>
inline double total_star(const G& g, const Term<G>& term, const Workspace&) {
    return star_total(g, term.variant);
}

// Triangle (and P0): the number of triangles. Change s, O(1); total a third of the sum of
// the per-node triangle counts, O(n).
template <class G>
inline double change_triangle(const G& g, const Term<G>&, const Workspace&, int i, int j, int) {
    return g.partners(i, j);
}
template <class G>
inline double total_triangle(const G& g, const Term<G>&, const Workspace&) {
    return as_double(triangle_count(g));
}

// Isolates: nodes of degree 0. Change minus the isolated endpoints, O(1); total O(1).
template <class G>
inline double change_isolates(const G& g, const Term<G>&, const Workspace&, int i, int j, int) {
    return -static_cast<double>((degree_of(g, i) == 0 ? 1 : 0) + (degree_of(g, j) == 0 ? 1 : 0));
}
template <class G>
inline double total_isolates(const G& g, const Term<G>&, const Workspace&) {
    return g.degree_histogram[0];
}

// Triangle2: pairs of triangles sharing an edge, the sum over edges of C(L_e, 2). Change
// O(words) over the common neighbours (nothing when s = 0); total O(n words + E).
template <class G>
inline double change_triangle2(const G& g, const Term<G>&, const Workspace&, int i, int j,
                               int added) {
    return as_double(triangle2_increase(g, i, j, added));
}
template <class G>
inline double total_triangle2(const G& g, const Term<G>&, const Workspace&) {
    return as_double(triangle2_count(g));
}

// Bow_tie: pairs of triangles sharing exactly one node, the sum over v of C(t_v, 2) minus
// twice Triangle2 (a pair sharing an edge is seen at both its shared nodes). Change: at i,
// C(t + s, 2) - C(t, 2) = s t + C(s, 2); at a common neighbour t_k; minus twice the Triangle2
// change. O(words) over the common neighbours.
template <class G>
inline double change_bow_tie(const G& g, const Term<G>&, const Workspace&, int i, int j,
                             int added) {
    const int32_t s = g.partners(i, j);
    const int64_t ti = triangles_without(g, i, s, added);
    const int64_t tj = triangles_without(g, j, s, added);
    const auto pi = partners_of(g, i);
    const auto pj = partners_of(g, j);
    const int fix = correction(added);
    int64_t at_common = 0;
    int64_t t2 = choose2(s);
    for_each_common_neighbour(g, i, j, s, [&](int k) {
        at_common += triangles_at(g, k) + fix;
        t2 += pi[k] + pj[k] + 2 * fix;
    });
    return as_double(s * (ti + tj) + 2 * choose2(s) + at_common - 2 * t2);
}
template <class G>
inline double total_bow_tie(const G& g, const Term<G>&, const Workspace&) {
    int64_t sum = 0;
    for (const int32_t t : g.triangles) sum += choose2(t);
    return as_double(sum - 2 * triangle2_count(g));
}

// 3Path: 3-trails, the sum over edges uv of (d_u - 1)(d_v - 1); a triangle counts three
// times. Change O(words + d_i + d_j); total O(n words + E).
template <class G>
inline double change_path3(const G& g, const Term<G>&, const Workspace&, int i, int j, int) {
    return as_double(path3_increase(g, i, j));
}
template <class G>
inline double total_path3(const G& g, const Term<G>&, const Workspace&) {
    return as_double(path3_count(g));
}

// P3: simple paths on four distinct nodes, 3Path minus three times Triangle. Cost as 3Path.
template <class G>
inline double change_p3(const G& g, const Term<G>&, const Workspace&, int i, int j, int) {
    return as_double(path3_increase(g, i, j) - 3 * int64_t{g.partners(i, j)});
}
template <class G>
inline double total_p3(const G& g, const Term<G>&, const Workspace&) {
    return as_double(path3_count(g) - 3 * triangle_count(g));
}

// Q10, Q20, Q30: the sum over untied pairs of C(L, m), m = 1, 2, 3; Q31: the sum over tied
// pairs of C(L, 3). The variant is 10 m, plus 1 for tied pairs. Change O(words + d_i + d_j)
// (Q10 O(1)); total O(n^2).
inline QKind q_kind(int variant) { return {variant / 10, variant % 10 == 1}; }
template <class G>
inline double change_q(const G& g, const Term<G>& term, const Workspace&, int i, int j, int added) {
    if (term.variant == 10)
        return static_cast<double>(degree_of(g, i) + degree_of(g, j) - 3 * g.partners(i, j));
    return as_double(q_increase(g, i, j, added, q_kind(term.variant)));
}
template <class G>
inline double total_q(const G& g, const Term<G>& term, const Workspace&) {
    return as_double(q_count(g, q_kind(term.variant)));
}

// 4Cycle: 4-cycles, half the sum over unordered pairs of C(L, 2). Change: the sum over
// neighbours k of j of the partners of i and k (less the stale j during a removal),
// O(words + d_j); total from the shared-partner histogram, O(n).
template <class G>
inline double change_cycle4(const G& g, const Term<G>&, const Workspace&, int i, int j, int added) {
    const auto pi = partners_of(g, i);
    const int fix = correction(added);
    prefetch_partners(g, pi, j);
    int64_t sum = 0;
    for_each_neighbour(g, j, [&](int k) { sum += pi[k] + fix; });
    return as_double(sum);
}
template <class G>
inline double total_cycle4(const G& g, const Term<G>&, const Workspace&) {
    int64_t sum = 0;
    for (size_t s = 0; s < g.shared_partner_histogram.size(); ++s) {
        sum += g.shared_partner_histogram[s] * choose2(static_cast<int64_t>(s));
    }
    return as_double(sum / 2);
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

// k-cliques, k = 4..7 (the variant): read from the census and the clique changes of the
// workspace, O(1).
template <class G>
inline double change_clique(const G&, const Term<G>& term, const Workspace& workspace, int, int,
                            int) {
    return clique_entry(workspace.clique_changes, static_cast<size_t>(term.variant));
}
template <class G>
inline double total_clique(const G&, const Term<G>& term, const Workspace& workspace) {
    return clique_entry(workspace.clique_counts, static_cast<size_t>(term.variant));
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

// 2_3star: 2-stars minus half the 3-stars. Change O(1) (the bracket is halved twice in
// floating point, so the result does not depend on the order edges arrive); total O(n).
template <class G>
inline double change_two3star(const G& g, const Term<G>&, const Workspace&, int i, int j, int) {
    const int64_t di = degree_of(g, i);
    const int64_t dj = degree_of(g, j);
    return as_double(di + dj) - as_double((di - 1) * di + (dj - 1) * dj) / 4.0;
}
template <class G>
inline double total_two3star(const G& g, const Term<G>&, const Workspace&) {
    return star_total(g, 2) - star_total(g, 3) / 2.0;
}

// 1_2triangle: three times Triangle minus half Triangle2. Cost as Triangle2.
template <class G>
inline double change_one2triangle(const G& g, const Term<G>&, const Workspace&, int i, int j,
                                  int added) {
    return 3.0 * g.partners(i, j) - as_double(triangle2_increase(g, i, j, added)) / 2.0;
}
template <class G>
inline double total_one2triangle(const G& g, const Term<G>&, const Workspace&) {
    return 3.0 * as_double(triangle_count(g)) - as_double(triangle2_count(g)) / 2.0;
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
