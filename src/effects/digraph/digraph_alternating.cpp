// The alternating effects of digraphs: geometrically weighted sums whose decay lambda gives the
// weight w(m) = q^m, q = 1 - 1/lambda, from the term's single-precision table (capped at 100).
// Below lambda 1 every one of them is switched off (0). At lambda exactly 1 the table is
// w(0) = 1 and 0 beyond, so the same formulas count what has at least one configuration.
//
// Totals read the same table as the changes. Where a configuration count L of an arc or a pair
// moves to L + 1, the change adds lambda (w(L) - w(L + 1)), the exact difference of the two
// terms of the total, so that a total and the sum of its changes agree to rounding at every
// lambda, beyond the cap included.

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <span>
#include <type_traits>

#include "base/compiler.h"
#include "effects/digraph/arcs_at.h"
#include "effects/digraph/digraph_catalogue.h"
#include "effects/digraph/digraph_effects.h"
#include "network/digraph.h"
#include "network/sparse_digraph.h"

namespace vexa {

namespace {

template <class D>
inline bool switched_off(const Term<D>& term) {
    return term.lambda < 1.0f;
}
template <class D>
inline double w(const Term<D>& term, int m) {
    return static_cast<double>(weight(term, m));
}
template <class D>
inline double lambda_of(const Term<D>& term) {
    return static_cast<double>(term.lambda);
}

// Af(d) = w(0) + ... + w(d-1): the alternating star of degree d (lambda (1 - q^d) with exact
// weights). O(min(d, cap)).
template <class D>
double alternating_sum(const Term<D>& term, int d) {
    const int listed = std::min(d, weight_table_cap + 1);
    double sum = 0.0;
    for (int m = 0; m < listed; ++m) sum += w(term, m);
    if (d > listed) sum += (d - listed) * w(term, weight_table_cap);
    return sum;
}

// Calls fn(x) for every x in the intersection of two node sets, each given as a list and as a
// membership test of the same nodes; walks the shorter list testing the other set and stops
// after `count` members (the intersection's size, known from the two-path counts), so an
// empty intersection costs nothing.
template <typename InA, typename InB, typename Fn>
inline void for_each_common(std::span<const int32_t> list_a, InA&& in_a,
                            std::span<const int32_t> list_b, InB&& in_b, int count, Fn&& fn) {
    if (count <= 0) return;
    const bool a_shorter = list_a.size() <= list_b.size();
    const std::span<const int32_t> walked = a_shorter ? list_a : list_b;
    for (const int32_t x : walked) {
        if (a_shorter ? in_b(x) : in_a(x)) {
            fn(x);
            if (--count == 0) return;
        }
    }
}

// A total lambda sum (1 - w(L)) from a histogram of the L of its arcs or pairs, counts above the
// cap pooled at the cap (they share its weight): the value depends on the network alone.
template <class D>
double from_histogram(const Term<D>& term,
                      const std::array<int64_t, weight_table_cap + 1>& counts) {
    double sum = 0.0;
    for (int m = 1; m <= weight_table_cap; ++m) {
        const int64_t c = counts[static_cast<size_t>(m)];
        if (c != 0) sum += static_cast<double>(c) * (1.0 - w(term, m));
    }
    return lambda_of(term) * sum;
}

inline void tally(std::array<int64_t, weight_table_cap + 1>& counts, int value) {
    counts[static_cast<size_t>(std::min(value, weight_table_cap))] += 1;
}

// ---- Alternating triangles, one function per two-path kind ------------------------------------
// Each sums lambda (1 - w(L)) over the arcs, L a count of two-paths beside the arc. Adding i->j
// brings the arc's own term and one more two-path to every arc it closes a triangle with.

// AT-T, L of a->b = P(a,b) (paths a->x->b). The new arc makes i->j->y beside each arc i->y with
// j->y, and x->i->j beside each arc x->j with x->i. O(min out degree + min in degree); nothing
// when R(i,j) = S(i,j) = 0 and the store keeps those counts. It needs only the two-paths: a
// store that keeps no common receivers or senders (a model without the effects that read them
// saves their upkeep on every accepted toggle) has the walks run their shorter lists whole,
// meeting the same members in the same order.
template <class D>
double triangle_transitive(const D& d, const Term<D>& term, int i, int j, int fix) {
    const ArcsAt<D> at_i(d, i);
    const ArcsAt<D> at_j(d, j);
    constexpr int unknown = std::numeric_limits<int>::max();
    const int receivers =
        keeps(d.kept, Bookkeeping::common_receivers) ? d.receivers(i, j) : unknown;
    const int senders = keeps(d.kept, Bookkeeping::common_senders) ? d.senders(i, j) : unknown;
    double sum = lambda_of(term) * (1.0 - w(term, d.paths(i, j)));
    for_each_common(
        d.out_neighbours(i), [&](int y) { return at_i.out(y); }, d.out_neighbours(j),
        [&](int y) { return at_j.out(y); }, receivers,
        [&](int y) { sum += gain(term, d.paths(i, y) + fix); });
    for_each_common(
        d.in_neighbours(i), [&](int x) { return at_i.in(x); }, d.in_neighbours(j),
        [&](int x) { return at_j.in(x); }, senders,
        [&](int x) { sum += gain(term, d.paths(x, j) + fix); });
    return sum;
}

// AT-C, L of a->b = P(b,a) (the cycles a->b->x->a). Each x with j->x->i closes two cycles
// besides the new arc's own: on arc x->i (path i->j->x) and on arc j->x (path x->i->j).
// O(min(out_j, in_i)), nothing when P(j,i) = 0.
template <class D>
double triangle_cyclic(const D& d, const Term<D>& term, int i, int j, int fix) {
    const ArcsAt<D> at_i(d, i);
    const ArcsAt<D> at_j(d, j);
    double sum = lambda_of(term) * (1.0 - w(term, d.paths(j, i)));
    for_each_common(
        d.out_neighbours(j), [&](int x) { return at_j.out(x); }, d.in_neighbours(i),
        [&](int x) { return at_i.in(x); }, d.paths(j, i),
        [&](int x) { sum += gain(term, d.paths(i, x) + fix) + gain(term, d.paths(x, j) + fix); });
    return sum;
}

// AT-D, L of a->b = S(a,b) (common senders). The new arc makes i a common sender of j and each
// other receiver y of i, which counts on the arcs j->y and y->j where present. O(out_i) at most,
// stopping once R(i,j) + P(i,j) arcs are met.
template <class D>
double triangle_down(const D& d, const Term<D>& term, int i, int j, int fix) {
    double sum = lambda_of(term) * (1.0 - w(term, d.senders(i, j)));
    int left = d.receivers(i, j) + d.paths(i, j);
    if (left == 0) return sum;
    const ArcsAt<D> at_j(d, j);
    for (const int32_t y : d.out_neighbours(i)) {
        const int arcs = at_j.out(y) + at_j.in(y);
        if (arcs == 0) continue;
        sum += arcs * gain(term, d.senders(j, y) + fix);
        if ((left -= arcs) == 0) break;
    }
    return sum;
}

// AT-U, L of a->b = R(a,b) (common receivers). The new arc makes j a common receiver of i and
// each other sender y of j, which counts on the arcs i->y and y->i where present. O(in_j) at
// most, stopping once P(i,j) + S(i,j) arcs are met.
template <class D>
double triangle_up(const D& d, const Term<D>& term, int i, int j, int fix) {
    double sum = lambda_of(term) * (1.0 - w(term, d.receivers(i, j)));
    int left = d.paths(i, j) + d.senders(i, j);
    if (left == 0) return sum;
    const ArcsAt<D> at_i(d, i);
    for (const int32_t y : d.in_neighbours(j)) {
        const int arcs = at_i.out(y) + at_i.in(y);
        if (arcs == 0) continue;
        sum += arcs * gain(term, d.receivers(i, y) + fix);
        if ((left -= arcs) == 0) break;
    }
    return sum;
}

// ---- Alternating two-paths, one function per kind ----------------------------------------------
// Each sums lambda (1 - w(L)) over pairs; adding i->j gives one more two-path to the pairs it
// joins. The pair entries are scattered over an n x n matrix, so every one is asked for before
// any is summed: their cache misses overlap.

// A2P-T over ordered pairs u != v, L = P(u,v): the new paths i->j->y and x->i->j.
// O(out_j + in_i).
template <class D>
double two_path_transitive(const D& d, const Term<D>& term, int i, int j, int fix) {
    double sum = 0.0;
    if constexpr (std::is_same_v<D, Digraph>) {
        const uint16_t* from_i = d.paths_row(i);
        for (const int32_t y : d.out_neighbours(j)) prefetch(from_i + y);
        for (const int32_t x : d.in_neighbours(i)) prefetch(d.paths_row(x) + j);
        for (const int32_t y : d.out_neighbours(j)) {
            if (y != i) sum += gain(term, from_i[y] + fix);
        }
    } else {
        for (const int32_t y : d.out_neighbours(j)) d.prefetch_paths(i, y);
        for (const int32_t x : d.in_neighbours(i)) d.prefetch_paths(x, j);
        for (const int32_t y : d.out_neighbours(j)) {
            if (y != i) sum += gain(term, d.paths(i, y) + fix);
        }
    }
    for (const int32_t x : d.in_neighbours(i)) {
        if (x != j) sum += gain(term, d.paths(x, j) + fix);
    }
    return sum;
}

// A2P-D over unordered pairs, L = S(u,v): i becomes a common sender of j and each other
// receiver y of i. O(out_i).
template <class D>
double two_path_down(const D& d, const Term<D>& term, int i, int j, int fix) {
    double sum = 0.0;
    if constexpr (std::is_same_v<D, Digraph>) {
        const uint16_t* from_j = d.senders_row(j);
        for (const int32_t y : d.out_neighbours(i)) prefetch(from_j + y);
        for (const int32_t y : d.out_neighbours(i)) sum += gain(term, from_j[y] + fix);
    } else {
        for (const int32_t y : d.out_neighbours(i)) d.prefetch_senders(j, y);
        for (const int32_t y : d.out_neighbours(i)) sum += gain(term, d.senders(j, y) + fix);
    }
    return sum;
}

// A2P-U over unordered pairs, L = R(u,v): j becomes a common receiver of i and each other
// sender y of j. O(in_j).
template <class D>
double two_path_up(const D& d, const Term<D>& term, int i, int j, int fix) {
    double sum = 0.0;
    if constexpr (std::is_same_v<D, Digraph>) {
        const uint16_t* from_i = d.receivers_row(i);
        for (const int32_t y : d.in_neighbours(j)) prefetch(from_i + y);
        for (const int32_t y : d.in_neighbours(j)) sum += gain(term, from_i[y] + fix);
    } else {
        for (const int32_t y : d.in_neighbours(j)) d.prefetch_receivers(i, y);
        for (const int32_t y : d.in_neighbours(j)) sum += gain(term, d.receivers(i, y) + fix);
    }
    return sum;
}

// The pair counts of one kind of two-path (two_path_t over ordered pairs, _d and _u over
// unordered ones): every pair of the dense store's matrix, or the pairs the sparse store's
// table holds (the others count 0, which weighs nothing).
template <class D>
std::array<int64_t, weight_table_cap + 1> pair_histogram(const D& d, int16_t kind) {
    std::array<int64_t, weight_table_cap + 1> counts{};
    if constexpr (std::is_same_v<D, Digraph>) {
        const bool ordered = kind == two_path_t;
        for (int u = 0; u < d.node_count; ++u) {
            for (int v = ordered ? 0 : u + 1; v < d.node_count; ++v) {
                if (v == u) continue;
                tally(counts, kind == two_path_t   ? d.paths(u, v)
                              : kind == two_path_d ? d.senders(u, v)
                                                   : d.receivers(u, v));
            }
        }
    } else {
        const PairTable& table = kind == two_path_t   ? d.two_paths
                                 : kind == two_path_d ? d.common_senders
                                                      : d.common_receivers;
        table.for_each([&counts](int, int, int32_t count) { tally(counts, count); });
    }
    return counts;
}

}  // namespace

// AinS and AoutS (both forms; variant 0 in-degrees, 1 out-degrees):
// lambda^2 sum over v of (w(d_v) - 1 + d_v / lambda), that is sum over v of lambda Af(d_v) -
// d_v with exact weights. Change lambda (1 - w(in_j)) or lambda (1 - w(out_i)). O(1); total O(n).
template <class D>
double change_alternating_star(const D& d, const Term<D>& term, const Workspace&, int i, int j,
                               int) {
    if (switched_off(term)) return 0.0;
    const int degree = term.variant == 0 ? d.in_degree(j) : d.out_degree(i);
    return lambda_of(term) * (1.0 - w(term, degree));
}
template <class D>
double total_alternating_star(const D& d, const Term<D>& term, const Workspace&) {
    if (switched_off(term)) return 0.0;
    const double lambda = lambda_of(term);
    double sum = 0.0;
    for (int v = 0; v < d.node_count; ++v) {
        const int degree = term.variant == 0 ? d.in_degree(v) : d.out_degree(v);
        sum += w(term, degree) - 1.0 + degree / lambda;
    }
    return lambda * lambda * sum;
}

// The mixed alternating stars (variant 0 Ain1out-star, 1 1inAout-star, 2 AinAout-star):
//   sum over v of out_v Af(in_v)      change Af(in_i) + out_j w(in_j)
//   sum over v of in_v Af(out_v)      change Af(out_j) + in_i w(out_i)
//   sum over v of Af(in_v) Af(out_v)  change Af(in_i) w(out_i) + Af(out_j) w(in_j)
// since Af(d + 1) - Af(d) = w(d). Change O(min(degree, cap)); total O(n min(degree, cap)).
template <class D>
double change_mixed_alternating_star(const D& d, const Term<D>& term, const Workspace&, int i,
                                     int j, int) {
    if (switched_off(term)) return 0.0;
    switch (term.variant) {
        case 0:
            return alternating_sum(term, d.in_degree(i)) +
                   d.out_degree(j) * w(term, d.in_degree(j));
        case 1:
            return alternating_sum(term, d.out_degree(j)) +
                   d.in_degree(i) * w(term, d.out_degree(i));
        default:
            return alternating_sum(term, d.in_degree(i)) * w(term, d.out_degree(i)) +
                   alternating_sum(term, d.out_degree(j)) * w(term, d.in_degree(j));
    }
}
template <class D>
double total_mixed_alternating_star(const D& d, const Term<D>& term, const Workspace&) {
    if (switched_off(term)) return 0.0;
    double sum = 0.0;
    for (int v = 0; v < d.node_count; ++v) {
        const int in = d.in_degree(v);
        const int out = d.out_degree(v);
        switch (term.variant) {
            case 0: sum += out * alternating_sum(term, in); break;
            case 1: sum += in * alternating_sum(term, out); break;
            default: sum += alternating_sum(term, in) * alternating_sum(term, out); break;
        }
    }
    return sum;
}

// The alternating triangles AT-T, AT-C, AT-D, AT-U and their sums (variant: the kinds summed,
// each with this term's lambda and table). Costs as the kinds above; totals O(n words + arcs).
template <class D>
double change_alternating_triangle(const D& d, const Term<D>& term, const Workspace&, int i, int j,
                                   int added) {
    if (switched_off(term)) return 0.0;
    const int fix = added == 1 ? 0 : -1;
    double sum = 0.0;
    if (term.variant & two_path_t) sum += triangle_transitive(d, term, i, j, fix);
    if (term.variant & two_path_c) sum += triangle_cyclic(d, term, i, j, fix);
    if (term.variant & two_path_d) sum += triangle_down(d, term, i, j, fix);
    if (term.variant & two_path_u) sum += triangle_up(d, term, i, j, fix);
    return sum;
}
template <class D>
double total_alternating_triangle(const D& d, const Term<D>& term, const Workspace&) {
    if (switched_off(term)) return 0.0;
    double sum = 0.0;
    for (const int16_t kind : {two_path_t, two_path_c, two_path_d, two_path_u}) {
        if ((term.variant & kind) == 0) continue;
        std::array<int64_t, weight_table_cap + 1> counts{};
        for_each_arc(d, [&](int a, int b) {
            tally(counts, kind == two_path_t   ? d.paths(a, b)
                          : kind == two_path_c ? d.paths(b, a)
                          : kind == two_path_d ? d.senders(a, b)
                                               : d.receivers(a, b));
        });
        sum += from_histogram(term, counts);
    }
    return sum;
}

// The alternating two-paths A2P-T (ordered pairs), A2P-D and A2P-U (unordered pairs) and their
// sums (variant: the kinds summed, each with this term's lambda and table). Change O(out_j +
// in_i) for T, O(out_i) for D, O(in_j) for U; total O(n^2) a kind.
template <class D>
double change_alternating_two_path(const D& d, const Term<D>& term, const Workspace&, int i, int j,
                                   int added) {
    if (switched_off(term)) return 0.0;
    const int fix = added == 1 ? 0 : -1;
    double sum = 0.0;
    if (term.variant & two_path_t) sum += two_path_transitive(d, term, i, j, fix);
    if (term.variant & two_path_d) sum += two_path_down(d, term, i, j, fix);
    if (term.variant & two_path_u) sum += two_path_up(d, term, i, j, fix);
    return sum;
}
template <class D>
double total_alternating_two_path(const D& d, const Term<D>& term, const Workspace&) {
    if (switched_off(term)) return 0.0;
    double sum = 0.0;
    for (const int16_t kind : {two_path_t, two_path_d, two_path_u}) {
        if (term.variant & kind) sum += from_histogram(term, pair_histogram(d, kind));
    }
    return sum;
}

VEXA_INSTANTIATE_DIGRAPH_FAMILY(alternating_star)
VEXA_INSTANTIATE_DIGRAPH_FAMILY(mixed_alternating_star)
VEXA_INSTANTIATE_DIGRAPH_FAMILY(alternating_triangle)
VEXA_INSTANTIATE_DIGRAPH_FAMILY(alternating_two_path)

}  // namespace vexa
