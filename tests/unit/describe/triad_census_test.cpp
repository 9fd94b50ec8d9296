// The triad census derived from the configuration counts, against a classification of every
// triple one by one, hand-worked digraphs, the bundled samplike network and its file format.

#include "describe/triad_census.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "network/digraph.h"
#include "support/digraph_brute_force.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using Counts = std::array<double, triad_class_count>;

Digraph digraph_of(int n, const std::vector<std::pair<int, int>>& arcs) {
    Digraph d = create_digraph(n);
    for (const auto& [i, j] : arcs) {
        add_arc(d, i, j);
        update_two_paths(d, i, j, 1);
    }
    return d;
}

// One class count at its place in census order, the rest 0.
Counts only(const char* name, double count) {
    Counts c{};
    for (size_t k = 0; k < c.size(); ++k) {
        if (std::string(triad_class_names[k]) == name) c[k] = count;
    }
    return c;
}

TEST(TriadCensus, HandWorkedDigraphs) {
    EXPECT_EQ(triad_census(create_digraph(7)).counts, only("003", 35));
    EXPECT_EQ(triad_census(digraph_of(3, {{0, 1}})).counts, only("012", 1));
    EXPECT_EQ(triad_census(digraph_of(3, {{0, 1}, {1, 0}})).counts, only("102", 1));
    EXPECT_EQ(triad_census(digraph_of(3, {{0, 1}, {1, 0}, {0, 2}, {2, 0}, {1, 2}, {2, 1}})).counts,
              only("300", 1));
    // Fewer than three nodes: no triples at all.
    EXPECT_EQ(triad_census(digraph_of(2, {{0, 1}, {1, 0}})).counts, Counts{});
    EXPECT_EQ(triad_census(create_digraph(1)).counts, Counts{});
}

TEST(TriadCensus, EqualsAClassificationOfEveryTripleAndSumsToTheTriples) {
    for (const int n : {3, 4, 9, 40}) {
        for (const auto& [density, reciprocity] :
             {std::pair{0.1, 0.0}, {0.3, 0.5}, {0.6, 0.3}, {0.9, 0.9}}) {
            const testing::ArcMatrix matrix = testing::random_arc_matrix(
                n, density, reciprocity, static_cast<uint32_t>(n * 17 + density * 100));
            const TriadCensus census = triad_census(testing::digraph_from(matrix));
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
