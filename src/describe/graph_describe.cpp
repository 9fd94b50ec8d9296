// Degree, triangle, shared-partner, clustering and edge-triangle measures, all read from the
// store's bookkeeping.

#include "describe/graph_describe.h"
#include "base/sizes.h"

#include <cmath>
#include <cstddef>
#include <type_traits>
#include <vector>

namespace vexa {

namespace {

// v's ties whose other end shares no partner with v: ties in no triangle.
int32_t lone_ties(const SparseGraph& graph, int v) {
    int32_t count = 0;
    for (const int32_t u : graph.neighbours_of(v)) {
        if (graph.partners(v, u) == 0) ++count;
    }
    return count;
}

int32_t lone_ties(const Graph& graph, int v) {
    const uint64_t* row = graph.row(v);
    const uint16_t* partners = graph.partners_row(v);
    int32_t count = 0;
    for (int w = 0; w < graph.row_words; ++w) {
        for_each_bit(row[w], w * 64, [&](int u) {
            if (partners[u] == 0) ++count;
        });
    }
    return count;
}

// The moments of the shared partners over all unordered pairs. Up to a few thousand nodes
// the pairs are walked in the dense store's order, so that both stores print the same digits;
// beyond, the histogram gives them in O(n).
Moments sparse_pair_moments(const SparseGraph& graph) {
    const int n = graph.node_count;
    if (n <= 2048) {
        std::vector<double> values;
        values.reserve(static_cast<size_t>(int64_t{n} * (n - 1) / 2));
        for (int a = 0; a < n; ++a) {
            for (int b = a + 1; b < n; ++b) values.push_back(graph.partners(a, b));
        }
        return moments(values.data(), static_cast<int>(values.size()));
    }
    const std::vector<int64_t>& histogram = graph.shared_partner_histogram;
    double pairs = 0.0, sum = 0.0;
    for (size_t s = 0; s < histogram.size(); ++s) {
        pairs += static_cast<double>(histogram[s]);
        sum += static_cast<double>(histogram[s]) * static_cast<double>(s);
    }
    Moments m;
    if (pairs <= 0.0) return m;
    m.mean = sum / pairs;
    double squares = 0.0, cubes = 0.0;
    for (size_t s = 0; s < histogram.size(); ++s) {
        const double d = static_cast<double>(s) - m.mean;
        squares += static_cast<double>(histogram[s]) * d * d;
        cubes += static_cast<double>(histogram[s]) * d * d * d;
    }
    m.variance = pairs > 1.0 ? squares / (pairs - 1.0) : 0.0;
    m.stddev = std::sqrt(m.variance);
    m.skew = m.stddev == 0.0 ? 0.0 : cubes / pairs / m.stddev / m.stddev / m.stddev;
    return m;
}

}  // namespace

template <class G>
Clustering clustering(const G& graph, DescribeScratch& scratch) {
    const int n = graph.node_count;
    scratch.node_values.resize(as_size(n));
    double two_stars = 0.0;
    double triangle_corners = 0.0;  // the sum of t_v: each triangle counted at its 3 nodes
    for (int v = 0; v < n; ++v) {
        const double d = graph.degree[as_size(v)];
        const double t = graph.triangles[as_size(v)];
        const double pairs = d * (d - 1.0) / 2.0;
        scratch.node_values[as_size(v)] = d < 2.0 ? 0.0 : t / pairs;
        if (d >= 2.0) two_stars += pairs;
        triangle_corners += t;
    }
    const Moments local = moments(scratch.node_values.data(), n);
    Clustering result;
    result.mean_local = local.mean;
    result.variance_local = local.variance;
    result.global = two_stars > 0.0 ? triangle_corners / two_stars : 0.0;
    result.giant = scratch.giant_size;
    return result;
}

template <class G>
Moments degree_moments(const G& graph) {
    return moments(graph.degree.data(), graph.node_count);
}

template <class G>
Moments triangle_moments(const G& graph) {
    return moments(graph.triangles.data(), graph.node_count);
}

template <class G>
Moments shared_partner_moments(const G& graph) {
    if constexpr (std::is_same_v<G, Graph>) {
        return pair_moments(graph.shared_partners.data(), graph.node_count);
    } else {
        return sparse_pair_moments(graph);
    }
}

template <class G>
EdgeTriangleProfile edge_triangle_profile(const G& graph, DescribeScratch& scratch) {
    const int n = graph.node_count;
    scratch.lone_ties.resize(as_size(n));
    scratch.lone_products.resize(as_size(n));
    scratch.node_values.resize(as_size(n));
    for (int v = 0; v < n; ++v) {
        const int32_t d = graph.degree[as_size(v)];
        const int32_t t = graph.triangles[as_size(v)];
        const int32_t lone = lone_ties(graph, v);
        scratch.lone_ties[as_size(v)] = lone;
        // The product can pass 2^31 on large dense networks; a double holds it exactly.
        scratch.lone_products[as_size(v)] = static_cast<double>(int64_t{t} * lone);
        scratch.node_values[as_size(v)] =
            t > 0 && d > 2 ? static_cast<double>(lone) / static_cast<double>(d - 2) : 0.0;
    }
    EdgeTriangleProfile profile;
    profile.et0 = moments(scratch.lone_ties.data(), n);
    profile.etnt = moments(scratch.lone_products.data(), n);
    profile.etnt_ratio = moments(scratch.node_values.data(), n);
    return profile;
}

#define VEXA_GRAPH_DESCRIBE(G)                                  \
    template Clustering clustering(const G&, DescribeScratch&); \
    template Moments degree_moments(const G&);                  \
    template Moments triangle_moments(const G&);                \
    template Moments shared_partner_moments(const G&);          \
    template EdgeTriangleProfile edge_triangle_profile(const G&, DescribeScratch&);
VEXA_GRAPH_DESCRIBE(Graph)
VEXA_GRAPH_DESCRIBE(SparseGraph)
#undef VEXA_GRAPH_DESCRIBE

}  // namespace vexa
