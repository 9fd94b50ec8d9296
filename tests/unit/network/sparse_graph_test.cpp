// The sparse graph store against the dense one, toggle for toggle: the same ties, the same
// neighbour lists in the same order, a recount that finds nothing wrong, and a pair table that
// empties out again when the ties go.

#include "network/sparse_graph.h"

#include <gtest/gtest.h>

#include <vector>

#include "network/graph.h"
#include "numeric/rng.h"
#include "support/kinds.h"

namespace vexa {
namespace {

using testing::toggle;

// The same ties, neighbour lists in the same order (the order effects and samplers walk), and
// partner counts held only for pairs that have partners; check_bookkeeping recounts the rest of
// each store from its own adjacency.
void expect_same_bookkeeping(const Graph& dense, const SparseGraph& sparse) {
    const int n = dense.node_count;
    ASSERT_EQ(sparse.edge_count, dense.edge_count);
    size_t nonzero = 0;
    for (int a = 0; a < n; ++a) {
        const auto dense_list = dense.neighbours_of(a);
        const auto sparse_list = sparse.neighbours_of(a);
        ASSERT_TRUE(std::vector<int32_t>(dense_list.begin(), dense_list.end()) ==
                    std::vector<int32_t>(sparse_list.begin(), sparse_list.end()))
            << "neighbour order of node " << a;
        for (int b = a + 1; b < n; ++b) nonzero += dense.partners(a, b) != 0 ? 1 : 0;
    }
    EXPECT_EQ(sparse.shared_partners.size(), nonzero) << "only pairs with a partner are held";
    EXPECT_EQ(check_bookkeeping(dense), "");
    EXPECT_EQ(check_bookkeeping(sparse), "");
}

TEST(SparseGraphStore, FollowsTheDenseStoreToggleForToggle) {
    // Dense enough for large partner counts and long probe runs; sparse enough for the table
    // to shrink back; up to the size where the triangle histogram stops being kept whole.
    for (const int n : {1, 2, 3, 17, 65, 130}) {
        Graph dense = create_graph(n);
        SparseGraph sparse = create_sparse_graph(n);
        Rng rng;
        rng.seed(static_cast<uint32_t>(n * 31 + 7));
        for (int step = 0; step < 6000 && n > 1; ++step) {
            const int i = rng.node(n), j = rng.node(n);
            if (i == j) continue;
            toggle(dense, i, j);
            toggle(sparse, i, j);
            if (step % 1500 == 0) {
                ASSERT_EQ(check_bookkeeping(sparse), "") << "n " << n << " step " << step;
            }
        }
        expect_same_bookkeeping(dense, sparse);
        // Removing every tie empties the table, whatever its probe runs looked like.
        for (int a = 0; a < n; ++a) {
            while (!sparse.neighbours_of(a).empty()) toggle(sparse, a, sparse.neighbours_of(a)[0]);
        }
        EXPECT_EQ(sparse.shared_partners.size(), 0u);
        EXPECT_EQ(check_bookkeeping(sparse), "");
    }
}

TEST(SparseGraphStore, RandomStartDrawsTheDenseStoresNetworkAndLargeStoresStaySmall) {
    Rng rng_a, rng_b;
    SeedSource seeds_a{.fixed = true, .base = 5}, seeds_b = seeds_a;
    const Graph dense = random_graph(300, 900, rng_a, seeds_a);
    const SparseGraph sparse = random_sparse_graph(300, 900, rng_b, seeds_b);
    expect_same_bookkeeping(dense, sparse);

    // 100,000 nodes: well past the dense store's reach, the triangle histogram starts short
    // and grows when a node needs it.
    SparseGraph big = create_sparse_graph(100000);
    EXPECT_EQ(big.triangle_histogram.size(), 100000u);
    EXPECT_EQ(big.shared_partner_histogram[0], int64_t{100000} * 99999 / 2);
    // A clique of 455 nodes puts C(454, 2) = 102,831 triangles at each of its nodes.
    const int clique = 455;
    for (int a = 0; a < clique; ++a) {
        for (int b = a + 1; b < clique; ++b) toggle(big, a, b);
    }
    EXPECT_EQ(big.triangles[0], 102831);
    EXPECT_EQ(big.triangle_histogram[102831], clique);
    EXPECT_EQ(check_bookkeeping(big), "");
}

}  // namespace
}  // namespace vexa
