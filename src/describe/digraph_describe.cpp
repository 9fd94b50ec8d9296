#include "describe/digraph_describe.h"

#include <cmath>

#include "describe/graph_describe.h"
#include "effects/combiner.h"
#include "effects/digraph/digraph_catalogue.h"

namespace vexa {

namespace {

template <class D>
double total_at_two(const D& digraph, DigraphEffect effect) {
    const Term<D> term = structural_term<D>(static_cast<int>(effect), 0, 2.0f);
    Workspace workspace;
    return term.total(digraph, term, workspace);
}

double ratio(double numerator, double denominator) {
    return denominator != 0.0 ? numerator / denominator : 0.0;
}

}  // namespace

template <class D>
DigraphClustering digraph_clustering(const D& d) {
    using E = DigraphEffect;
    const double t9 = total_at_two(d, E::t9), t10 = total_at_two(d, E::t10);
    const double out2 = total_at_two(d, E::out_star2), in2 = total_at_two(d, E::in_star2);
    const double mixed2 = total_at_two(d, E::mixed_star2);
    const double a2p_t = total_at_two(d, E::a2p_t), a2p_d = total_at_two(d, E::a2p_d),
                 a2p_u = total_at_two(d, E::a2p_u);
    DigraphClustering c;
    c.cto = ratio(t9, 2.0 * out2);
    c.cti = ratio(t9, 2.0 * in2);
    c.ctm = ratio(t9, mixed2);
    c.ccm = ratio(3.0 * t10, mixed2);
    c.akc_t = ratio(total_at_two(d, E::at_t), a2p_t);
    c.akc_c = ratio(total_at_two(d, E::at_c), a2p_t);
    c.akc_d = ratio(total_at_two(d, E::at_d), 2.0 * a2p_d);
    c.akc_u = ratio(total_at_two(d, E::at_u), 2.0 * a2p_u);
    return c;
}

template <class D>
Moments in_degree_moments(const D& d) {
    return moments(d.in_degree_values.data(), d.node_count);
}

template <class D>
Moments out_degree_moments(const D& d) {
    return moments(d.out_degree_values.data(), d.node_count);
}

template <class D>
double in_out_degree_correlation(const D& d) {
    const int n = d.node_count;
    if (n < 2) return 0.0;
    const double mean = static_cast<double>(d.arc_count) / n;  // both degrees have this mean
    double in_squares = 0.0, out_squares = 0.0, cross = 0.0;
    for (int v = 0; v < n; ++v) {
        const double a = d.in_degree(v) - mean;
        const double b = d.out_degree(v) - mean;
        in_squares += a * a;
        out_squares += b * b;
        cross += a * b;
    }
    return in_squares > 0.0 && out_squares > 0.0 ? cross / std::sqrt(in_squares * out_squares)
                                                 : 0.0;
}

template <class D>
void directed_geodesics(const D& d, DigraphScratch& scratch) {
    const int n = d.node_count;
    const size_t nodes = static_cast<size_t>(n);
    scratch.distance.assign(nodes, -1);
    scratch.queue.resize(nodes);
    std::vector<int64_t>& counts = scratch.geodesic_counts;
    counts.assign(nodes + 1, 0);
    // All sources, or on a large network an evenly spread sample of them, as for graphs.
    const int sources = geodesic_sources(n);
    for (int k = 0; k < sources; ++k) {
        const int source = sources == n ? k : static_cast<int>(int64_t{k} * n / sources);
        std::fill(scratch.distance.begin(), scratch.distance.end(), -1);
        scratch.distance[static_cast<size_t>(source)] = 0;
        size_t head = 0, tail = 0;
        scratch.queue[tail++] = source;
        while (head < tail) {
            const int v = scratch.queue[head++];
            const int32_t next = scratch.distance[static_cast<size_t>(v)] + 1;
            for (const int32_t u : d.out_neighbours(v)) {
                int32_t& seen = scratch.distance[static_cast<size_t>(u)];
                if (seen >= 0) continue;
                seen = next;
                counts[static_cast<size_t>(next)] += 1;
                scratch.queue[tail++] = u;
            }
        }
    }
    counts[0] = 0;
    int64_t reached_pairs = 0;
    for (size_t g = 1; g < nodes; ++g) {
        // Pairs met from the sample, scaled to the pairs met from all n sources.
        if (sources != n) counts[g] = std::llround(static_cast<double>(counts[g]) * n / sources);
        reached_pairs += counts[g];
    }
    counts[nodes] = static_cast<int64_t>(n) * (n - 1) - reached_pairs;
}

#define VEXA_DIGRAPH_DESCRIBE(D)                             \
    template DigraphClustering digraph_clustering(const D&); \
    template Moments in_degree_moments(const D&);            \
    template Moments out_degree_moments(const D&);           \
    template double in_out_degree_correlation(const D&);     \
    template void directed_geodesics(const D&, DigraphScratch&);
VEXA_DIGRAPH_DESCRIBE(Digraph)
VEXA_DIGRAPH_DESCRIBE(SparseDigraph)
#undef VEXA_DIGRAPH_DESCRIBE

}  // namespace vexa
