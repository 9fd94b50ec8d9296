// The per-sample descriptive rows of a digraph, worked by hand, and the cases the bundled runs
// never reach: a row asked for before its counts exist, a census too large to count. The graph
// measures are recounted in the describe tests and every file's layout is in the golden outputs.

#include "report/descriptive_files.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "base/errors.h"
#include "report/digraph_files.h"
#include "support/graphs.h"
#include "support/test_support.h"

namespace vexa {
namespace {

TEST(DescriptiveFiles, AGeodesicRowNeedsItsPass) {
    const Graph g = testing::graph_of(3, {{0, 1}});
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

TEST(DigraphFiles, DegreeAndGeodesicRowsAndTheCensusBlock) {
    const Digraph d = small();
    DigraphScratch scratch;
    directed_geodesics(d, scratch);
    // Ordered pairs: at distance 1 the three arcs; 0->2 at 2; 2->0 and 2->1 unreachable.
    const std::string text = testing::capture([&](FILE* f) {
        write_in_out_degree_row(f, d);
        write_directed_geodesic_row(f, d, scratch);
    });
    EXPECT_EQ(text,
              "1\t1\t1\t1.000000\t0.000000\t0.000000\t1\t2\t0\t1.000000\t1.000000\t0.000000\t\n"
              "3\t1\t2\n");

    // The observed census against two samples: class 012 (one asymmetric arc) seen once and
    // never; a sample of one value has no spread.
    TriadCensus observed = triad_census(d);
    TriadCensus first = observed, second = observed;
    second.counts[14] += 2.0;
    const std::string block = testing::capture([&](FILE* f) {
        write_triad_census_block(f, observed, {first, second});
    });
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
