#pragma once
// The plain structural counts of graphs: edges, stars, triangles, cliques, isolates and the
// pairs of triangles (Triangle2, Bow_tie and the weighted forms built from them), with the
// helpers the path and edge-triangle families share. Included by the graph catalogue only.

#include <cstddef>

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

// Triangles at i and j before the toggle (during a removal they still count the s triangles
// through the edge).
template <GraphStore G>
inline int64_t triangles_without(const G& g, int v, int32_t s, int added) {
    return triangles_at(g, v) + static_cast<int64_t>(correction(added)) * s;
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

}  // namespace vexa::graph_terms
