// The counting effects of digraphs: arcs, reciprocity, stars, the mixed 2-star, the ten triad
// configurations and the node counts. Every total is an exact integer held in a double.

#include "effects/digraph/digraph_effects.h"

#include <array>
#include <bit>
#include <cstdint>
#include <vector>

#include "effects/digraph/arcs_at.h"
#include "network/digraph.h"
#include "network/sparse_digraph.h"

namespace vexa {

namespace {

// d (d-1) ... (d-k+1) / k! in double precision; 0 when k > d.
double binomial_term(int d, int k) {
    if (k > d) return 0.0;
    double product = 1.0;
    double factorial = 1.0;
    for (int r = 0; r < k; ++r) {
        product *= d - r;
        factorial *= r + 1;
    }
    return product / factorial;
}

// ---- Triad configurations ---------------------------------------------------------------------
//
// A triad is coded by its six arcs among three labelled nodes 0, 1, 2: bit arc_bit(u, v) is
// arc u->v. A configuration count over a network is the sum over its unordered triples of the
// triad's own count: the number of labellings (a, b, k) of the triple that show the
// configuration, divided by the symmetry of the configuration. Both tables are built at compile
// time from the configuration definitions.

constexpr int arc_bit(int u, int v) { return u * 2 + (v > u ? v - 1 : v); }

constexpr bool holds(int configuration, int code, int a, int b, int k) {
    const auto arc = [code](int u, int v) { return ((code >> arc_bit(u, v)) & 1) != 0; };
    const auto mutual = [&arc](int u, int v) { return arc(u, v) && arc(v, u); };
    switch (configuration) {
        case 1: return mutual(a, b) && mutual(a, k) && mutual(b, k);
        case 2: return mutual(a, b) && mutual(a, k) && arc(b, k);
        case 3: return mutual(a, b) && arc(a, k) && arc(k, b);
        case 4: return mutual(a, b) && arc(k, a) && arc(k, b);
        case 5: return mutual(a, b) && arc(a, k) && arc(b, k);
        case 6: return mutual(a, b) && mutual(a, k);
        case 7: return mutual(a, b) && arc(k, a);
        case 8: return mutual(a, b) && arc(a, k);
        case 9: return arc(a, b) && arc(a, k) && arc(k, b);
        case 10: return arc(a, b) && arc(b, k) && arc(k, a);
        default: return false;
    }
}

// How many labellings show one occurrence of the configuration.
constexpr int symmetry(int configuration) {
    switch (configuration) {
        case 1: return 6;
        case 4:
        case 5:
        case 6: return 2;
        case 10: return 3;
        default: return 1;
    }
}

constexpr int triad_count(int configuration, int code) {
    constexpr int labellings[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2},
                                      {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
    int found = 0;
    for (const auto& l : labellings) found += holds(configuration, code, l[0], l[1], l[2]) ? 1 : 0;
    return found / symmetry(configuration);
}

constexpr int configuration_count = 10;

// counts[c][code]: configuration c + 1 in one triad.
constexpr auto triad_counts = [] {
    std::array<std::array<int8_t, 64>, configuration_count> counts{};
    for (int c = 0; c < configuration_count; ++c) {
        for (int code = 0; code < 64; ++code) {
            counts[static_cast<size_t>(c)][static_cast<size_t>(code)] =
                static_cast<int8_t>(triad_count(c + 1, code));
        }
    }
    return counts;
}();

// Adding arc i->j to a triad (i, j, k) = nodes (0, 1, 2): the change of each configuration,
// indexed by the five other arcs, bit 0 j->i, bit 1 i->k, bit 2 k->i, bit 3 j->k, bit 4 k->j.
constexpr auto triad_changes = [] {
    std::array<std::array<int8_t, 32>, configuration_count> changes{};
    for (int c = 0; c < configuration_count; ++c) {
        for (int bits = 0; bits < 32; ++bits) {
            const int code = ((bits & 1) << arc_bit(1, 0)) | (((bits >> 1) & 1) << arc_bit(0, 2)) |
                             (((bits >> 2) & 1) << arc_bit(2, 0)) |
                             (((bits >> 3) & 1) << arc_bit(1, 2)) |
                             (((bits >> 4) & 1) << arc_bit(2, 1));
            changes[static_cast<size_t>(c)][static_cast<size_t>(bits)] = static_cast<int8_t>(
                triad_count(c + 1, code | (1 << arc_bit(0, 1))) - triad_count(c + 1, code));
        }
    }
    return changes;
}();

static_assert(triad_counts[0][63] == 1 && triad_counts[8][63] == 6 && triad_counts[9][63] == 2,
              "a complete triad is one T1, six transitive triples and two cycles");

// T1 to T5 need arcs on all three pairs of a triad, so only third nodes adjacent to both i and
// j count. Walks the neighbours of whichever end has fewer, testing the arcs at the other end.
// Cost O(min(out_i + in_i, out_j + in_j)) arc tests.
template <class D>
double closed_triad_change(const D& d, int configuration, int i, int j) {
    const auto& change = triad_changes[static_cast<size_t>(configuration - 1)];
    const ArcsAt<D> at_i(d, i);
    const ArcsAt<D> at_j(d, j);
    const int back = at_j.out(i);
    int sum = 0;
    const auto count = [&](int k) {
        const int bits =
            back | (at_i.out(k) << 1) | (at_i.in(k) << 2) | (at_j.out(k) << 3) | (at_j.in(k) << 4);
        sum += change[static_cast<size_t>(bits)];
    };
    const bool from_i = d.out_degree(i) + d.in_degree(i) <= d.out_degree(j) + d.in_degree(j);
    const int near = from_i ? i : j;
    const int far = from_i ? j : i;
    const ArcsAt<D>& near_at = from_i ? at_i : at_j;
    const ArcsAt<D>& far_at = from_i ? at_j : at_i;
    for (const int32_t k : d.out_neighbours(near)) {
        if (k != far && (far_at.out(k) || far_at.in(k))) count(k);
    }
    for (const int32_t k : d.in_neighbours(near)) {
        if (k != far && !near_at.out(k) && (far_at.out(k) || far_at.in(k))) count(k);
    }
    return sum;
}

// T1 to T5 over the dense store: every triple whose three pairs are all adjacent, found as
// u < v < k with k among the common neighbours (either direction) of u and v, a word at a time.
// Cost O(adjacent pairs x n / 64).
inline int64_t closed_triad_sum(const Digraph& d, const std::array<int8_t, 64>& counts) {
    const int words = d.row_words;
    int64_t sum = 0;
    for (int u = 0; u < d.node_count; ++u) {
        const uint64_t* out_u = d.out_row(u);
        const uint64_t* in_u = d.in_row(u);
        for (int wv = (u + 1) >> 6; wv < words; ++wv) {
            uint64_t vs = out_u[wv] | in_u[wv];
            if (wv == (u + 1) >> 6) vs &= ~uint64_t{0} << ((u + 1) & 63);
            for (; vs != 0; vs &= vs - 1) {
                const int v = wv * 64 + std::countr_zero(vs);
                const uint64_t* out_v = d.out_row(v);
                const uint64_t* in_v = d.in_row(v);
                const int uv =
                    (bit_of(out_u, v) << arc_bit(0, 1)) | (bit_of(out_v, u) << arc_bit(1, 0));
                for (int wk = (v + 1) >> 6; wk < words; ++wk) {
                    uint64_t ks = (out_u[wk] | in_u[wk]) & (out_v[wk] | in_v[wk]);
                    if (wk == (v + 1) >> 6) ks &= ~uint64_t{0} << ((v + 1) & 63);
                    for (; ks != 0; ks &= ks - 1) {
                        const int k = wk * 64 + std::countr_zero(ks);
                        const int code = uv | (bit_of(out_u, k) << arc_bit(0, 2)) |
                                         (bit_of(in_u, k) << arc_bit(2, 0)) |
                                         (bit_of(out_v, k) << arc_bit(1, 2)) |
                                         (bit_of(in_v, k) << arc_bit(2, 1));
                        sum += counts[static_cast<size_t>(code)];
                    }
                }
            }
        }
    }
    return sum;
}

// Marks the neighbours of v: bit 0 for v->k, bit 1 for k->v (marks[k] == 0 elsewhere).
inline void mark_arcs(const SparseDigraph& d, int v, std::vector<uint8_t>& marks, bool set) {
    for (const int32_t k : d.out_neighbours(v)) marks[static_cast<size_t>(k)] = set ? 1 : 0;
    for (const int32_t k : d.in_neighbours(v)) {
        uint8_t& m = marks[static_cast<size_t>(k)];
        m = set ? static_cast<uint8_t>(m | 2) : 0;
    }
}

// Calls fn(k) once for every neighbour k > above of v (either direction), from v's marks.
template <typename Fn>
inline void for_each_neighbour_above(const SparseDigraph& d, int v, int above,
                                     const std::vector<uint8_t>& marks, Fn&& fn) {
    for (const int32_t k : d.out_neighbours(v)) {
        if (k > above) fn(k);
    }
    for (const int32_t k : d.in_neighbours(v)) {
        if (k > above && (marks[static_cast<size_t>(k)] & 1) == 0) fn(k);
    }
}

// The same over the sparse store, from the lists with the neighbours of u and of v marked.
// Cost O(sum over adjacent pairs of the degree).
inline int64_t closed_triad_sum(const SparseDigraph& d, const std::array<int8_t, 64>& counts) {
    const size_t nodes = static_cast<size_t>(d.node_count);
    std::vector<uint8_t> at_u(nodes, 0), at_v(nodes, 0);
    int64_t sum = 0;
    for (int u = 0; u < d.node_count; ++u) {
        mark_arcs(d, u, at_u, true);
        for_each_neighbour_above(d, u, u, at_u, [&](int v) {
            mark_arcs(d, v, at_v, true);
            const int uv_marks = at_u[static_cast<size_t>(v)];
            const int uv = ((uv_marks & 1) << arc_bit(0, 1)) | ((uv_marks >> 1) << arc_bit(1, 0));
            for_each_neighbour_above(d, v, v, at_v, [&](int k) {
                const int mu = at_u[static_cast<size_t>(k)];
                if (mu == 0) return;
                const int mv = at_v[static_cast<size_t>(k)];
                const int code = uv | ((mu & 1) << arc_bit(0, 2)) | ((mu >> 1) << arc_bit(2, 0)) |
                                 ((mv & 1) << arc_bit(1, 2)) | ((mv >> 1) << arc_bit(2, 1));
                sum += counts[static_cast<size_t>(code)];
            });
            mark_arcs(d, v, at_v, false);
        });
        mark_arcs(d, u, at_u, false);
    }
    return sum;
}

template <class D>
double closed_triad_total(const D& d, int configuration) {
    return static_cast<double>(
        closed_triad_sum(d, triad_counts[static_cast<size_t>(configuration - 1)]));
}

}  // namespace

// Arcs: arc_count; change 1.
template <class D>
double change_arc(const D&, const Term<D>&, const Workspace&, int, int, int) {
    return 1.0;
}
template <class D>
double total_arc(const D& d, const Term<D>&, const Workspace&) {
    return d.arc_count;
}

// Reciprocity: mutual dyads; change [j->i]. O(1).
template <class D>
double change_reciprocity(const D& d, const Term<D>&, const Workspace&, int i, int j, int) {
    return d.has_arc(j, i) ? 1.0 : 0.0;
}
template <class D>
double total_reciprocity(const D& d, const Term<D>&, const Workspace&) {
    return d.mutual_count;
}

// In-k-stars: sum over v of C(in_v, k); change C(in_j, k-1). O(1); total O(n).
template <class D>
double change_in_star(const D& d, const Term<D>& term, const Workspace&, int, int j, int) {
    return binomial_term(d.in_degree(j), term.variant - 1);
}
template <class D>
double total_in_star(const D& d, const Term<D>& term, const Workspace&) {
    double sum = 0.0;
    for (int v = 0; v < d.node_count; ++v) sum += binomial_term(d.in_degree(v), term.variant);
    return sum;
}

// Out-k-stars: sum over v of C(out_v, k); change C(out_i, k-1). O(1); total O(n).
template <class D>
double change_out_star(const D& d, const Term<D>& term, const Workspace&, int i, int, int) {
    return binomial_term(d.out_degree(i), term.variant - 1);
}
template <class D>
double total_out_star(const D& d, const Term<D>& term, const Workspace&) {
    double sum = 0.0;
    for (int v = 0; v < d.node_count; ++v) sum += binomial_term(d.out_degree(v), term.variant);
    return sum;
}

// Mixed 2-stars: paths x->v->y with x != y, sum over v of in_v out_v - mut_v. The new arc
// ends in_i paths x->i->j and starts out_j paths i->j->y, less the two that would return along
// j->i. O(1); total O(n).
template <class D>
double change_mixed_star(const D& d, const Term<D>&, const Workspace&, int i, int j, int) {
    return d.in_degree(i) + d.out_degree(j) - (d.has_arc(j, i) ? 2 : 0);
}
template <class D>
double total_mixed_star(const D& d, const Term<D>&, const Workspace&) {
    int64_t sum = 0;
    for (int v = 0; v < d.node_count; ++v) {
        sum += int64_t{d.in_degree(v)} * d.out_degree(v) - d.mutual_degree(v);
    }
    return static_cast<double>(sum);
}

// The triad configurations T1 to T10 (variant = the number), counted over ordered pairs (a, b)
// and third nodes k, with their symmetry factors:
//   T6  sum over v of C(mut_v, 2)                  change (mut_i + mut_j) [j->i]            O(1)
//   T7  sum over v of mut_v (in_v - 1)             change r (in_i - 1) + mut_j + r in_j       O(1)
//   T8  sum over v of mut_v (out_v - 1)            change mut_i + r out_i + r (out_j - 1)     O(1)
//   T9  sum over arcs a->b of P(a,b)               change P(i,j) + R(i,j) + S(i,j)            O(1)
//   T10 sum over arcs a->b of P(b,a), over 3       change P(j,i)                              O(1)
// with r = [j->i]. The pair entries read by T9 and T10 do not count arc i->j itself, so they
// hold in both store states. T1 to T5 (all three pairs of the triad tied) are summed over the
// third nodes adjacent to both ends from a table of the triad's own change, O(min degree);
// their totals walk the closed triples. Totals of T6 to T8 O(n), of T9 and T10 O(arcs).
template <class D>
double change_triad(const D& d, const Term<D>& term, const Workspace&, int i, int j, int) {
    const int r = d.has_arc(j, i) ? 1 : 0;
    switch (term.variant) {
        case 6: return r * (d.mutual_degree(i) + d.mutual_degree(j));
        case 7: return r * (d.in_degree(i) - 1) + d.mutual_degree(j) + r * d.in_degree(j);
        case 8: return d.mutual_degree(i) + r * d.out_degree(i) + r * (d.out_degree(j) - 1);
        case 9: return d.paths(i, j) + d.receivers(i, j) + d.senders(i, j);
        case 10: return d.paths(j, i);
        default: return closed_triad_change(d, term.variant, i, j);
    }
}
template <class D>
double total_triad(const D& d, const Term<D>& term, const Workspace&) {
    int64_t sum = 0;
    switch (term.variant) {
        case 6:
            for (int v = 0; v < d.node_count; ++v)
                sum += int64_t{d.mutual_degree(v)} * (d.mutual_degree(v) - 1) / 2;
            return static_cast<double>(sum);
        case 7:
            for (int v = 0; v < d.node_count; ++v)
                sum += int64_t{d.mutual_degree(v)} * (d.in_degree(v) - 1);
            return static_cast<double>(sum);
        case 8:
            for (int v = 0; v < d.node_count; ++v)
                sum += int64_t{d.mutual_degree(v)} * (d.out_degree(v) - 1);
            return static_cast<double>(sum);
        case 9:
            for_each_arc(d, [&](int a, int b) { sum += d.paths(a, b); });
            return static_cast<double>(sum);
        case 10:
            for_each_arc(d, [&](int a, int b) { sum += d.paths(b, a); });
            return static_cast<double>(sum) / 3.0;  // every cycle was met from its three arcs
        default: return closed_triad_total(d, term.variant);
    }
}

// Sinks (out-degree 0, in-degree at least 1): i stops being one, j becomes one. O(1); total O(n).
template <class D>
double change_sink(const D& d, const Term<D>&, const Workspace&, int i, int j, int) {
    const double i_leaves = d.out_degree(i) == 0 && d.in_degree(i) >= 1 ? 1.0 : 0.0;
    const double j_joins = d.out_degree(j) == 0 && d.in_degree(j) == 0 ? 1.0 : 0.0;
    return j_joins - i_leaves;
}
template <class D>
double total_sink(const D& d, const Term<D>&, const Workspace&) {
    int64_t sum = 0;
    for (int v = 0; v < d.node_count; ++v)
        sum += d.out_degree(v) == 0 && d.in_degree(v) >= 1 ? 1 : 0;
    return static_cast<double>(sum);
}

// Sources (in-degree 0, out-degree at least 1): i becomes one, j stops being one. O(1); total O(n).
template <class D>
double change_source(const D& d, const Term<D>&, const Workspace&, int i, int j, int) {
    const double i_joins = d.in_degree(i) == 0 && d.out_degree(i) == 0 ? 1.0 : 0.0;
    const double j_leaves = d.in_degree(j) == 0 && d.out_degree(j) >= 1 ? 1.0 : 0.0;
    return i_joins - j_leaves;
}
template <class D>
double total_source(const D& d, const Term<D>&, const Workspace&) {
    int64_t sum = 0;
    for (int v = 0; v < d.node_count; ++v)
        sum += d.in_degree(v) == 0 && d.out_degree(v) >= 1 ? 1 : 0;
    return static_cast<double>(sum);
}

// Isolates (no arc in or out): each isolated end stops being one. O(1); total O(n).
template <class D>
double change_isolates(const D& d, const Term<D>&, const Workspace&, int i, int j, int) {
    const auto isolated = [&d](int v) {
        return d.in_degree(v) == 0 && d.out_degree(v) == 0 ? 1.0 : 0.0;
    };
    return -isolated(i) - isolated(j);
}
template <class D>
double total_isolates(const D& d, const Term<D>&, const Workspace&) {
    int64_t sum = 0;
    for (int v = 0; v < d.node_count; ++v)
        sum += d.in_degree(v) == 0 && d.out_degree(v) == 0 ? 1 : 0;
    return static_cast<double>(sum);
}

VEXA_INSTANTIATE_DIGRAPH_FAMILY(arc)
VEXA_INSTANTIATE_DIGRAPH_FAMILY(reciprocity)
VEXA_INSTANTIATE_DIGRAPH_FAMILY(in_star)
VEXA_INSTANTIATE_DIGRAPH_FAMILY(out_star)
VEXA_INSTANTIATE_DIGRAPH_FAMILY(mixed_star)
VEXA_INSTANTIATE_DIGRAPH_FAMILY(triad)
VEXA_INSTANTIATE_DIGRAPH_FAMILY(sink)
VEXA_INSTANTIATE_DIGRAPH_FAMILY(source)
VEXA_INSTANTIATE_DIGRAPH_FAMILY(isolates)

}  // namespace vexa
