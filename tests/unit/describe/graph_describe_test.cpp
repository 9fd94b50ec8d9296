// Descriptive statistics against a recount from the adjacency matrix by the definitions
// (geodesics by Floyd-Warshall), on the bundled networks and on random ones; quartiles on
// hand-drawn networks.

#include "describe/graph_describe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "describe/digraph_describe.h"
#include "network/sparse_digraph.h"
#include "support/graphs.h"
#include "support/kinds.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::AdjacencyMatrix;

// Every measure of a network recounted from its adjacency matrix alone.
struct Recount {
    std::vector<int32_t> degree, triangles, lone_ties;  // lone: ties in no triangle
    std::vector<int64_t> geodesic_counts;               // unordered pairs by distance, no path at n
    std::vector<double> local;                          // local clustering
    double global = 0.0;
    int32_t giant = 0;
};

Recount recount(const AdjacencyMatrix& m) {
    const int n = m.n;
    const auto at = [n](int a, int b) { return static_cast<size_t>(a * n + b); };
    Recount r;
    std::vector<int32_t> common(static_cast<size_t>(n * n), 0);
    for (int a = 0; a < n; ++a)
        for (int b = 0; b < n; ++b)
            for (int c = 0; c < n; ++c) common[at(a, b)] += m(a, c) && m(b, c) ? 1 : 0;
    // Floyd-Warshall: the geodesics the batched search must reproduce.
    const int32_t none = n;  // beyond every path
    std::vector<int32_t> dist(static_cast<size_t>(n * n));
    for (int a = 0; a < n; ++a)
        for (int b = 0; b < n; ++b) dist[at(a, b)] = a == b ? 0 : m(a, b) ? 1 : none;
    for (int k = 0; k < n; ++k)
        for (int a = 0; a < n; ++a)
            for (int b = 0; b < n; ++b)
                dist[at(a, b)] = std::min(dist[at(a, b)], dist[at(a, k)] + dist[at(k, b)]);
    r.geodesic_counts.assign(static_cast<size_t>(n) + 1, 0);
    double triangle_ends = 0.0, two_stars = 0.0;
    for (int v = 0; v < n; ++v) {
        int32_t d = 0, t2 = 0, lone = 0, reached = 1;
        for (int u = 0; u < n; ++u) {
            d += m(v, u) ? 1 : 0;
            t2 += m(v, u) ? common[at(v, u)] : 0;
            lone += m(v, u) && common[at(v, u)] == 0 ? 1 : 0;
            reached += u != v && dist[at(v, u)] < none ? 1 : 0;
            if (u > v) ++r.geodesic_counts[size_t(std::min(dist[at(v, u)], none))];
        }
        const double pairs = d * (d - 1) / 2.0;
        r.degree.push_back(d);
        r.triangles.push_back(t2 / 2);
        r.lone_ties.push_back(lone);
        r.local.push_back(d < 2 ? 0.0 : (t2 / 2) / pairs);
        r.giant = std::max(r.giant, reached);
        triangle_ends += t2 / 2;
        two_stars += pairs;
    }
    r.global = two_stars > 0.0 ? triangle_ends / two_stars : 0.0;
    return r;
}

// The scratch goes from network to network, as at the sampling points: nothing of an earlier
// network may survive into a later one.
void expect_matches_recount(const AdjacencyMatrix& m, DescribeScratch& scratch,
                            const std::string& name) {
    SCOPED_TRACE(name);
    const Recount truth = recount(m);
    Graph g = testing::KindFixture<Graph>::build(m);
    geodesics(g, scratch);
    const uint64_t* kept = scratch.arrivals.data();
    geodesics(g, scratch);  // a second pass on the same network reuses the scratch
    EXPECT_EQ(scratch.arrivals.data(), kept);
    EXPECT_EQ(scratch.geodesic_counts, truth.geodesic_counts);

    const int n = m.n;
    double mean = 0.0, squares = 0.0;
    for (const double c : truth.local) mean += c / n;
    for (const double c : truth.local) squares += (c - mean) * (c - mean);
    const Clustering c = clustering(g, scratch);
    EXPECT_NEAR(c.global, truth.global, 1e-12);
    EXPECT_NEAR(c.mean_local, mean, 1e-12);
    EXPECT_NEAR(c.variance_local, n > 1 ? squares / (n - 1) : 0.0, 1e-12);
    EXPECT_EQ(c.giant, truth.giant);

    // etnt_v = t_v x et0_v; etntratio_v = et0_v / (d_v - 2) where t_v > 0 and d_v > 2.
    edge_triangle_profile(g, scratch);
    EXPECT_EQ(scratch.lone_ties, truth.lone_ties);
    for (size_t v = 0; v < truth.lone_ties.size(); ++v) {
        const double d = truth.degree[v], t = truth.triangles[v], e = truth.lone_ties[v];
        EXPECT_EQ(scratch.lone_products[v], t * e) << v;
        EXPECT_EQ(scratch.node_values[v], t > 0 && d > 2 ? e / (d - 2) : 0.0) << v;
    }
}

TEST(GraphDescribe, EveryMeasureMatchesARecountFromTheAdjacency) {
    DescribeScratch scratch;
    for (const auto& [file, n] : {std::pair{"flomarriage.txt", 16}, {"faux.mesa.high.txt", 205}})
        expect_matches_recount(
            testing::KindFixture<Graph>::adjacency(read_graph(testing::data_path(file), n)),
            scratch, file);
    // Sizes straddle the word boundaries within a batch of 256 sources, and 257 leaves a
    // second batch of one source; densities from scattered pieces to one dense component.
    for (const int n : {1, 2, 5, 63, 64, 65, 130, 257}) {
        for (const double density : {0.0, 0.02, 0.06, 0.5}) {
            const auto seed = static_cast<uint32_t>(n * 1000 + static_cast<int>(density * 100));
            expect_matches_recount(
                testing::random_matrix(n, density, seed), scratch,
                "n = " + std::to_string(n) + ", density " + std::to_string(density));
        }
    }
    // A chain 0-1-...-129: distances far beyond the levels the search keeps.
    AdjacencyMatrix chain(130);
    for (int v = 0; v + 1 < 130; ++v) chain.set(v, v + 1, true);
    expect_matches_recount(chain, scratch, "chain");
}

std::vector<int32_t> quartiles_of(int n, std::initializer_list<std::pair<int, int>> edges) {
    const Graph g = testing::graph_of(n, edges);
    DescribeScratch scratch;
    geodesics(g, scratch);
    const GeodesicQuartiles q = geodesic_quartiles(scratch);
    return {q.g25, q.g50, q.g75};
}

TEST(GeodesicQuartiles, HandDrawnNetworks) {
    using Q = std::vector<int32_t>;
    // Path 0-1-2-3-4: 10 pairs; by distance 1:4, 2:3, 3:2, 4:1, cumulative 4, 7, 9, 10.
    // 25% = 2.5 pairs -> 1; 50% = 5 -> 2; 75% = 7.5 -> 3.
    EXPECT_EQ(quartiles_of(5, {{0, 1}, {1, 2}, {2, 3}, {3, 4}}), (Q{1, 2, 3}));
    // Path 0-1-2-3: 6 pairs, 1:3, 2:2, 3:1. Half the pairs (3) lie at distance 1 exactly,
    // and "at least half" is met there: G50 = 1. 75% = 4.5 -> 2.
    EXPECT_EQ(quartiles_of(4, {{0, 1}, {1, 2}, {2, 3}}), (Q{1, 1, 2}));
    // Star with centre 0 and leaves 1..4: 4 pairs at 1, 6 leaf pairs at 2.
    EXPECT_EQ(quartiles_of(5, {{0, 1}, {0, 2}, {0, 3}, {0, 4}}), (Q{1, 2, 2}));
    // Triangle 0-1-2 and edge 3-4: 4 pairs at 1, the 6 pairs across count as distance n = 5.
    EXPECT_EQ(quartiles_of(5, {{0, 1}, {1, 2}, {0, 2}, {3, 4}}), (Q{1, 5, 5}));
    EXPECT_EQ(quartiles_of(1, {}), (Q{0, 0, 0}));  // one node: no pairs at all
}

// Beyond the all-pairs limit the geodesics of both kinds come from a sample of sources,
// scaled. On a torus
// every node sees the same distances, so the scaled counts are exact: n times the number of
// nodes at distance d from any one node (found by a plain search from node 0), halved.
TEST(GraphDescribe, SampledGeodesicsOfALargeTorusMatchOneSearch) {
    const int side = 150;
    const int n = side * side;
    ASSERT_GT(n, all_pairs_limit);
    SparseGraph torus = create_sparse_graph(n);
    for (int r = 0; r < side; ++r) {
        for (int c = 0; c < side; ++c) {
            const int v = r * side + c;
            for (const int u : {r * side + (c + 1) % side, ((r + 1) % side) * side + c}) {
                add_edge(torus, v, u);
                update_shared_partners(torus, v, u, 1);
            }
        }
    }
    std::vector<int> distance(static_cast<size_t>(n), -1);
    std::vector<int> queue{0};
    distance[0] = 0;
    for (size_t head = 0; head < queue.size(); ++head) {
        const int v = queue[head];
        for (const int32_t u : torus.neighbours_of(v)) {
            if (distance[static_cast<size_t>(u)] < 0) {
                distance[static_cast<size_t>(u)] = distance[static_cast<size_t>(v)] + 1;
                queue.push_back(u);
            }
        }
    }
    std::vector<int64_t> expected(static_cast<size_t>(n) + 1, 0);
    for (const int d : distance) {
        if (d > 0) expected[static_cast<size_t>(d)] += 1;
    }
    for (int64_t& count : expected) count = count * n / 2;
    DescribeScratch scratch;
    geodesics(torus, scratch);
    EXPECT_EQ(scratch.geodesic_counts, expected);
    EXPECT_EQ(scratch.giant_size, n);

    // The same torus with its arcs going right and down only: every node reaches (a, b) steps
    // away in a + b steps, so the ordered pairs at distance d are n times the nodes with
    // a + b = d (a, b below the side); every pair has a path.
    SparseDigraph directed = create_sparse_digraph(n);
    for (int r = 0; r < side; ++r) {
        for (int c = 0; c < side; ++c) {
            for (const int u : {r * side + (c + 1) % side, ((r + 1) % side) * side + c}) {
                add_arc(directed, r * side + c, u);
                update_two_paths(directed, r * side + c, u, 1);
            }
        }
    }
    std::vector<int64_t> ordered(static_cast<size_t>(n) + 1, 0);
    for (int a = 0; a < side; ++a) {
        for (int b = 0; b < side; ++b) {
            if (a + b > 0) ordered[static_cast<size_t>(a + b)] += n;
        }
    }
    DigraphScratch directed_scratch;
    directed_geodesics(directed, directed_scratch);
    EXPECT_EQ(directed_scratch.geodesic_counts, ordered);
}

}  // namespace
}  // namespace vexa
