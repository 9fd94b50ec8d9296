#pragma once
// The attribute and covariate effects of both network kinds: totals and exact change
// statistics fed the values of one attribute (a missing binary or continuous value is already
// 0; a missing category matches nothing). Included by the attribute catalogue only.
//
// Notation in the comments: z (binary), x (continuous), c (category) the node values, w the
// covariate, d degree, t triangles at a node, s the shared partners of i and j, D_v the sum
// of z over the neighbours of v, e_v the sum of w_vu over them; for digraphs r = 1 when the
// reverse arc j -> i is present.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "effects/graph/graph_effects.h"
#include "effects/term.h"
#include "network/digraph.h"
#include "network/graph.h"
#include "network/sparse_digraph.h"

namespace vexa::attribute_terms {

// What a tie or a mutual dyad between i and j is worth to the dyadic effects; the row's
// variant names it.
enum DyadValue : int16_t {
    dyad_product = 1,     // z_i z_j, x_i x_j
    dyad_sum = 2,         // z_i + z_j, x_i + x_j
    dyad_difference = 3,  // |x_i - x_j|
    dyad_same = 4,        // c_i = c_j, both known
    dyad_different = 5,   // not the same (a missing category matches nothing)
    dyad_covariate = 6,   // w_ij (graphs: the upper triangle)
    dyad_sender = 7,      // x_i
    dyad_receiver = 8,    // x_j
    dyad_sender_missing = 9,
    dyad_receiver_missing = 10,
};

template <class S>
inline double value_at(const Term<S>& term, int v) {
    return term.values[static_cast<size_t>(v)];
}
template <class S>
inline bool missing_at(const Term<S>& term, int v) {
    return term.missing != nullptr && term.missing[static_cast<size_t>(v)] != 0;
}
// The covariate of the ordered pair (i, j); a graph reads its upper triangle only.
template <class S>
inline double covariate_at(const S& store, const Term<S>& term, int i, int j) {
    if (S::kind == NetworkKind::graph && j < i) std::swap(i, j);
    return term.values[static_cast<size_t>(i) * static_cast<size_t>(store.node_count) +
                       static_cast<size_t>(j)];
}

template <class S>
inline double dyad_value(const S& store, const Term<S>& term, int i, int j) {
    switch (term.variant) {
        case dyad_product: return value_at(term, i) * value_at(term, j);
        case dyad_sum: return value_at(term, i) + value_at(term, j);
        case dyad_difference: return std::fabs(value_at(term, i) - value_at(term, j));
        case dyad_same:
        case dyad_different: {
            const bool same = !missing_at(term, i) && !missing_at(term, j) &&
                              value_at(term, i) == value_at(term, j);
            return same == (term.variant == dyad_same) ? 1.0 : 0.0;
        }
        case dyad_covariate: return covariate_at(store, term, i, j);
        case dyad_sender: return value_at(term, i);
        case dyad_receiver: return value_at(term, j);
        case dyad_sender_missing: return missing_at(term, i) ? 1.0 : 0.0;
        case dyad_receiver_missing: return missing_at(term, j) ? 1.0 : 0.0;
        default: return 0.0;
    }
}

// Sum over the ties (graph edges u < v, digraph arcs u -> v) of the dyad value. The change is
// the value of the toggled dyad, O(1).
template <class S>
inline double change_tie_value(const S& store, const Term<S>& term, const Workspace&, int i, int j,
                               int) {
    return dyad_value(store, term, i, j);
}
template <class S>
inline double total_tie_value(const S& store, const Term<S>& term, const Workspace&) {
    double sum = 0.0;
    for_each_tie(store, [&](int u, int v) { sum += dyad_value(store, term, u, v); });
    return sum;
}

// ---------------------------------------------------------------------------------------------
// Graphs.

// D_v: the labelled neighbours of v (for a binary attribute), from the neighbour list.
template <GraphStore G>
inline double labelled_neighbours(const G& g, const double* z, int v) {
    double sum = 0.0;
    for_each_neighbour(g, v, [&](int k) { sum += z[k]; });
    return sum;
}
// e_v: the covariate summed over the neighbours of v.
template <GraphStore G>
inline double covariate_neighbours(const G& g, const Term<G>& term, int v) {
    double sum = 0.0;
    for_each_neighbour(g, v, [&](int k) { sum += covariate_at(g, term, v, k); });
    return sum;
}

// Which node statistic of a binary attribute a row is.
enum GraphNodeStatistic : int16_t {
    node_o1au = 1,  // z_v C(d_v, 2)
    node_o1bu,      // D_v (d_v - 1)
    node_o2au,      // z_v D_v (d_v - 1)
    node_o2b,       // C(D_v, 2)
    node_o3u,       // z_v C(D_v, 2)
    node_et1,       // z_v t_v (d_v - 2)
    node_et2,       // z_v t_v C(d_v - 2, 2)
};

inline bool reads_labelled_neighbours(int16_t which) {
    return which == node_o1bu || which == node_o2au || which == node_o2b || which == node_o3u;
}
inline bool reads_triangles(int16_t which) { return which == node_et1 || which == node_et2; }

inline double node_statistic(int16_t which, double z, double labelled, double d, double t) {
    switch (which) {
        case node_o1au: return z * static_cast<double>(choose2(static_cast<int64_t>(d)));
        case node_o1bu: return labelled * (d - 1.0);
        case node_o2au: return z * labelled * (d - 1.0);
        case node_o2b: return labelled * (labelled - 1.0) / 2.0;
        case node_o3u: return z * labelled * (labelled - 1.0) / 2.0;
        case node_et1: return z * t * (d - 2.0);
        case node_et2: return z * t * static_cast<double>(choose2(static_cast<int64_t>(d) - 2));
        default: return 0.0;
    }
}

template <class G>
inline double total_node_statistic(const G& g, const Term<G>& term, const Workspace&) {
    double sum = 0.0;
    for (int v = 0; v < g.node_count; ++v) {
        const double labelled =
            reads_labelled_neighbours(term.variant) ? labelled_neighbours(g, term.values, v) : 0.0;
        sum += node_statistic(term.variant, value_at(term, v), labelled, degree_of(g, v),
                              triangles_at(g, v));
    }
    return sum;
}

// Adding {i,j} changes d, D and t at i and j (d + 1, D + z of the other end, t + s) and t at
// every common neighbour (t + 1); nothing else. The change is the sum of the differences at
// those nodes, each O(1) once D is known (O(d)).
template <class G>
inline double change_node_statistic(const G& g, const Term<G>& term, const Workspace&, int i, int j,
                                    int added) {
    const int16_t which = term.variant;
    const bool needs_labelled = reads_labelled_neighbours(which);
    const bool needs_triangles = reads_triangles(which);
    const int32_t s = needs_triangles ? g.partners(i, j) : 0;
    const int fix = correction(added);
    double sum = 0.0;
    for (const auto& [v, other] : {std::pair{i, j}, std::pair{j, i}}) {
        const double z = value_at(term, v);
        const double labelled = needs_labelled ? labelled_neighbours(g, term.values, v) : 0.0;
        const double d = degree_of(g, v);
        const double t = needs_triangles ? triangles_at(g, v) + fix * s : 0.0;
        sum += node_statistic(which, z, labelled + value_at(term, other), d + 1.0, t + s) -
               node_statistic(which, z, labelled, d, t);
    }
    if (needs_triangles) {
        for_each_common_neighbour(g, i, j, s, [&](int k) {
            const double d = degree_of(g, k);
            const double t = triangles_at(g, k) + fix;
            sum += node_statistic(which, value_at(term, k), 0.0, d, t + 1.0) -
                   node_statistic(which, value_at(term, k), 0.0, d, t);
        });
    }
    return sum;
}

// Which sum over triangles a row is: of the corners' values (T1u), of the pairwise products of
// the corners' values (T2u) or of the product of all three (T3u); for a covariate the same
// three over the triangle's three ties.
enum TriangleSum : int16_t { triangle_single = 1, triangle_pairs = 2, triangle_all = 3 };

inline double triangle_value(int16_t which, double a, double b, double c) {
    switch (which) {
        case triangle_single: return a + b + c;
        case triangle_pairs: return a * b + a * c + b * c;
        case triangle_all: return a * b * c;
        default: return 0.0;
    }
}

// The three values a triangle {a, b, c} carries: the nodes' (binary) or the ties' (covariate).
template <class G>
inline double triangle_of(const G& g, const Term<G>& term, bool covariate, int a, int b, int c) {
    if (covariate) {
        return triangle_value(term.variant, covariate_at(g, term, a, b),
                              covariate_at(g, term, a, c), covariate_at(g, term, b, c));
    }
    return triangle_value(term.variant, value_at(term, a), value_at(term, b), value_at(term, c));
}

template <class G, bool covariate>
inline double change_triangle_sum(const G& g, const Term<G>& term, const Workspace&, int i, int j,
                                  int) {
    double sum = 0.0;
    for_each_common_neighbour(g, i, j, g.partners(i, j),
                              [&](int k) { sum += triangle_of(g, term, covariate, i, j, k); });
    return sum;
}
template <class G, bool covariate>
inline double total_triangle_sum(const G& g, const Term<G>& term, const Workspace&) {
    double sum = 0.0;
    for_each_edge(g, [&](int u, int v) {
        for_each_common_neighbour(g, u, v, g.partners(u, v), [&](int k) {
            if (k > v) sum += triangle_of(g, term, covariate, u, v, k);
        });
    });
    return sum;
}

// ET0 = sum over v of z_v f_v and ETNT = sum over v of z_v t_v f_v, where f_v counts the ties
// of v in no triangle. Adding {i,j} brings a tie in no triangle when s = 0, and takes out of
// that state every tie {i,k} or {j,k} to a common neighbour k that had no partner before.
enum EdgeTriangleStatistic : int16_t { et0 = 1, etnt = 2 };

template <class G>
inline int32_t ties_in_no_triangle(const G& g, int v) {
    int32_t count = 0;
    const auto partners = partners_of(g, v);
    for_each_neighbour(g, v, [&](int k) { count += partners[k] == 0 ? 1 : 0; });
    return count;
}

template <class G>
inline double total_edge_triangle(const G& g, const Term<G>& term, const Workspace&) {
    double sum = 0.0;
    for (int v = 0; v < g.node_count; ++v) {
        const double f = ties_in_no_triangle(g, v);
        sum += value_at(term, v) * f * (term.variant == etnt ? triangles_at(g, v) : 1.0);
    }
    return sum;
}

template <class G>
inline double change_edge_triangle(const G& g, const Term<G>& term, const Workspace&, int i, int j,
                                   int added) {
    const int32_t s = g.partners(i, j);
    const int fix = correction(added);
    // Partners of {v,k} without the toggled tie: the pairs {i,k} and {j,k} with k a common
    // neighbour count it during a removal.
    auto partners_before = [&](int v, int k) {
        const int32_t p = g.partners(v, k);
        const bool through = (v == i && (k != j && has_edge(g, j, k))) ||
                             (v == j && (k != i && has_edge(g, i, k))) ||
                             (k == i && v != j && has_edge(g, j, v)) ||
                             (k == j && v != i && has_edge(g, i, v));
        return through ? p + fix : p;
    };
    auto in_no_triangle_before = [&](int v) {
        int32_t count = 0;
        for_each_neighbour(g, v, [&](int k) { count += partners_before(v, k) == 0 ? 1 : 0; });
        return count;
    };
    if (term.variant == et0) {
        double sum = s == 0 ? value_at(term, i) + value_at(term, j) : 0.0;
        for_each_common_neighbour(g, i, j, s, [&](int k) {
            if (partners_before(i, k) == 0) sum -= value_at(term, i) + value_at(term, k);
            if (partners_before(j, k) == 0) sum -= value_at(term, j) + value_at(term, k);
        });
        return sum;
    }
    // ETNT: t and f change at i, j and the common neighbours only.
    double sum = 0.0;
    int32_t lost_i = 0;
    int32_t lost_j = 0;
    for_each_common_neighbour(g, i, j, s, [&](int k) {
        const int32_t lost_k =
            (partners_before(i, k) == 0 ? 1 : 0) + (partners_before(j, k) == 0 ? 1 : 0);
        lost_i += partners_before(i, k) == 0 ? 1 : 0;
        lost_j += partners_before(j, k) == 0 ? 1 : 0;
        const double t = triangles_at(g, k) + fix;
        const double f = in_no_triangle_before(k);
        sum += value_at(term, k) * ((t + 1.0) * (f - lost_k) - t * f);
    });
    const int32_t fresh = s == 0 ? 1 : 0;
    for (const auto& [v, lost] : {std::pair{i, lost_i}, std::pair{j, lost_j}}) {
        const double t = triangles_at(g, v) + fix * s;
        const double f = in_no_triangle_before(v);
        sum += value_at(term, v) * ((t + s) * (f + fresh - lost) - t * f);
    }
    return sum;
}

// S21 = sum over v of e_v (d_v - 1): at i, (e_i + w_ij) d_i - e_i (d_i - 1) = e_i + w_ij d_i.
// S22 = sum over 2-stars of the product of their two ties' covariates: the new tie pairs with
// every other tie at i and at j, w_ij (e_i + e_j).
enum CovariateStar : int16_t { star21 = 1, star22 = 2 };

template <class G>
inline double change_covariate_star(const G& g, const Term<G>& term, const Workspace&, int i, int j,
                                    int) {
    const double w = covariate_at(g, term, i, j);
    const double ei = covariate_neighbours(g, term, i);
    const double ej = covariate_neighbours(g, term, j);
    if (term.variant == star21) return ei + ej + w * (degree_of(g, i) + degree_of(g, j));
    return w * (ei + ej);
}
template <class G>
inline double total_covariate_star(const G& g, const Term<G>& term, const Workspace&) {
    double sum = 0.0;
    for (int v = 0; v < g.node_count; ++v) {
        if (term.variant == star21) {
            sum += covariate_neighbours(g, term, v) * (degree_of(g, v) - 1.0);
            continue;
        }
        double e = 0.0;
        double squares = 0.0;
        for_each_neighbour(g, v, [&](int k) {
            const double w = covariate_at(g, term, v, k);
            e += w;
            squares += w * w;
        });
        sum += (e * e - squares) / 2.0;
    }
    return sum;
}

// ---------------------------------------------------------------------------------------------
// Digraphs.

// Sum over the mutual dyads of the dyad value; adding i -> j makes a mutual dyad when j -> i is
// there.
template <class D>
inline double change_mutual_value(const D& digraph, const Term<D>& term, const Workspace&, int i,
                                  int j, int) {
    return digraph.has_arc(j, i) ? dyad_value(digraph, term, i, j) : 0.0;
}
template <class D>
inline double total_mutual_value(const D& digraph, const Term<D>& term, const Workspace&) {
    double sum = 0.0;
    for_each_arc(digraph, [&](int u, int v) {
        if (u < v && digraph.has_arc(v, u)) sum += dyad_value(digraph, term, u, v);
    });
    return sum;
}

// Node statistics weighted by the node's value: out2star z_v C(out_v, 2), in2star
// z_v C(in_v, 2), path2 z_v (in_v out_v - m_v). Adding i -> j raises out_i, in_j and, when
// j -> i is there, m_i and m_j.
enum DigraphNodeStatistic : int16_t { node_out2star = 1, node_in2star = 2, node_path2 = 3 };

template <class D>
inline double total_digraph_node(const D& digraph, const Term<D>& term, const Workspace&) {
    double sum = 0.0;
    for (int v = 0; v < digraph.node_count; ++v) {
        const int64_t in = digraph.in_degree(v);
        const int64_t out = digraph.out_degree(v);
        double count = 0.0;
        switch (term.variant) {
            case node_out2star: count = static_cast<double>(choose2(out)); break;
            case node_in2star: count = static_cast<double>(choose2(in)); break;
            case node_path2:
                count = static_cast<double>(in * out - digraph.mutual_degree(v));
                break;
            default: break;
        }
        sum += value_at(term, v) * count;
    }
    return sum;
}
template <class D>
inline double change_digraph_node(const D& digraph, const Term<D>& term, const Workspace&, int i,
                                  int j, int) {
    switch (term.variant) {
        case node_out2star: return value_at(term, i) * digraph.out_degree(i);
        case node_in2star: return value_at(term, j) * digraph.in_degree(j);
        case node_path2: {
            const int r = digraph.has_arc(j, i) ? 1 : 0;
            return value_at(term, i) * (digraph.in_degree(i) - r) +
                   value_at(term, j) * (digraph.out_degree(j) - r);
        }
        default: return 0.0;
    }
}

}  // namespace vexa::attribute_terms
