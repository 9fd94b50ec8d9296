// The digraph's per-sample files, its Pajek block and its triad-census block, exactly, on a
// hand-worked digraph.

#include "report/digraph_files.h"

#include <gtest/gtest.h>

#include <string>

#include "report/network_file.h"
#include "report/pajek.h"
#include "support/test_support.h"

namespace vexa {
namespace {

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
