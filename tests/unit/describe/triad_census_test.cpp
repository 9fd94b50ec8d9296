// The triad census derived from the configuration counts, against a classification of every
// triple one by one, and the bundled samplike network's published census and its file format.

#include "describe/triad_census.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <utility>

#include "support/kinds.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using Counts = std::array<double, triad_class_count>;

TEST(TriadCensus, EqualsAClassificationOfEveryTripleAndSumsToTheTriples) {
    for (const int n : {3, 4, 9, 40}) {
        for (const auto& [density, reciprocity] :
             {std::pair{0.1, 0.0}, {0.3, 0.5}, {0.6, 0.3}, {0.9, 0.9}}) {
            const testing::ArcMatrix matrix = testing::random_arc_matrix(
                n, density, reciprocity, static_cast<uint32_t>(n * 17 + density * 100));
            const TriadCensus census = triad_census(testing::KindFixture<Digraph>::build(matrix));
            const std::array<int64_t, 16> truth = testing::triad_census_by_triples(matrix);
            double sum = 0.0;
            for (size_t k = 0; k < truth.size(); ++k) {
                EXPECT_EQ(census.counts[k], static_cast<double>(truth[k]))
                    << triad_class_names[k] << " at n " << n << ", density " << density;
                sum += census.counts[k];
            }
            EXPECT_EQ(sum, n * (n - 1) * (n - 2) / 6);
            EXPECT_TRUE(census.exact);
        }
    }
    // Fewer than three nodes: no triples at all.
    EXPECT_EQ(triad_census(create_digraph(2)).counts, Counts{});
    EXPECT_EQ(triad_census(create_digraph(1)).counts, Counts{});
}

TEST(TriadCensus, SamplikeAndTheWrittenFile) {
    const TriadCensus census = triad_census(read_digraph(testing::data_path("samplike.txt"), 18));
    // Census order: 300 210 120C 120D 120U 201 111D 111U 030T 030C 102 021D 021C 021U 012 003.
    const std::string expected =
        "Triad Census:\n300\t8\n210\t18\n120C\t5\n120D\t15\n120U\t6\n201\t35\n111D\t68\n111U\t34\n"
        "030T\t5\n030C\t0\n102\t190\n021D\t12\n021C\t24\n021U\t24\n012\t205\n003\t167\n";
    EXPECT_EQ(testing::capture([&](FILE* out) { write_triad_census(out, census); }), expected);

    // From 1,292 nodes the 32-bit products of the derivation cannot hold: one line, no counts.
    EXPECT_TRUE(triad_census(create_digraph(1291)).exact);
    const TriadCensus large = triad_census(create_digraph(1292));
    EXPECT_FALSE(large.exact);
    EXPECT_EQ(
        testing::capture([&](FILE* out) { write_triad_census(out, large); }),
        "Triad Census:\nnot counted: a digraph of 1292 nodes passes the 32-bit range of the census "
        "(at most 1291 nodes)\n");
}

}  // namespace
}  // namespace vexa
