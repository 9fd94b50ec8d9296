#include "report/network_file.h"

#include <gtest/gtest.h>

#include <string>

#include "base/errors.h"
#include "numeric/rng.h"
#include "report/pajek.h"
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

}  // namespace
}  // namespace vexa
