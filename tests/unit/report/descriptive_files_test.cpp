// The per-sample descriptive files of both kinds, the digraph's Pajek block and its triad-census
// block: exact header and row text on hand-worked networks.

#include "report/descriptive_files.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "report/digraph_files.h"
#include "report/network_file.h"
#include "report/pajek.h"
#include "support/graphs.h"
#include "support/test_support.h"

namespace vexa {
namespace {

TEST(DescriptiveFiles, ExactHeaderAndRowOnAHandWorkedNetwork) {
    //   0 --- 1
    //    \   /
    //      2 --- 3        4 --- 5
    // Degrees 2 2 3 1 1 1. Pairs at distance 1: 5, at 2: 2 (0-3, 1-3), none further, 8 apart.
    // Local clustering 1, 1, 1/3, 0, 0, 0: mean 7/18; global 3 x 1 / (1 + 1 + 3) = 0.6.
    // A node of 6 can be in at most (6-2)(6-1)/2 = 10 triangles: columns t0..t10.
    // Shared partners: 5 pairs share one (0-1, 0-2, 1-2, 0-3, 1-3), the other 10 none.
    // et0 (ties in no triangle at v): 0, 0, 1 (2-3), 1, 1, 1. etnt = t x et0: 0, 0, 1, 0, 0, 0.
    // etntratio: only node 2 has t > 0 and d > 2: 1 / (3 - 2).
    // Quartiles of the 15 pairs: 5 within distance 1 (a third), 7 within 2, the rest apart (6).
    Graph g = testing::graph_of(6, {{0, 1}, {1, 2}, {0, 2}, {2, 3}, {4, 5}});
    DescribeScratch scratch;
    geodesics(g, scratch);
    const std::string text = testing::capture([&](FILE* f) {
        write_degree_header(f, g), write_degree_row(f, g);
        write_geodesic_header(f, g), write_geodesic_row(f, g, scratch);
        write_cluster_giant_header(f), write_cluster_giant_row(f, g, scratch);
        write_triangle_header(f, g), write_triangle_row(f, g);
        write_two_path_header(f, g), write_two_path_row(f, g);
        write_edge_triangle_header(f, g), write_edge_triangle_row(f, g, scratch);
        write_quartile_header(f), write_quartile_row(f, geodesic_quartiles(scratch));
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
    EXPECT_THROW(testing::capture([&](FILE* f) { write_geodesic_row(f, g, DescribeScratch{}); }),
                 VexaError);
}

// 0 -> 1 -> 2 and 1 -> 0: in-degrees 1 1 1, out-degrees 1 2 0.
Digraph small() {
    Digraph d = create_digraph(3);
    for (const auto& [i, j] : {std::pair{0, 1}, {1, 2}, {1, 0}}) {
        add_arc(d, i, j);
        update_two_paths(d, i, j, 1);
    }
    return d;
}

TEST(DigraphFiles, DescriptiveRowsPajekBlockAndCensusBlock) {
    const Digraph d = small();
    DigraphScratch scratch;
    directed_geodesics(d, scratch);
    // Ordered pairs: at distance 1 the three arcs; 0->2 at 2; 2->0 and 2->1 unreachable.
    const std::string text = testing::capture([&](FILE* f) {
        write_in_out_degree_header(f, d), write_in_out_degree_row(f, d);
        write_directed_geodesic_header(f, d), write_directed_geodesic_row(f, d, scratch);
        write_digraph_clustering_header(f);
        write_network_matrix(f, d);
    });
    EXPECT_EQ(text,
              "ind1\tind2\tind3\tmean\tstddev\tskew\toutd1\toutd2\toutd3\tmean\tstddev\tskew\n"
              "1\t1\t1\t1.000000\t0.000000\t0.000000\t1\t2\t0\t1.000000\t1.000000\t0.000000\t\n"
              "geo1\tgeo2\tgeoInf\n"
              "3\t1\t2\n"
              "cto\tcti\tctm\tccm\takct\akcd\takcu\takcc\n"
              "0 1 0\n1 0 1\n0 0 0\n");
    const std::string path = testing::scratch_directory("digraph_pajek") + "/p.paj";
    write_pajek_block(d, "s_10", path);
    EXPECT_EQ(testing::read_text(path),
              "Network s_10\nvertices 3\nmatrix\n0 1 0 \n1 0 1 \n0 0 0 \n\n");

    // The observed census against two samples: class 012 (one asymmetric arc) seen once and
    // never; a sample of one value has no spread.
    TriadCensus observed = triad_census(d);
    TriadCensus first = observed, second = observed;
    second.counts[14] += 2.0;
    const std::string block = testing::capture([&](FILE* f) {
        write_triad_census_block(f, observed, {first, second});
    });
    EXPECT_EQ(block.substr(0, 56),
              "\nGOF on Triad Census\nTriad\tobserved\tmean\tstddev\tt-ratio\n");
    EXPECT_NE(block.find("\n012\t0\t1.000\t1.414\t-0.707\n"), std::string::npos) << block;
    EXPECT_NE(block.find("\n111U\t1\t1.000\t0.000\t"), std::string::npos) << block;
    observed.exact = false;
    EXPECT_NE(testing::capture([&](FILE* f) {
                  write_triad_census_block(f, observed, {});
              }).find("not counted"),
              std::string::npos);
}

}  // namespace
}  // namespace vexa
