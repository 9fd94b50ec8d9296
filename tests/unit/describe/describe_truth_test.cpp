// The descriptive statistics of the bundled networks against values computed once by networkx
// (tests/data/describe/make_expected.py; the files name the command that wrote them), and the
// geodesic pass against a brute-force Floyd-Warshall recount on random networks.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "describe/graph_describe.h"
#include "numeric/rng.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using Expected = std::map<std::string, std::vector<double>>;

Expected read_expected(const std::string& name) {
    const std::string text = testing::read_text(testing::data_path("describe/" + name));
    Expected expected;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream fields(line);
        std::string key;
        fields >> key;
        double value = 0.0;
        while (fields >> value) expected[key].push_back(value);
    }
    return expected;
}

template <typename T>
std::vector<double> as_doubles(const std::vector<T>& values) {
    return std::vector<double>(values.begin(), values.end());
}

class AgainstNetworkx : public ::testing::TestWithParam<const char*> {};

TEST_P(AgainstNetworkx, EveryMeasureMatches) {
    const std::string network = GetParam();
    const Expected expected =
        read_expected(network.substr(0, network.size() - 4) + ".expected.txt");
    ASSERT_FALSE(expected.empty()) << "expected values for " << network << " are missing";
    const int n = static_cast<int>(expected.at("nodes")[0]);
    Graph g = read_graph(testing::data_path(network), n, 0, 0);
    ASSERT_EQ(g.edge_count, expected.at("edges")[0]);
    DescribeScratch scratch;
    geodesics(g, scratch);

    EXPECT_EQ(as_doubles(g.degree), expected.at("degrees"));
    EXPECT_EQ(as_doubles(g.triangles), expected.at("triangles"));
    EXPECT_EQ(as_doubles(g.shared_partner_histogram), expected.at("shared_partner_histogram"));

    const Clustering c = clustering(g);
    EXPECT_NEAR(c.global, expected.at("transitivity")[0], 1e-12);
    EXPECT_NEAR(c.mean_local, expected.at("average_clustering")[0], 1e-12);
    EXPECT_NEAR(c.variance_local, expected.at("local_clustering_variance")[0], 1e-12);

    EXPECT_EQ(c.giant, expected.at("component_sizes").front());

    // [d] for d = 1..n-1, then [n] unreachable.
    const std::vector<int64_t>& searched = scratch.geodesic_counts;
    EXPECT_EQ(as_doubles(std::vector<int64_t>(searched.begin() + 1, searched.end())),
              expected.at("geodesics"));
    const GeodesicQuartiles q = geodesic_quartiles(scratch);
    EXPECT_EQ((std::vector<double>{double(q.g25), double(q.g50), double(q.g75)}),
              expected.at("geodesic_quartiles"));

    // The triangle row, tens of thousands of columns for faux.mesa.high, read back: the
    // histogram of networkx's per-node triangle counts, then the three moments.
    std::vector<double> histogram(g.triangle_histogram.size(), 0.0);
    for (const double t : expected.at("triangles")) histogram[static_cast<size_t>(t)] += 1.0;
    std::FILE* sink = std::tmpfile();
    ASSERT_NE(sink, nullptr);
    write_triangle_row(sink, g);
    std::rewind(sink);
    std::vector<double> fields;
    double field = 0.0;
    while (std::fscanf(sink, "%lf", &field) == 1) fields.push_back(field);
    std::fclose(sink);
    ASSERT_EQ(fields.size(), histogram.size() + 3);
    EXPECT_EQ(std::vector<double>(fields.begin(), fields.end() - 3), histogram);

    edge_triangle_profile(g);
    EXPECT_EQ(as_doubles(g.node_work_a), expected.at("ties_in_no_triangle"));
    double lone_ends = 0.0;
    for (const double e : expected.at("ties_in_no_triangle")) lone_ends += e;
    EXPECT_EQ(static_cast<double>(ties_in_no_triangle(g)), lone_ends / 2.0);
}

INSTANTIATE_TEST_SUITE_P(BundledNetworks, AgainstNetworkx,
                         ::testing::Values("flomarriage.txt", "faux.mesa.high.txt"));

// Floyd-Warshall over the adjacency: the geodesic matrix the search must reproduce.
std::vector<int32_t> floyd_warshall(const Graph& g) {
    const size_t n = static_cast<size_t>(g.node_count);
    std::vector<int32_t> dist(n * n, no_path);
    for (size_t a = 0; a < n; ++a) {
        for (size_t b = 0; b < n; ++b) {
            if (a == b)
                dist[a * n + b] = 0;
            else if (has_edge(g, static_cast<int>(a), static_cast<int>(b)))
                dist[a * n + b] = 1;
        }
    }
    for (size_t k = 0; k < n; ++k) {
        for (size_t a = 0; a < n; ++a) {
            for (size_t b = 0; b < n; ++b) {
                const int32_t via = dist[a * n + k] + dist[k * n + b];
                if (via < dist[a * n + b]) dist[a * n + b] = via;
            }
        }
    }
    return dist;
}

void expect_floyd_warshall(Graph& g, DescribeScratch& scratch, const std::string& name) {
    std::fill(g.distance.begin(), g.distance.end(), 7);  // stale entries must not survive
    geodesics(g, scratch);
    const uint64_t* kept = scratch.arrivals.data();
    geodesics(g, scratch);  // a second pass on the same network reuses the scratch
    EXPECT_EQ(scratch.arrivals.data(), kept) << name;
    EXPECT_EQ(std::vector<int32_t>(g.distance.begin(), g.distance.end()), floyd_warshall(g)) << name;
    std::vector<int64_t> recounted;
    geodesic_counts(g, recounted);
    EXPECT_EQ(scratch.geodesic_counts, recounted) << name;
}

TEST(Geodesics, MatchFloydWarshall) {
    DescribeScratch scratch;
    // Sizes straddle the word boundaries within a batch of 256 sources, and 257 leaves a
    // second batch of one source; densities from scattered pieces to one dense component.
    for (const int n : {1, 2, 5, 63, 64, 65, 130, 257}) {
        for (const double density : {0.0, 0.02, 0.06, 0.5}) {
            Graph g = create(n, 0, 0);
            Rng rng;
            rng.seed(static_cast<uint32_t>(n * 1000 + static_cast<int>(density * 100)));
            for (int a = 0; a < n; ++a) {
                for (int b = a + 1; b < n; ++b) {
                    if (rng.unit() < density) {
                        add_edge(g, a, b);
                        update_shared_partners(g, a, b, 1);
                    }
                }
            }
            expect_floyd_warshall(
                g, scratch, "n = " + std::to_string(n) + ", density = " + std::to_string(density));
        }
    }
    // A chain 0-1-...-129: distances far beyond the few levels the search holds back before
    // writing them out.
    Graph chain = create(130, 0, 0);
    for (int v = 0; v + 1 < 130; ++v) {
        add_edge(chain, v, v + 1);
        update_shared_partners(chain, v, v + 1, 1);
    }
    expect_floyd_warshall(chain, scratch, "chain");
}

}  // namespace
}  // namespace vexa
