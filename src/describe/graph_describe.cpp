// Degree, triangle, shared-partner, clustering and edge-triangle measures, all read from the
// store's bookkeeping.

#include "describe/graph_describe.h"

#include <cstddef>

namespace vexa {

namespace {

size_t as_size(int value) { return static_cast<size_t>(value); }

// v's ties whose other end shares no partner with v: ties in no triangle.
int32_t lone_ties(const Graph& graph, int v) {
    const uint64_t* row = graph.row(v);
    const int32_t* partners = graph.partners_row(v);
    int32_t count = 0;
    for (int w = 0; w < graph.row_words; ++w) {
        for_each_bit(row[w], w * 64, [&](int u) {
            if (partners[u] == 0) ++count;
        });
    }
    return count;
}

}  // namespace

Clustering clustering(const Graph& graph, DescribeScratch& scratch) {
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

Moments degree_moments(const Graph& graph) {
    return moments(graph.degree.data(), graph.node_count);
}

Moments triangle_moments(const Graph& graph) {
    return moments(graph.triangles.data(), graph.node_count);
}

Moments shared_partner_moments(const Graph& graph) {
    return pair_moments(graph.shared_partners.data(), graph.node_count);
}

EdgeTriangleProfile edge_triangle_profile(const Graph& graph, DescribeScratch& scratch) {
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

}  // namespace vexa
