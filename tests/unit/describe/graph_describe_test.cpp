// Hand-worked networks: geodesic quartiles, the edge-triangle profile and the exact text of
// the descriptive files.

#include "describe/graph_describe.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "base/errors.h"

namespace vexa {
namespace {

Graph network(int n, const std::vector<std::pair<int, int>>& edges) {
    Graph g = create(n, 0, 0);
    for (const auto& [a, b] : edges) {
        add_edge(g, a, b);
        update_shared_partners(g, a, b, 1);
    }
    return g;
}

GeodesicQuartiles quartiles_of(Graph g) {
    DescribeScratch scratch;
    geodesics(g, scratch);
    return geodesic_quartiles(scratch);
}

void expect_quartiles(const GeodesicQuartiles& q, int g25, int g50, int g75, const char* name) {
    EXPECT_EQ(q.g25, g25) << name;
    EXPECT_EQ(q.g50, g50) << name;
    EXPECT_EQ(q.g75, g75) << name;
}

TEST(GeodesicQuartiles, HandDrawnNetworks) {
    // Path 0-1-2-3-4: 10 pairs; by distance 1:4, 2:3, 3:2, 4:1, cumulative 4, 7, 9, 10.
    // 25% = 2.5 pairs -> 1; 50% = 5 -> 2; 75% = 7.5 -> 3.
    expect_quartiles(quartiles_of(network(5, {{0, 1}, {1, 2}, {2, 3}, {3, 4}})), 1, 2, 3, "path 5");
    // Path 0-1-2-3: 6 pairs, 1:3, 2:2, 3:1. Half the pairs (3) lie at distance 1 exactly,
    // and "at least half" is met there: G50 = 1. 75% = 4.5 -> 2.
    expect_quartiles(quartiles_of(network(4, {{0, 1}, {1, 2}, {2, 3}})), 1, 1, 2, "path 4");
    // Star with centre 0 and leaves 1..4: 4 pairs at 1, 6 leaf pairs at 2.
    expect_quartiles(quartiles_of(network(5, {{0, 1}, {0, 2}, {0, 3}, {0, 4}})), 1, 2, 2, "star");
    // Triangle 0-1-2 and edge 3-4: 4 pairs at 1, the 6 pairs across count as distance n = 5.
    //   0 - 1     3 - 4
    //    \ /
    //     2
    expect_quartiles(quartiles_of(network(5, {{0, 1}, {1, 2}, {0, 2}, {3, 4}})), 1, 5, 5,
                     "two components");
    // No ties: every pair is unreachable. One node: no pairs at all.
    expect_quartiles(quartiles_of(network(3, {})), 3, 3, 3, "empty");
    expect_quartiles(quartiles_of(network(1, {})), 0, 0, 0, "one node");
}

// The triangle 0-1-2 with the pendant edge 2-3, and the separate edge 4-5:
//
//   0 --- 1
//    \   /
//      2 --- 3        4 --- 5
//
// et0 (ties in no triangle at v): 0, 0, 1 (2-3), 1, 1, 1. Triangles: 1, 1, 1, 0, 0, 0.
// etnt = t x et0: 0, 0, 1, 0, 0, 0. etntratio: only node 2 has t > 0 and d > 2: 1 / (3 - 2).
// Ties in no triangle: 2-3 and 4-5. Sum of t_v x et0_v: 1.
Graph pendant_network() { return network(6, {{0, 1}, {1, 2}, {0, 2}, {2, 3}, {4, 5}}); }

TEST(EdgeTriangleProfile, HandWorkedNetworks) {
    // The per-node rows of the pendant network are checked as text below; here its totals.
    Graph g = pendant_network();
    EXPECT_EQ(ties_in_no_triangle(g), 2);
    EXPECT_EQ(triangle_times_lone_ties(g), 1);

    // Node 2 in two triangles with one pendant, and a path hanging off the pendant:
    //
    //   0 ----- 2 ----- 6
    //    \     /|\     /
    //     \   / | \   /
    //       1   |   7
    //           3 ----- 4 ----- 5
    //
    // d_2 = 5, t_2 = 2, et0_2 = 1: etnt 2, ratio 1 / (5 - 2). Node 3 (t = 0) keeps ratio 0,
    // and 0, 1, 6, 7 (t = 1 but d = 2) too. Ties in no triangle: 2-3, 3-4, 4-5.
    Graph wider =
        network(8, {{0, 1}, {1, 2}, {0, 2}, {2, 6}, {2, 7}, {6, 7}, {2, 3}, {3, 4}, {4, 5}});
    edge_triangle_profile(wider);
    EXPECT_EQ(wider.node_work_a, (std::vector<int32_t>{0, 0, 1, 2, 2, 1, 0, 0}));
    EXPECT_EQ(wider.node_doubles, (std::vector<double>{0, 0, 2, 0, 0, 0, 0, 0}));
    EXPECT_EQ(wider.node_values, (std::vector<double>{0, 0, 1.0 / 3.0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(triangle_times_lone_ties(wider), 2);
    EXPECT_EQ(ties_in_no_triangle(wider), 3);
}

template <typename Write>
std::string captured(Write write) {
    char* buffer = nullptr;
    size_t size = 0;
    FILE* out = open_memstream(&buffer, &size);
    try {
        write(out);
    } catch (...) {
        std::fclose(out);
        std::free(buffer);
        throw;
    }
    std::fclose(out);
    std::string text(buffer, size);
    std::free(buffer);
    return text;
}

TEST(DescriptiveFiles, ExactHeaderAndRowOnTheHandWorkedNetwork) {
    // Degrees 2 2 3 1 1 1. Pairs at distance 1: 5, at 2: 2 (0-3, 1-3), none further, 8 apart.
    // Local clustering 1, 1, 1/3, 0, 0, 0: mean 7/18; global 3 x 1 / (1 + 1 + 3) = 0.6.
    // A node of 6 can be in at most (6-2)(6-1)/2 = 10 triangles: columns t0..t10.
    // Shared partners: 5 pairs share one (0-1, 0-2, 1-2, 0-3, 1-3), the other 10 none.
    // Quartiles of the 15 pairs: 5 within distance 1 (a third), 7 within 2, the rest apart (6).
    Graph g = pendant_network();
    DescribeScratch scratch;
    geodesics(g, scratch);
    const std::string text = captured([&](FILE* f) {
        write_degree_header(f, g);
        write_degree_row(f, g);
        write_geodesic_header(f, g);
        write_geodesic_row(f, g, scratch);
        write_cluster_giant_header(f);
        write_cluster_giant_row(f, g);
        write_triangle_header(f, g);
        write_triangle_row(f, g);
        write_two_path_header(f, g);
        write_two_path_row(f, g);
        write_edge_triangle_header(f, g);
        write_edge_triangle_row(f, g);
        write_quartile_header(f);
        write_quartile_row(f, geodesic_quartiles(scratch));
    });
    EXPECT_EQ(text,
              "d1\td2\td3\td4\td5\td6\tmean\tstddev\tskew\n"
              "2\t2\t3\t1\t1\t1\t1.666667\t0.816497\t0.476290\t\n"
              "geo1\tgeo2\tgeo3\tgeo4\tgeo5\tgeoInf\n"
              "5\t2\t0\t0\t0\t8\n"
              "mlocal\tglobal\tgiant\n"
              "0.388889\t0.600000\t4\n"
              "t0\tt1\tt2\tt3\tt4\tt5\tt6\tt7\tt8\tt9\tt10\tmean\tstddev\tskew\t\n"
              "3\t3\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0.500000\t0.547723\t0.000000\t\n"
              "tp0\ttp1\ttp2\ttp3\ttp4\tmean\tstddev\tskew\t\n"
              "10\t5\t0\t0\t0\t0.333333\t0.487950\t0.637588\t\n"
              "et0_v1\tet0_v2\tet0_v3\tet0_v4\tet0_v5\tet0_v6\tmean\tstddev\tskew\t"
              "etnt_v1\tetnt_v2\tetnt_v3\tetnt_v4\tetnt_v5\tetnt_v6\tmean\tstddev\tskew\t"
              "etntratio_v1\tetntratio_v2\tetntratio_v3\tetntratio_v4\tetntratio_v5\tetntratio_v6\t"
              "mean\tstddev\tskew\n"
              "0\t0\t1\t1\t1\t1\t0.666667\t0.516398\t-0.537914\t"
              "0\t0\t1\t0\t0\t0\t0.166667\t0.408248\t1.360828\t"
              "0.000000\t0.000000\t1.000000\t0.000000\t0.000000\t0.000000\t"
              "0.166667\t0.408248\t1.360828\t\n"
              "G25\tG50\tG75\n"
              "1\t6\t6\n");
    // Without a geodesic pass there are no counts to write: refused, not read past the end.
    EXPECT_THROW(captured([&](FILE* f) { write_geodesic_row(f, g, DescribeScratch{}); }),
                 VexaError);
}

}  // namespace
}  // namespace vexa
