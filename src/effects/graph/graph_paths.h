#pragma once
// The path and two-path counts of graphs: 3Path, P3, 4Cycle and the Q statistics (pairs by
// the number of two-paths joining them). Included by the graph catalogue only.

#include <cstddef>
#include <span>
#include <type_traits>

#include "effects/graph/graph_counts.h"

namespace vexa::graph_terms {

template <GraphStore G>
inline int64_t neighbour_degree_sum(const G& g, int v) {
    int64_t sum = 0;
    for_each_neighbour(g, v, [&](int k) { sum += degree_of(g, k); });
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

}  // namespace vexa::graph_terms
