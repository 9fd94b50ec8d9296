#include "report/network_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>

#include "base/errors.h"
#include "numeric/rng.h"
#include "report/pajek.h"
#include "report/tie_list_output.h"
#include "support/graphs.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::read_text;

TEST(NetworkFile, PajekAppendsAndNetworkFilesReadBack) {
    const std::string dir = testing::scratch_directory("network_file");
    // A Pajek block is appended after what the file held (the bundled runs always start afresh).
    const Graph small = testing::graph_of(4, {{0, 1}, {1, 2}, {0, 2}});
    const std::string paj = dir + "/sim_pajek_flo.paj";
    testing::write_text(paj, "earlier run\n");
    write_pajek_block(small, "sample 1", paj);
    EXPECT_EQ(read_text(paj).substr(0, 30), "earlier run\n*Network sample 1\n");

    // The bundled marriage network writes back as its own file; a random 150-node graph (three
    // words per row) reads back as the same graph.
    const Graph flo = read_graph(testing::data_path("flomarriage.txt"), 16);
    write_network_file(dir + "/flo.txt", flo);
    EXPECT_EQ(read_text(dir + "/flo.txt"), read_text(testing::data_path("flomarriage.txt")));
    Graph big = create_graph(150);
    Rng rng;
    rng.seed(11);
    for (int s = 0; s < 2500; ++s) {
        const int i = rng.node(150), j = rng.node(150);
        if (i != j && !has_edge(big, i, j)) {
            add_edge(big, i, j);
            update_shared_partners(big, i, j, 1);
        }
    }
    EXPECT_EQ(sample_network_path(dir + "/sample", 150.0), dir + "/sample150.txt");
    write_network_file(dir + "/big.txt", big);
    const Graph back = read_graph(dir + "/big.txt", 150);
    EXPECT_EQ(back.adjacency, big.adjacency);
    EXPECT_EQ(back.edge_count, big.edge_count);
    EXPECT_EQ(check_bookkeeping(back), "");

    EXPECT_EQ(sample_network_path("out/net_sample", 25000.0), "out/net_sample25000.txt");
    EXPECT_THROW(write_network_file(dir + "/missing/x.txt", small), OutputFileError);
    EXPECT_THROW(write_pajek_block(small, "x", dir + "/missing/x.paj"), OutputFileError);
}

// Tie lists as written by hand: the lower node first, ordered by both nodes, numbered from 1.
TEST(NetworkFile, TieListsReadAsWrittenByHand) {
    const std::string dir = testing::scratch_directory("tie_list_output");
    Graph graph = create_graph(12);
    SparseDigraph digraph = create_sparse_digraph(12);
    for (const auto& [a, b] : {std::pair{0, 1}, {11, 2}, {2, 0}, {10, 11}}) {
        add_edge(graph, a, b);
        update_shared_partners(graph, a, b, 1);
    }
    for (const auto& [a, b] : {std::pair{11, 0}, {0, 11}, {3, 2}}) {
        add_arc(digraph, a, b);
        update_two_paths(digraph, a, b, 1);
    }
    write_tie_list_file(dir + "/g.net", graph);
    write_tie_list_file(dir + "/d.net", digraph);
    write_tie_list_file(dir + "/one.net", create_sparse_graph(1));
    EXPECT_EQ(read_text(dir + "/g.net"), "*Vertices 12\n*Edges\n1 2\n1 3\n3 12\n11 12\n");
    EXPECT_EQ(read_text(dir + "/d.net"), "*Vertices 12\n*Arcs\n1 12\n4 3\n12 1\n");
    EXPECT_EQ(read_text(dir + "/one.net"), "*Vertices 1\n*Edges\n");
    EXPECT_EQ(tie_count(read_sparse_graph(dir + "/one.net", 1)), 0);

    // Megabytes of ties (the buffer is written many times over) read back as the same graph.
    SparseGraph big = create_sparse_graph(100000);
    keep_only(big, Bookkeeping::none);
    Rng rng;
    rng.seed(9);
    while (big.edge_count < 300000) {
        const int a = rng.node(100000), b = rng.node(100000);
        if (a != b) add_edge(big, a, b);
    }
    write_tie_list_file(dir + "/big.net", big);
    const SparseGraph back = read_sparse_graph(dir + "/big.net", 100000);
    EXPECT_EQ(back.edge_count, big.edge_count);
    EXPECT_EQ(back.degree, big.degree);
    for_each_tie(big, [&](int a, int b) { ASSERT_TRUE(has_edge(back, a, b)) << a << " " << b; });
    EXPECT_THROW(write_tie_list_file(dir + "/missing/x.net", big), OutputFileError);
    std::filesystem::remove_all(dir);  // megabytes
}

}  // namespace
}  // namespace vexa
