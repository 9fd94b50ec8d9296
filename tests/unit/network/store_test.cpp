// The network stores: their bookkeeping against a recount from the adjacency alone, toggles
// undone exactly, copies that keep toggling without moving their lists, matrix files and the
// random starts; graphs and digraphs alike.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "network/dyad_mask.h"
#include "numeric/rng.h"
#include "support/kinds.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::KindFixture;
using testing::same_store;
using testing::toggle;

template <class Store>
void toggle_randomly(Store& store, int steps, Rng& rng) {
    for (int s = 0; s < steps; ++s) {
        const int i = rng.node(store.node_count), j = rng.node(store.node_count);
        if (i != j) toggle(store, i, j);
    }
}

// Where the neighbour lists live: room for the densest network is reserved at creation.
const int32_t* lists(const Graph& g) { return g.neighbour_lists.data(); }
const int32_t* lists(const Digraph& d) { return d.out_lists.entries.data(); }
const int32_t* other_lists(const Graph& g) { return g.neighbour_lists.data(); }
const int32_t* other_lists(const Digraph& d) { return d.in_lists.entries.data(); }

template <class Store>
class NetworkStore : public ::testing::Test {};
using Stores = ::testing::Types<Graph, Digraph>;
TYPED_TEST_SUITE(NetworkStore, Stores);

TYPED_TEST(NetworkStore, RandomTogglesKeepTheBookkeepingAndAToggleUndoneRestoresEveryArray) {
    // Sizes straddle the 64-bit word boundary; densities from sparse to nearly complete.
    for (const int n : {1, 2, 3, 17, 64, 65, 130}) {
        for (const int steps : {50, 4000}) {
            TypeParam store = testing::empty_store<TypeParam>(n);
            Rng rng;
            rng.seed(static_cast<uint32_t>(n * 7919 + steps));
            toggle_randomly(store, steps, rng);
            for (int s = 0; s < 30 && n > 1; ++s) {
                const int i = rng.node(n), j = (i + 1 + rng.node(n - 1)) % n;
                const TypeParam before = store;
                toggle(store, i, j);
                toggle(store, i, j);
                ASSERT_TRUE(same_store(before, store)) << "n = " << n << ", " << i << "," << j;
            }
            EXPECT_EQ(check_bookkeeping(store), "") << "n = " << n << ", steps = " << steps;
        }
    }
}

TYPED_TEST(NetworkStore, NoOpTogglesChangeNothingAndCopiesFillUpWithoutMovingTheirLists) {
    TypeParam source = testing::empty_store<TypeParam>(70);
    Rng rng;
    rng.seed(5);
    toggle_randomly(source, 800, rng);
    const TypeParam before = source;
    for (int i = 0; i < 70; ++i) {
        for (int j = 0; j < 70; ++j) {
            if (i == j) continue;
            if (has_tie(source, i, j)) {
                add_tie(source, i, j);
            } else {
                remove_tie(source, i, j);
            }
        }
    }
    EXPECT_TRUE(same_store(before, source));
    // By construction and over a store that held a denser network (its lists spaced wider).
    TypeParam copied = source;
    TypeParam assigned = testing::empty_store<TypeParam>(70);
    toggle_randomly(assigned, 4000, rng);
    assigned = source;
    for (TypeParam* store : {&copied, &assigned}) {
        EXPECT_TRUE(same_store(source, *store));
        const int32_t* kept = lists(*store);
        const int32_t* other_kept = other_lists(*store);
        for (int i = 0; i < 70; ++i) {
            for (int j = 0; j < 70; ++j) {
                if (i != j && !has_tie(*store, i, j)) toggle(*store, i, j);
            }
        }
        EXPECT_EQ(tie_count(*store), TypeParam::kind == NetworkKind::graph ? 70 * 69 / 2 : 70 * 69);
        EXPECT_TRUE(lists(*store) == kept && other_lists(*store) == other_kept) << "a list moved";
        EXPECT_EQ(check_bookkeeping(*store), "");
    }
}

TEST(NetworkStore, DensitiesAndSizesRefused) {
    // A triangle with a pendant tie; three arcs among four nodes.
    Graph hand = create_graph(4);
    toggle(hand, 0, 1), toggle(hand, 1, 2), toggle(hand, 0, 2), toggle(hand, 2, 3);
    EXPECT_DOUBLE_EQ(density(hand), 4.0 / 6.0);
    Digraph d = create_digraph(4);
    toggle(d, 2, 0), toggle(d, 1, 3), toggle(d, 2, 1);
    EXPECT_DOUBLE_EQ(density(d), 3.0 / 12.0);
    EXPECT_DOUBLE_EQ(mean_degree(d), 0.75);
    EXPECT_EQ(density(create_graph(1)), 0.0);
    EXPECT_EQ(density(create_digraph(1)), 0.0);
    EXPECT_EQ(mean_degree(create_digraph(1)), 0.0);
    EXPECT_THROW(create_graph(0), SettingError);
    EXPECT_THROW(create_graph(-4), SettingError);
    EXPECT_THROW(create_digraph(0), SettingError);
    // Both dense stores count pairs in 16 bits, exact while a count (at most n - 2) fits.
    try {
        create_digraph(max_digraph_nodes + 1);
        ADD_FAILURE() << "a digraph of 65,538 nodes was created";
    } catch (const SettingError& e) {
        EXPECT_NE(std::string(e.what()).find("65,535"), std::string::npos) << e.what();
    }
    try {
        create_graph(max_graph_nodes + 1);
        ADD_FAILURE() << "a dense graph of 65,538 nodes was created";
    } catch (const SettingError& e) {
        EXPECT_NE(std::string(e.what()).find("65,535"), std::string::npos) << e.what();
    }
}

// 2, -1 and 1.5 are no ties, the diagonal 1 is no loop; the graph reads the upper triangle.
const char* const hand_drawn = "1 1 2 -1\n1 0 1.5 0\n1 1 0 1\n1 0 1 0\n";
constexpr int hand_drawn_ones[4][4] = {{0, 1, 0, 0}, {1, 0, 0, 0}, {1, 1, 0, 1}, {1, 0, 1, 0}};

template <class Store>
Store read_store(const std::string& path, int n) {
    if constexpr (std::is_same_v<Store, Graph>) return read_graph(path, n);
    if constexpr (std::is_same_v<Store, SparseGraph>) return read_sparse_graph(path, n);
    if constexpr (std::is_same_v<Store, Digraph>) return read_digraph(path, n);
    if constexpr (std::is_same_v<Store, SparseDigraph>) return read_sparse_digraph(path, n);
}

template <class Store>
void expect_matrix_files_read(const std::string& dir) {
    constexpr bool directed = Store::kind == NetworkKind::digraph;
    SCOPED_TRACE(directed ? "digraph" : "graph");
    testing::write_text(dir + "/m.txt", hand_drawn);
    const Store store = read_store<Store>(dir + "/m.txt", 4);
    EXPECT_EQ(tie_count(store), directed ? 7 : 2);
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            const int row = directed ? i : std::min(i, j), column = directed ? j : std::max(i, j);
            EXPECT_EQ(has_tie(store, i, j), i != j && hand_drawn_ones[row][column] == 1) << i << j;
        }
    }
    EXPECT_EQ(check_bookkeeping(store), "");
    for (const auto& [n, text, graph_says, digraph_says] :
         {std::tuple{3, "0 1 1\n1 0 1\n1 1\n", "holds 8 values", "ends in row 3"},
          std::tuple{2, "0 1\nx 0\n", "row 2, column 1: 'x'", "row 2, column 1: 'x'"},
          std::tuple{2, "0 1 1 0 0", "more than the 4 values", "more than the 4 values"},
          std::tuple{2, "", "holds 0 values", "ends in row 1"}}) {
        testing::write_text(dir + "/bad.txt", text);
        try {
            read_store<Store>(dir + "/bad.txt", n);
            ADD_FAILURE() << "accepted: " << text;
        } catch (const InputFileError& e) {
            const std::string message = e.what();
            EXPECT_NE(message.find(directed ? digraph_says : graph_says), std::string::npos)
                << message;
            EXPECT_NE(message.find("bad.txt"), std::string::npos) << message;
        }
    }
    try {
        read_store<Store>(dir + "/missing.txt", 2);
        ADD_FAILURE() << "a missing file was read";
    } catch (const InputFileError& e) {
        EXPECT_NE(std::string(e.what()).find("missing.txt"), std::string::npos) << e.what();
    }
}

// The hand-drawn network's arcs as a list: two pairs tied both ways under *Edges, the valued
// cells with their values, names and comments to skip.
const char* const hand_drawn_list =
    "% drawn by hand\n*Network hand\n*Vertices 4\n1 \"a\"\n2 \"b\"\n*Edges\n1 2\n4 3 1\n"
    "*arcs\n1 3 2\n1 4 -1\n2 3 1.5\n3 1\n3 2\n4 1\n2 2\n";

// A list ties what it lists; a graph takes every listed tie, whichever way it is listed.
template <class Store>
void expect_tie_lists_read(const std::string& dir) {
    constexpr bool directed = Store::kind == NetworkKind::digraph;
    SCOPED_TRACE(directed ? "digraph" : "graph");
    testing::write_text(dir + "/list.txt", hand_drawn_list);
    const Store store = read_store<Store>(dir + "/list.txt", 4);
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            const bool listed = hand_drawn_ones[i][j] == 1 || (!directed && hand_drawn_ones[j][i]);
            EXPECT_EQ(has_tie(store, i, j), i != j && listed) << i << j;
        }
    }
    EXPECT_EQ(check_bookkeeping(store), "");
    for (const auto& [text, says] :
         {std::pair{"*Vertices 5\n",
                    "line 1: the run has 4 nodes, but the list says '*Vertices 5'"},
          std::pair{"*Arcs\n1 2\n", "line 1: the node count comes first"},
          std::pair{"*Network x\n1 2\n", "line 2: the list starts with '*Vertices n'"},
          std::pair{"*Vertices 4\n*Arcs\n1 5\n", "line 3: node 5 is not among the 4 nodes"},
          std::pair{"*Vertices 4\n*Arcs\n1 x\n", "line 3: 'x' is not a node number"},
          std::pair{"*Vertices 4\n*Arcs\n1\n", "line 3: a tie needs two node numbers"},
          std::pair{"*Vertices 4\n*Arcs\n1 2 one\n", "line 3: 'one' is not a number"},
          std::pair{"*Vertices 4\n*Matrix\n", "line 2: '*Matrix' sections are not read"}}) {
        testing::write_text(dir + "/bad.txt", text);
        try {
            read_store<Store>(dir + "/bad.txt", 4);
            ADD_FAILURE() << "accepted: " << text;
        } catch (const InputFileError& e) {
            EXPECT_NE(std::string(e.what()).find(std::string("bad.txt', ") + says),
                      std::string::npos)
                << e.what();
        }
    }
}

TEST(MatrixFiles, EveryStoreReadsAMatrixFileOrATieListAndRefusesBadOnes) {
    const std::string dir = testing::scratch_directory("store_read");
    expect_matrix_files_read<Graph>(dir);
    expect_matrix_files_read<SparseGraph>(dir);
    expect_matrix_files_read<Digraph>(dir);
    expect_matrix_files_read<SparseDigraph>(dir);
    expect_tie_lists_read<Graph>(dir);
    expect_tie_lists_read<SparseGraph>(dir);
    expect_tie_lists_read<Digraph>(dir);
    expect_tie_lists_read<SparseDigraph>(dir);
}

// Cells other than 0 and 1, and pairs whose two cells disagree, counted by the readers as a
// plain recount of the matrix counts them; the notes' lines name the file, count and place.
TEST(MatrixFiles, ReadersNoteValuedAndAsymmetricCellsAsARecountDoes) {
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
        // Every reader counts alike, but a digraph's cells are all its own: none is asymmetric.
        MatrixNotes directed = truth, notes[6];
        directed.asymmetric_pairs = directed.first_asymmetric_row = 0;
        directed.first_asymmetric_column = 0;
        const std::string path = dir + "/m.txt";
        read_graph(path, n, &notes[0]);
        read_sparse_graph(path, n, &notes[1]);
        read_dyad_mask(path, n, NetworkKind::graph, &notes[2]);
        read_digraph(path, n, &notes[3]);
        read_sparse_digraph(path, n, &notes[4]);
        read_dyad_mask(path, n, NetworkKind::digraph, &notes[5]);
        const auto fields = [](const MatrixNotes& m) {
            return std::tuple{m.other_values,         m.first_other_row,
                              m.first_other_column,   m.asymmetric_pairs,
                              m.first_asymmetric_row, m.first_asymmetric_column};
        };
        for (int k = 0; k < 6; ++k)
            EXPECT_EQ(fields(notes[k]), fields(k < 3 ? truth : directed)) << trial << ", " << k;
    }

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

TEST(RandomStart, HitsItsTargetReproduciblyAndRefusesTheImpossible) {
    // The same seed draws the same network.
    Rng rng, other;
    const SeedSource base{.fixed = true, .base = 11};
    SeedSource seeds = base, again = base, more = base;
    const Graph g = random_graph(30, 100, rng, seeds);
    EXPECT_EQ(g.edge_count, 100);
    EXPECT_EQ(check_bookkeeping(g), "");
    EXPECT_EQ(random_graph(30, 100, other, again).adjacency, g.adjacency);
    again = base;
    // The sparse stores draw the very same networks.
    const SparseGraph sparse_g = random_sparse_graph(30, 100, other, again);
    EXPECT_EQ(KindFixture<SparseGraph>::adjacency(sparse_g).cells,
              KindFixture<Graph>::adjacency(g).cells);
    EXPECT_EQ(random_graph(6, 15, rng, seeds).edge_count, 15);  // complete
    EXPECT_THROW(random_graph(6, 16, rng, seeds), SettingError);
    again = base;
    const Digraph d = random_digraph_by_count(30, 200, rng, more);
    EXPECT_EQ(d.arc_count, 200);
    EXPECT_EQ(check_bookkeeping(d), "");
    EXPECT_EQ(random_digraph_by_count(30, 200, other, again).out_rows, d.out_rows);
    again = base;
    const SparseDigraph sparse_d = random_sparse_digraph(30, 200, other, again);
    EXPECT_EQ(KindFixture<SparseDigraph>::adjacency(sparse_d).cells,
              KindFixture<Digraph>::adjacency(d).cells);
    EXPECT_THROW(random_sparse_digraph(6, 31, rng, seeds), SettingError);
    EXPECT_EQ(random_digraph_by_count(6, 0, rng, seeds).arc_count, 0);
    EXPECT_EQ(random_digraph_by_count(6, 30, rng, seeds).arc_count, 30);  // complete
    EXPECT_THROW(random_digraph_by_count(6, 31, rng, seeds), SettingError);
    EXPECT_THROW(random_digraph_by_count(6, -1, rng, seeds), SettingError);

    // By density: one draw per ordered pair, senders then receivers, an arc where p >= r.
    SeedSource fixed{.fixed = true, .base = 4};
    const Digraph half = random_digraph_by_density(9, 0.5f, rng, fixed);
    Rng replay;
    SeedSource{.fixed = true, .base = 4}.reseed(replay);
    for (int i = 0; i < 9; ++i) {
        for (int j = 0; j < 9; ++j) {
            if (i == j) continue;
            const bool expected = 0.5f >= static_cast<float>(replay.next() / 32767.0);
            EXPECT_EQ(half.has_arc(i, j), expected) << i << "->" << j;
        }
    }
    EXPECT_EQ(check_bookkeeping(half), "");
    EXPECT_EQ(random_digraph_by_density(9, 1.0f, rng, fixed).arc_count, 72);
    EXPECT_EQ(random_digraph_by_density(9, 0.0f, rng, fixed).arc_count, 0);
}

}  // namespace
}  // namespace vexa
