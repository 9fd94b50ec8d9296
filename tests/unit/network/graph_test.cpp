// The graph store: its bookkeeping against a recount from the adjacency alone and against a
// hand-worked network, toggles undone exactly, matrix files and the random start.

#include "network/graph.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "base/errors.h"
#include "numeric/rng.h"
#include "support/test_support.h"

namespace vexa {
namespace {

void toggle(Graph& g, int i, int j) {
    const bool adding = !has_edge(g, i, j);
    adding ? add_edge(g, i, j) : remove_edge(g, i, j);
    update_shared_partners(g, i, j, adding ? 1 : 0);
}

void toggle_randomly(Graph& g, int steps, Rng& rng) {
    for (int s = 0; s < steps; ++s) {
        const int i = rng.node(g.node_count), j = rng.node(g.node_count);
        if (i != j) toggle(g, i, j);
    }
}

// Every array but the neighbour lists, whose order is free; check_bookkeeping covers them.
bool same_store(const Graph& a, const Graph& b) {
    return a.edge_count == b.edge_count && a.adjacency == b.adjacency &&
           a.shared_partners == b.shared_partners && a.degree == b.degree &&
           a.degree_histogram == b.degree_histogram &&
           a.shared_partner_histogram == b.shared_partner_histogram && a.triangles == b.triangles &&
           a.triangle_histogram == b.triangle_histogram;
}

TEST(GraphStore, RandomTogglesKeepTheBookkeepingAndAddThenRemoveRestoresEveryArray) {
    // Sizes straddle the 64-bit word boundary; densities from sparse to nearly complete.
    for (const int n : {1, 2, 3, 17, 64, 65, 130}) {
        for (const int steps : {50, 2000}) {
            Graph g = create_graph(n);
            Rng rng;
            rng.seed(static_cast<uint32_t>(n * 7919 + steps));
            toggle_randomly(g, steps, rng);
            for (int s = 0; s < 30 && n > 1; ++s) {
                const int i = rng.node(n), j = (i + 1 + rng.node(n - 1)) % n;
                const Graph before = g;
                toggle(g, i, j);
                toggle(g, i, j);
                ASSERT_TRUE(same_store(before, g)) << "n = " << n << ", " << i << "-" << j;
            }
            EXPECT_EQ(check_bookkeeping(g), "") << "n = " << n << ", steps = " << steps;
        }
    }
}

TEST(GraphStore, NoOpTogglesChangeNothingAndACopyHoldsEveryArray) {
    Graph g = create_graph(70), target = create_graph(70);
    Rng rng;
    rng.seed(5);
    toggle_randomly(g, 600, rng);
    const Graph before = g;
    for (int i = 0; i < 70; ++i) {
        for (int j = i + 1; j < 70; ++j) (has_edge(g, i, j) ? add_edge : remove_edge)(g, i, j);
    }
    EXPECT_TRUE(same_store(before, g));
    // A copy over a store that held another, denser network (its neighbour lists spaced wider)
    // leaves nothing of the old one behind, and the copy goes on toggling soundly.
    toggle_randomly(target, 4000, rng);
    target = g;
    EXPECT_TRUE(same_store(g, target));
    toggle_randomly(target, 4000, rng);
    EXPECT_EQ(check_bookkeeping(target), "");
}

TEST(GraphStore, HandWorkedNetworkAndTinySizes) {
    //  0 - 1
    //   \ /
    //    2 - 3     degrees 2 2 3 1, triangles 1 1 1 0; every pair but 2-3 shares one partner
    Graph g = create_graph(4);
    toggle(g, 0, 1), toggle(g, 1, 2), toggle(g, 0, 2), toggle(g, 2, 3);
    EXPECT_EQ(g.degree_histogram, (std::vector<int32_t>{0, 1, 2, 1}));
    EXPECT_EQ(g.triangle_histogram, (std::vector<int32_t>{1, 3, 0, 0}));
    EXPECT_EQ(g.shared_partner_histogram, (std::vector<int32_t>{1, 5, 0}));
    EXPECT_DOUBLE_EQ(density(g), 4.0 / 6.0);
    EXPECT_EQ(create_graph(1).triangle_histogram, std::vector<int32_t>{1});  // no pairs
    EXPECT_EQ(density(create_graph(1)), 0.0);
    EXPECT_EQ(create_graph(5).triangle_histogram.size(), 7u);  // 0 .. C(4, 2) triangles at a node
    EXPECT_THROW(create_graph(0), SettingError);
    EXPECT_THROW(create_graph(-4), SettingError);
}

TEST(GraphStore, ReadsTheUpperTriangleOfAMatrixFileAndRefusesBadOnes) {
    const std::string dir = testing::scratch_directory("graph_read");
    // Upper-triangle values 2, -1 and 1.5 are no ties even where the lower triangle has 1;
    // the diagonal 1 is no loop; the ties are 0-1 and 2-3.
    testing::write_text(dir + "/m.txt", "1 1 2 -1\n1 0 1.5 0\n1 1 0 1\n1 0 1 0\n");
    const Graph g = read_graph(dir + "/m.txt", 4);
    EXPECT_TRUE(g.edge_count == 2 && has_edge(g, 0, 1) && has_edge(g, 2, 3));
    for (const auto& [n, text, named] : {std::tuple{3, "0 1 1\n1 0 1\n1 1\n", "holds 8 values"},
                                         std::tuple{2, "0 1\nx 0\n", "row 2, column 1: 'x'"},
                                         std::tuple{2, "0 1 1 0 0", "more than the 4 values"},
                                         std::tuple{2, "", "holds 0 values"}}) {
        testing::write_text(dir + "/bad.txt", text);
        try {
            read_graph(dir + "/bad.txt", n);
            ADD_FAILURE() << "accepted: " << text;
        } catch (const InputFileError& e) {
            EXPECT_NE(std::string(e.what()).find(named), std::string::npos) << e.what();
        }
    }
    EXPECT_THROW(read_graph(dir + "/missing.txt", 2), InputFileError);
}

TEST(GraphStore, RandomStartHasTheTargetAndRefusesTheImpossible) {
    Rng rng, other;
    SeedSource seeds{.fixed = true, .base = 11}, again = seeds;
    const Graph g = random_graph(30, 100, rng, seeds);
    EXPECT_EQ(g.edge_count, 100);
    EXPECT_EQ(check_bookkeeping(g), "");
    EXPECT_EQ(random_graph(6, 15, rng, seeds).edge_count, 15);  // complete
    EXPECT_THROW(random_graph(6, 16, rng, seeds), SettingError);
    EXPECT_EQ(random_graph(30, 100, other, again).adjacency, g.adjacency);  // reproducible
}

}  // namespace
}  // namespace vexa
