// Descriptive statistics against independent truth: the bundled networks against values that
// networkx computed once (tests/data/describe/make_expected.py), geodesics against Floyd-Warshall
// on random networks, and hand-worked quartiles and exact text of the descriptive files.

#include "describe/graph_describe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "model/terms.h"
#include "support/brute_force.h"
#include "support/kinds.h"
#include "support/test_support.h"

namespace vexa {
namespace {

template <typename T>
std::vector<double> as_doubles(const std::vector<T>& v) {
    return {v.begin(), v.end()};
}

std::vector<double> quartiles_of(Graph g) {
    DescribeScratch scratch;
    geodesics(g, scratch);
    const GeodesicQuartiles q = geodesic_quartiles(scratch);
    return {double(q.g25), double(q.g50), double(q.g75)};
}

class AgainstNetworkx : public ::testing::TestWithParam<const char*> {};

TEST_P(AgainstNetworkx, EveryMeasureMatches) {
    const std::string network = GetParam();
    std::map<std::string, std::vector<double>> expected;  // "key value value ..." per line
    std::istringstream lines(
        testing::read_text(testing::data_path("describe/" + network + ".expected.txt")));
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream fields(line);
        std::string key;
        fields >> key;
        for (double v = 0.0; fields >> v;) expected[key].push_back(v);
    }
    Graph g = read_graph(testing::data_path(network + ".txt"), int(expected.at("nodes")[0]));
    ASSERT_EQ(g.edge_count, expected.at("edges")[0]);
    DescribeScratch scratch;
    geodesics(g, scratch);
    EXPECT_EQ(as_doubles(g.degree), expected.at("degrees"));
    EXPECT_EQ(as_doubles(g.triangles), expected.at("triangles"));
    EXPECT_EQ(as_doubles(g.shared_partner_histogram), expected.at("shared_partner_histogram"));

    const Clustering c = clustering(g, scratch);
    EXPECT_NEAR(c.global, expected.at("transitivity")[0], 1e-12);
    EXPECT_NEAR(c.mean_local, expected.at("average_clustering")[0], 1e-12);
    EXPECT_NEAR(c.variance_local, expected.at("local_clustering_variance")[0], 1e-12);
    EXPECT_EQ(c.giant, expected.at("component_sizes").front());

    const std::vector<int64_t>& counts = scratch.geodesic_counts;  // [n]: no path
    EXPECT_EQ(std::vector<double>(counts.begin() + 1, counts.end()), expected.at("geodesics"));
    EXPECT_EQ(quartiles_of(g), expected.at("geodesic_quartiles"));

    // From networkx's d, t and lone ties e: etnt = t e, etntratio = e / (d - 2) if t > 0, d > 2.
    edge_triangle_profile(g, scratch);
    const std::vector<double>& lone = expected.at("ties_in_no_triangle");
    double lone_ends = 0.0, products = 0.0;
    for (size_t v = 0; v < lone.size(); ++v) {
        const double d = expected.at("degrees")[v], t = expected.at("triangles")[v];
        EXPECT_EQ(scratch.lone_products[v], t * lone[v]) << v;
        EXPECT_EQ(scratch.node_values[v], t > 0 && d > 2 ? lone[v] / (d - 2) : 0.0) << v;
        lone_ends += lone[v];
        products += t * lone[v];
    }
    EXPECT_EQ(as_doubles(scratch.lone_ties), lone);
    // The 0ET and ETNT statistics count the same from the store's bookkeeping.
    const Model model =
        testing::model_of(NetworkKind::graph, {int(GraphEffect::et0), int(GraphEffect::etnt)});
    EXPECT_EQ(testing::totals_of(g, make_terms<Graph>(model), 2),
              (std::vector<double>{lone_ends / 2, products}));
}

INSTANTIATE_TEST_SUITE_P(BundledNetworks, AgainstNetworkx,
                         ::testing::Values("flomarriage", "faux.mesa.high"));

// Floyd-Warshall over the adjacency matrix: the geodesics the search must reproduce.
std::vector<int32_t> floyd_warshall(const testing::AdjacencyMatrix& m) {
    const size_t n = static_cast<size_t>(m.n);
    std::vector<int32_t> dist(n * n);
    for (size_t i = 0; i < n * n; ++i) dist[i] = i % (n + 1) == 0 ? 0 : m.cells[i] ? 1 : no_path;
    for (size_t k = 0; k < n; ++k)
        for (size_t a = 0; a < n; ++a)
            for (size_t b = 0; b < n; ++b)
                dist[a * n + b] = std::min(dist[a * n + b], dist[a * n + k] + dist[k * n + b]);
    return dist;
}

TEST(Geodesics, MatchFloydWarshall) {
    DescribeScratch scratch;
    const auto check = [&](const testing::AdjacencyMatrix& m, const std::string& name) {
        Graph g = testing::graph_from(m);
        std::fill(scratch.distance.begin(), scratch.distance.end(),
                  7);  // stale entries must not survive
        geodesics(g, scratch);
        const uint64_t* kept = scratch.arrivals.data();
        geodesics(g, scratch);  // a second pass on the same network reuses the scratch
        EXPECT_EQ(scratch.arrivals.data(), kept) << name;
        const std::vector<int32_t> truth = floyd_warshall(m);
        EXPECT_EQ(scratch.distance, truth) << name;
        // Unordered pairs by distance, unreachable ones at n.
        std::vector<int64_t> recounted(static_cast<size_t>(m.n) + 1, 0);
        for (int a = 0; a < m.n; ++a) {
            for (int b = a + 1; b < m.n; ++b) {
                const int32_t d = truth[static_cast<size_t>(a * m.n + b)];
                recounted[static_cast<size_t>(d == no_path ? m.n : d)] += 1;
            }
        }
        EXPECT_EQ(scratch.geodesic_counts, recounted) << name;
        geodesics(g, scratch, false);  // the counts alone, as a sampling point takes them
        EXPECT_EQ(scratch.geodesic_counts, recounted) << name;
    };
    // Sizes straddle the word boundaries within a batch of 256 sources, and 257 leaves a
    // second batch of one source; densities from scattered pieces to one dense component.
    for (const int n : {1, 2, 5, 63, 64, 65, 130, 257}) {
        for (const double density : {0.0, 0.02, 0.06, 0.5}) {
            const uint32_t seed = static_cast<uint32_t>(n * 1000 + static_cast<int>(density * 100));
            check(testing::random_matrix(n, density, seed),
                  "n = " + std::to_string(n) + ", density = " + std::to_string(density));
        }
    }
    // A chain 0-1-...-129: distances far beyond the few levels the search holds back.
    testing::AdjacencyMatrix chain(130);
    for (int v = 0; v + 1 < 130; ++v) chain.set(v, v + 1, true);
    check(chain, "chain");
}

Graph network(int n, const std::vector<std::pair<int, int>>& edges) {
    testing::AdjacencyMatrix m(n);
    for (const auto& [a, b] : edges) m.set(a, b, true);
    return testing::graph_from(m);
}

TEST(GeodesicQuartiles, HandDrawnNetworks) {
    using Q = std::vector<double>;
    // Path 0-1-2-3-4: 10 pairs; by distance 1:4, 2:3, 3:2, 4:1, cumulative 4, 7, 9, 10.
    // 25% = 2.5 pairs -> 1; 50% = 5 -> 2; 75% = 7.5 -> 3.
    EXPECT_EQ(quartiles_of(network(5, {{0, 1}, {1, 2}, {2, 3}, {3, 4}})), (Q{1, 2, 3}));
    // Path 0-1-2-3: 6 pairs, 1:3, 2:2, 3:1. Half the pairs (3) lie at distance 1 exactly,
    // and "at least half" is met there: G50 = 1. 75% = 4.5 -> 2.
    EXPECT_EQ(quartiles_of(network(4, {{0, 1}, {1, 2}, {2, 3}})), (Q{1, 1, 2}));
    // Star with centre 0 and leaves 1..4: 4 pairs at 1, 6 leaf pairs at 2.
    EXPECT_EQ(quartiles_of(network(5, {{0, 1}, {0, 2}, {0, 3}, {0, 4}})), (Q{1, 2, 2}));
    // Triangle 0-1-2 and edge 3-4: 4 pairs at 1, the 6 pairs across count as distance n = 5.
    EXPECT_EQ(quartiles_of(network(5, {{0, 1}, {1, 2}, {0, 2}, {3, 4}})), (Q{1, 5, 5}));
    EXPECT_EQ(quartiles_of(network(1, {})), (Q{0, 0, 0}));  // one node: no pairs at all
}

}  // namespace
}  // namespace vexa
