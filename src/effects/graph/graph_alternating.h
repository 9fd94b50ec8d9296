#pragma once
// The alternating effects of graphs: geometrically weighted sums whose decay lambda gives the
// weight w(m) = (1 - 1/lambda)^m from the term's single-precision table. Totals read the same table
// as the changes, so a total and the sum of its changes agree to rounding.

#include <array>
#include <cmath>

#include "effects/graph/cliques.h"
#include "effects/graph/graph_effects.h"

namespace vexa::graph_terms {

template <class G>
inline double w(const Term<G>& term, int m) {
    return static_cast<double>(weight(term, m));
}
template <class G>
inline double lambda_of(const Term<G>& term) {
    return static_cast<double>(term.lambda);
}
// Below lambda 1 the star, triangle, two-path and clique series are switched off.
template <class G>
inline bool switched_off(const Term<G>& term) {
    return term.lambda < 1.0f;
}

// c[3] - r c[4] + r^2 c[5] - r^3 c[6] + r^4 c[7]: the 4- to 8-clique entries with alternating
// signs, r = 1/lambda rounded to single precision. Entries the store does not keep count 0.
inline double alternating_cliques(const std::vector<double>& c, float lambda) {
    const double r = static_cast<double>(1.0f / lambda);
    double factor = 1.0;
    double sum = 0.0;
    for (size_t k = 3; k < 8 && k < c.size(); ++k) {
        sum += factor * c[k];
        factor *= -r;
    }
    return sum;
}

// AS, AS2: lambda^2 times the sum over v of (w(d_v) - 1 + d_v / lambda); 0 below lambda 1.
// Change lambda (2 - w(d_i) - w(d_j)), O(1); total from the degree histogram, O(n).
template <class G>
inline double change_as(const G& g, const Term<G>& term, const Workspace&, int i, int j, int) {
    if (switched_off(term)) return 0.0;
    return lambda_of(term) * (2.0 - w(term, degree_of(g, i)) - w(term, degree_of(g, j)));
}
template <class G>
inline double total_as(const G& g, const Term<G>& term, const Workspace&) {
    if (switched_off(term)) return 0.0;
    const double lambda = lambda_of(term);
    double sum = 0.0;
    for (size_t d = 0; d < g.degree_histogram.size(); ++d) {
        const int32_t nodes = g.degree_histogram[d];
        if (nodes == 0) continue;
        const int degree = static_cast<int>(d);
        sum += nodes * (w(term, degree) - 1.0 + degree / lambda);
    }
    return lambda * lambda * sum;
}

// AT, AT2: lambda times the sum over edges of (1 - w(L_e)); 0 below lambda 1. Adding {i,j}
// brings the new edge's own term and one more partner to each edge ik and jk of a common
// neighbour k, worth lambda (w(L) - w(L + 1)) = w(L). Change O(words) over the common
// neighbours (nothing when s = 0); total O(n words + E).
template <class G>
inline double change_at(const G& g, const Term<G>& term, const Workspace&, int i, int j,
                        int added) {
    if (switched_off(term)) return 0.0;
    const int32_t s = g.partners(i, j);
    double sum = lambda_of(term) * (1.0 - w(term, s));
    const auto pi = partners_of(g, i);
    const auto pj = partners_of(g, j);
    const int fix = correction(added);
    for_each_common_neighbour(g, i, j, s,
                              [&](int k) { sum += w(term, pi[k] + fix) + w(term, pj[k] + fix); });
    return sum;
}
template <class G>
inline double total_at(const G& g, const Term<G>& term, const Workspace&) {
    if (switched_off(term)) return 0.0;
    double sum = 0.0;
    for_each_edge(g, [&](int u, int v) { sum += 1.0 - w(term, g.partners(u, v)); });
    return lambda_of(term) * sum;
}

// A2P: lambda times the sum over unordered pairs of (1 - w(L)); 0 below lambda 1. Adding
// {i,j} gives one more partner to every pair {i,k} with k a neighbour of j and {k,j} with k a
// neighbour of i, worth w(L) each. Change O(words + d_i + d_j); total from the shared-partner
// histogram, O(n).
template <class G>
inline double change_a2p(const G& g, const Term<G>& term, const Workspace&, int i, int j,
                         int added) {
    if (switched_off(term)) return 0.0;
    const auto pi = partners_of(g, i);
    const auto pj = partners_of(g, j);
    const int fix = correction(added);
    prefetch_partners(g, pi, j);
    prefetch_partners(g, pj, i);
    double sum = 0.0;
    for_each_neighbour(g, j, [&](int k) { sum += w(term, pi[k] + fix); });
    for_each_neighbour(g, i, [&](int k) { sum += w(term, pj[k] + fix); });
    return sum;
}
template <class G>
inline double total_a2p(const G& g, const Term<G>& term, const Workspace&) {
    if (switched_off(term)) return 0.0;
    double sum = 0.0;
    for (size_t s = 0; s < g.shared_partner_histogram.size(); ++s) {
        const auto pairs = g.shared_partner_histogram[s];
        if (pairs != 0) sum += static_cast<double>(pairs) * (1.0 - w(term, static_cast<int>(s)));
    }
    return lambda_of(term) * sum;
}

// AC: the 4- to 8-clique counts summed with alternating signs and ratio 1/lambda; 0 below
// lambda 1. Change O(1) from the clique changes the combiner filled; total O(1) from the
// census. Needs a store that keeps cliques up to 8.
template <class G>
inline double change_ac(const G&, const Term<G>& term, const Workspace& workspace, int, int, int) {
    if (switched_off(term)) return 0.0;
    return alternating_cliques(workspace.clique_changes, term.lambda);
}
template <class G>
inline double total_ac(const G&, const Term<G>& term, const Workspace& workspace) {
    if (switched_off(term)) return 0.0;
    return alternating_cliques(workspace.clique_counts, term.lambda);
}

// AET: lambda times the sum over v of t_v (1 - w(d_v - 2)), at every lambda. At i the term
// moves from t (1 - w(d_i - 2)) to (t + s)(1 - w(d_i - 1)); a common neighbour gains one
// triangle at unchanged degree. Change O(words) over the common neighbours; total O(n).
template <class G>
inline double change_aet(const G& g, const Term<G>& term, const Workspace&, int i, int j,
                         int added) {
    const int32_t s = g.partners(i, j);
    const int fix = correction(added);
    const int di = degree_of(g, i);
    const int dj = degree_of(g, j);
    const double ui = triangles_at(g, i) + fix * s;  // triangles before the toggle
    const double uj = triangles_at(g, j) + fix * s;
    double sum = (1.0 - w(term, di - 1)) * (ui + s) + (1.0 - w(term, dj - 1)) * (uj + s) -
                 (1.0 - w(term, di - 2)) * ui - (1.0 - w(term, dj - 2)) * uj;
    for_each_common_neighbour(g, i, j, s,
                              [&](int k) { sum += 1.0 - w(term, degree_of(g, k) - 2); });
    return lambda_of(term) * sum;
}
template <class G>
inline double total_aet(const G& g, const Term<G>& term, const Workspace&) {
    double sum = 0.0;
    for (int v = 0; v < g.node_count; ++v) {
        const int32_t t = triangles_at(g, v);
        if (t != 0) sum += t * (1.0 - w(term, degree_of(g, v) - 2));
    }
    return lambda_of(term) * sum;
}

}  // namespace vexa::graph_terms
