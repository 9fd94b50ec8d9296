#include "report/pajek.h"

#include <gtest/gtest.h>

#include <string>

#include "base/errors.h"
#include "numeric/rng.h"
#include "support/test_support.h"

namespace vexa {
namespace {

void tie(Graph& g, int i, int j) {
    add_edge(g, i, j);
    update_shared_partners(g, i, j, 1);
}

TEST(PajekFile, GraphBlocksAreAppendedExactly) {
    Graph path = create(3, 0, 0);  // 0 - 1 - 2
    tie(path, 0, 1);
    tie(path, 1, 2);
    const std::string block = "*Network sample 1\n*vertices 3\n*matrix\n0 1 0 \n1 0 1 \n0 1 0 \n\n\n";
    const std::string file = testing::scratch_directory("pajek_blocks") + "/sim_pajek_flo.paj";
    testing::write_text(file, "earlier run\n");  // stays in front
    write_pajek_block(path, "sample 1", file);
    EXPECT_EQ(testing::read_text(file), "earlier run\n" + block);
    // Two nodes without a tie, as a second block.
    write_pajek_block(create(2, 0, 0), "empty", file);
    EXPECT_EQ(testing::read_text(file),
              "earlier run\n" + block + "*Network empty\n*vertices 2\n*matrix\n0 0 \n0 0 \n\n\n");
    EXPECT_THROW(write_pajek_block(path, "x", file + ".d/missing/x.paj"), OutputFileError);
}

TEST(PajekFile, LargeMatrixMatchesTheAdjacencyAcrossWordBoundaries) {
    // 150 nodes: three 64-bit words per row, ties at random.
    Graph g = create(150, 0, 0);
    Rng rng;
    rng.seed(11);
    for (int s = 0; s < 2500; ++s) {
        const int i = rng.node(150), j = rng.node(150);
        if (i != j && !has_edge(g, i, j)) tie(g, i, j);
    }
    std::string expected = "*Network big\n*vertices 150\n*matrix\n";
    for (int i = 0; i < 150; ++i) {
        for (int j = 0; j < 150; ++j) expected += has_edge(g, i, j) ? "1 " : "0 ";
        expected += "\n";
    }
    expected += "\n\n";
    const std::string file = testing::scratch_directory("pajek_large") + "/big.paj";
    write_pajek_block(g, "big", file);
    EXPECT_EQ(testing::read_text(file), expected);
}

}  // namespace
}  // namespace vexa
