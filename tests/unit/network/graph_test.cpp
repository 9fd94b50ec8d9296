// The graph store: its bookkeeping against a recount from the adjacency alone and against a
// hand-worked network, toggles undone exactly, matrix files and the random start.

#include "network/graph.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "network/dyad_mask.h"
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

// Cells other than 0 and 1, and pairs whose two cells disagree, counted by the readers as a
// plain recount of the matrix counts them; the notes' lines name the file, count and place.
TEST(GraphStore, ReadersNoteValuedAndAsymmetricCellsAsARecountDoes) {
    const std::string dir = testing::scratch_directory("graph_read_notes");
    Rng rng;
    const double values[] = {0, 0, 0, 1, 1, 2, -1, 0.5};
    for (int trial = 0; trial < 30; ++trial) {
        const int n = 1 + trial % 9;
        std::vector<double> cells(static_cast<size_t>(n * n));
        std::string text;
        for (double& v : cells) {
            v = values[rng.node(8)];
            text += std::to_string(v) + (text.size() % 7 == 0 ? "\n" : " ");
        }
        testing::write_text(dir + "/m.txt", text);
        MatrixNotes truth;
        for (int a = 0; a < n; ++a) {
            for (int b = 0; b < n; ++b) {
                const double v = cells[static_cast<size_t>(a * n + b)];
                if (v != 0.0 && v != 1.0 && truth.other_values++ == 0)
                    std::tie(truth.first_other_row, truth.first_other_column) =
                        std::pair(a + 1, b + 1);
                const bool lower_tie = cells[static_cast<size_t>(b * n + a)] == 1.0;
                if (a < b && (v == 1.0) != lower_tie && truth.asymmetric_pairs++ == 0)
                    std::tie(truth.first_asymmetric_row, truth.first_asymmetric_column) =
                        std::pair(a + 1, b + 1);
            }
        }
        for (const NetworkKind kind : {NetworkKind::graph, NetworkKind::digraph}) {
            MatrixNotes graph_notes, mask_notes;
            if (kind == NetworkKind::graph) read_graph(dir + "/m.txt", n, &graph_notes);
            read_dyad_mask(dir + "/m.txt", n, kind, &mask_notes);
            MatrixNotes expected = truth;
            if (kind == NetworkKind::digraph) {
                expected.asymmetric_pairs = 0;  // a digraph's cells are all its own
                expected.first_asymmetric_row = expected.first_asymmetric_column = 0;
            } else {
                EXPECT_EQ(matrix_note_lines(graph_notes, "network", "m.txt"),
                          matrix_note_lines(expected, "network", "m.txt"));
            }
            EXPECT_EQ(matrix_note_lines(mask_notes, "constraint", "m.txt"),
                      matrix_note_lines(expected, "constraint", "m.txt"))
                << trial;
            EXPECT_EQ(mask_notes.other_values, expected.other_values);
            EXPECT_EQ(mask_notes.asymmetric_pairs, expected.asymmetric_pairs);
        }
    }

    // The hand-drawn matrix of the test above: 2, -1 and 1.5 above the diagonal, 1s below.
    testing::write_text(dir + "/m.txt", "1 1 2 -1\n1 0 1.5 0\n1 1 0 1\n1 0 1 0\n");
    MatrixNotes notes;
    read_graph(dir + "/m.txt", 4, &notes);
    EXPECT_EQ(matrix_note_lines(notes, "network", "m.txt"),
              (std::vector<std::string>{
                  "vexa: network file 'm.txt': 3 cells hold values other than 0 and 1 (first at "
                  "row 1, column 3); they are read as no tie",
                  "vexa: network file 'm.txt': the matrix is not symmetric (3 pairs differ, "
                  "first at row 1, column 3); only its upper triangle is used"}));
    testing::write_text(dir + "/m.txt", "0 1\n1 7\n");
    read_dyad_mask(dir + "/m.txt", 2, NetworkKind::graph, &notes);
    EXPECT_EQ(matrix_note_lines(notes, "constraint", "m.txt"),
              (std::vector<std::string>{
                  "vexa: constraint file 'm.txt': 1 cell holds a value other than 0 and 1 (at row "
                  "2, column 2); it is read as no tie"}));

    // A long bad word is quoted cut short; a file that never ends a word is refused by name.
    testing::write_text(dir + "/m.txt", "0 " + std::string(100, 'x') + "\n0 0\n");
    for (const auto& [path, says] :
         {std::pair{dir + "/m.txt",
                    "row 1, column 2: '" + std::string(40, 'x') + "...' is not a number\n"},
          std::pair{std::string("/dev/zero"),
                    "row 1, column 1: '" + std::string(40, '?') +
                        "...' is not a number (a word of more than 256 characters)\n"}}) {
        try {
            read_dyad_mask(path, 2, NetworkKind::graph);
            ADD_FAILURE() << path;
        } catch (const InputFileError& e) {
            EXPECT_EQ(std::string(e.what()) + "\n",
                      "vexa: constraint file '" + path + "', " + says);
        }
    }
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
