#pragma once
// Descriptive statistics of an undirected network: degree, triangle, shared-partner and
// edge-triangle distributions, geodesics with their distribution and quartiles, clustering
// and the giant component.
//
// Everything reads the store's bookkeeping (degrees, triangles, shared partners and their
// histograms) instead of recounting; only the geodesics need a pass of their own. These run
// at every sampling point of a simulation, so nothing here allocates once the scratch has
// reached the size of the network.
//
// Each function serves both graph stores (defined for Graph and SparseGraph).
//
// Per-node results are left in the scratch, which each call overwrites:
//   clustering():              node_values = local clustering of each node
//   edge_triangle_profile():   lone_ties = et0_v, lone_products = etnt_v,
//                              node_values = etntratio_v

#include <cstdint>
#include <vector>

#include "describe/geodesic_quartiles.h"
#include "network/graph.h"
#include "network/sparse_graph.h"
#include "numeric/moments.h"

namespace vexa {

// Workspace of the geodesic pass, kept between calls so that a sampling point allocates
// nothing once it has seen a network of this size and tie count.
struct DescribeScratch {
    // The neighbour lists of the network, rebuilt from the adjacency rows at every pass:
    // the neighbours of v are targets[offsets[v] .. offsets[v+1]).
    std::vector<int32_t> offsets, targets;
    // For a batch of sources, a few words per node: bit s says that source base + s has
    // reached the node so far.
    std::vector<uint64_t> reached;
    // The last two levels in the same layout: bit s says that source base + s reached the
    // node first at that level. The newer level is the next level's frontier.
    std::vector<uint64_t> arrivals;
    // Unordered pairs by distance, laid out as geodesic_counts describes; geodesics() leaves
    // the counts of the network it has just measured here.
    std::vector<int64_t> geodesic_counts;
    // The walk that finds the components.
    std::vector<uint8_t> visited;
    std::vector<int32_t> stack;
    // The size of the largest component of the network last measured.
    int32_t giant_size = 0;
    // Per-node results (see above).
    std::vector<int32_t> lone_ties;
    std::vector<double> lone_products;
    std::vector<double> node_values;
};

// All-pairs geodesics by breadth-first search from every node, a batch of 256 sources at
// once: bit s of a node's words stands for one source, so one OR of a neighbour's frontier
// words advances every search of the batch, and a level is frontier-of-neighbours AND NOT
// reached. Leaves the pair counts in scratch.geodesic_counts and sets scratch.giant_size; no
// n x n distance matrix is made, since the reports need the distribution, not the entries.
// Cost O(n/256 * diameter * (n + E)) steps of a few words each. Beyond all_pairs_limit nodes
// (a day of sampling points otherwise) the searches start from an evenly spread sample of
// sampled_sources nodes, and the counts are the sample's, scaled to all pairs and rounded;
// the giant component is still exact.
inline constexpr int all_pairs_limit = 20000;
inline constexpr int sampled_sources = 4096;
// The number of sources the geodesic pass searches from on a network of n nodes.
int geodesic_sources(int n);
template <class G>
void geodesics(const G& graph, DescribeScratch& scratch);

// The number of nodes of the largest connected component (1 for a network without ties).
template <class G>
int32_t largest_component_size(const G& graph, DescribeScratch& scratch);

// The same from the counts of the last geodesics() pass.
GeodesicQuartiles geodesic_quartiles(const DescribeScratch& scratch);

struct Clustering {
    double mean_local = 0.0;      // mean over all nodes of t_v / C(d_v, 2), 0 for d_v < 2
    double variance_local = 0.0;  // sample variance (divisor n - 1) of the same values
    double global = 0.0;          // 3 x triangles / 2-stars, 0 without 2-stars
    int32_t giant = 0;            // scratch.giant_size: run geodesics first
};

// Leaves each node's local clustering in scratch.node_values.
template <class G>
Clustering clustering(const G& graph, DescribeScratch& scratch);

// Moments of the degrees, of the triangles at each node, and of the shared partners over
// all unordered pairs.
template <class G>
Moments degree_moments(const G& graph);
template <class G>
Moments triangle_moments(const G& graph);
template <class G>
Moments shared_partner_moments(const G& graph);

struct EdgeTriangleProfile {
    Moments et0;         // of et0_v: v's ties that lie in no triangle
    Moments etnt;        // of etnt_v = t_v x et0_v
    Moments etnt_ratio;  // of et0_v / (d_v - 2) where t_v > 0 and d_v > 2, else 0
};

// Fills the scratch's lone_ties, lone_products and node_values with et0_v, etnt_v and
// etntratio_v.
template <class G>
EdgeTriangleProfile edge_triangle_profile(const G& graph, DescribeScratch& scratch);

}  // namespace vexa
