#include "report/network_file.h"

#include <gtest/gtest.h>

#include <string>

#include "base/errors.h"
#include "numeric/rng.h"
#include "support/test_support.h"

namespace vexa {
namespace {

TEST(NetworkFile, WrittenMatrixReadsBackAsTheSameGraph) {
    const std::string dir = testing::scratch_directory("network_file");

    // A triangle 0-1-2 with node 3 isolated, written exactly.
    Graph small = create(4, 0, 0);
    for (const auto& [i, j] : {std::pair{0, 1}, std::pair{1, 2}, std::pair{0, 2}}) {
        add_edge(small, i, j);
        update_shared_partners(small, i, j, 1);
    }
    write_network_file(dir + "/small.txt", small);
    EXPECT_EQ(testing::read_text(dir + "/small.txt"), "0 1 1 0\n1 0 1 0\n1 1 0 0\n0 0 0 0\n");

    // The bundled marriage network and a random 130-node graph (three words per row).
    Graph flo = read_graph(testing::data_path("flomarriage.txt"), 16, 0, 0);
    Graph big = create(130, 0, 0);
    Rng rng;
    rng.seed(3);
    for (int s = 0; s < 3000; ++s) {
        const int i = rng.node(130), j = rng.node(130);
        if (i != j && !has_edge(big, i, j)) {
            add_edge(big, i, j);
            update_shared_partners(big, i, j, 1);
        }
    }
    for (const Graph* g : {&flo, &big}) {
        const std::string path = sample_network_path(dir + "/sample", 4000.0 + g->node_count);
        write_network_file(path, *g);
        const Graph back = read_graph(path, g->node_count, 0, 0);
        EXPECT_EQ(back.adjacency, g->adjacency) << path;
        EXPECT_EQ(back.edge_count, g->edge_count) << path;
        EXPECT_EQ(check_bookkeeping(back), "") << path;
    }
    EXPECT_EQ(flo.edge_count, 20);

    EXPECT_EQ(sample_network_path("out/net_sample", 25000.0), "out/net_sample25000.txt");
    EXPECT_THROW(write_network_file(dir + "/missing/x.txt", small), OutputFileError);
}

}  // namespace
}  // namespace vexa
