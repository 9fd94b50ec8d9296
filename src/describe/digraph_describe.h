#pragma once
// Descriptive statistics of a directed network: the in- and out-degree distributions and their
// correlation, the clustering coefficients of directed triads, and geodesics along directed
// paths over ordered pairs.
//
// Clustering: Cto = T9 / (2 out-2-stars), Cti = T9 / (2 in-2-stars), Ctm = T9 / mixed 2-stars,
// Ccm = 3 T10 / mixed 2-stars (T9 the transitive triples, T10 the cycles); the alternating
// forms, each at lambda 2, AKC-T = AT-T / A2P-T, AKC-C = AT-C / A2P-T, AKC-D = AT-D / (2 A2P-D)
// and AKC-U = AT-U / (2 A2P-U). A ratio with a zero denominator is 0.

#include <array>
#include <cstdint>
#include <vector>

#include "describe/geodesic_quartiles.h"
#include "network/digraph.h"
#include "network/sparse_digraph.h"
#include "numeric/moments.h"

namespace vexa {

struct DigraphClustering {
    double cto = 0.0, cti = 0.0, ctm = 0.0, ccm = 0.0;
    double akc_t = 0.0, akc_d = 0.0, akc_u = 0.0, akc_c = 0.0;
};

// Each function serves both digraph stores (defined for Digraph and SparseDigraph).
template <class D>
DigraphClustering digraph_clustering(const D& digraph);

template <class D>
Moments in_degree_moments(const D& digraph);
template <class D>
Moments out_degree_moments(const D& digraph);
// The Pearson correlation of the nodes' in- and out-degrees; 0 when either does not vary.
template <class D>
double in_out_degree_correlation(const D& digraph);

// Workspace of the directed geodesic pass, kept between calls.
struct DigraphScratch {
    std::vector<int32_t> distance;  // one source's distances
    std::vector<int32_t> queue;
    // Ordered pairs by distance: entry d = pairs at distance d (1 .. n-1), entry n = pairs
    // without a directed path, entry 0 unused.
    std::vector<int64_t> geodesic_counts;
};

// Breadth-first search along out-arcs from every node: O(n (n + arcs)). Leaves the pair
// counts in the scratch. Beyond all_pairs_limit nodes the searches start from an evenly spread
// sample of sampled_sources nodes, and the counts are the sample's, scaled to all pairs.
template <class D>
void directed_geodesics(const D& digraph, DigraphScratch& scratch);

}  // namespace vexa
