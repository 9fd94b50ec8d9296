// The sparse graph store against the dense one, toggle for toggle: the same bookkeeping, the
// same neighbour lists in the same order, a recount that finds nothing wrong, and a pair table
// that empties out again when the ties go.

#include "network/sparse_graph.h"

#include <gtest/gtest.h>

#include <vector>

#include "network/graph.h"
#include "numeric/rng.h"

namespace vexa {
namespace {

template <class Store>
void toggle(Store& g, int i, int j) {
    const bool adding = !has_edge(g, i, j);
    adding ? add_edge(g, i, j) : remove_edge(g, i, j);
    update_shared_partners(g, i, j, adding ? 1 : 0);
}

// Every piece of bookkeeping the effects read, pair by pair against the dense store's matrix.
void expect_same_bookkeeping(const Graph& dense, const SparseGraph& sparse) {
    const int n = dense.node_count;
    ASSERT_EQ(sparse.edge_count, dense.edge_count);
    EXPECT_EQ(sparse.degree, dense.degree);
    EXPECT_EQ(sparse.degree_histogram, dense.degree_histogram);
    EXPECT_EQ(sparse.triangles, dense.triangles);
    EXPECT_EQ(sparse.triangle_histogram, dense.triangle_histogram);
    ASSERT_EQ(sparse.shared_partner_histogram.size(), dense.shared_partner_histogram.size());
    for (size_t s = 0; s < dense.shared_partner_histogram.size(); ++s) {
        EXPECT_EQ(sparse.shared_partner_histogram[s], dense.shared_partner_histogram[s]) << s;
    }
    size_t nonzero = 0;
    for (int a = 0; a < n; ++a) {
        const auto dense_list = dense.neighbours_of(a);
        const auto sparse_list = sparse.neighbours_of(a);
        ASSERT_TRUE(std::vector<int32_t>(dense_list.begin(), dense_list.end()) ==
                    std::vector<int32_t>(sparse_list.begin(), sparse_list.end()))
            << "neighbour order of node " << a;
        for (int b = a + 1; b < n; ++b) {
            ASSERT_EQ(sparse.partners(a, b), dense.partners(a, b)) << a << "," << b;
            ASSERT_EQ(sparse.partners(b, a), dense.partners(a, b));
            ASSERT_EQ(has_edge(sparse, a, b), has_edge(dense, a, b));
            if (dense.partners(a, b) != 0) ++nonzero;
        }
    }
    EXPECT_EQ(sparse.shared_partners.size(), nonzero) << "only pairs with a partner are held";
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
        EXPECT_EQ(check_bookkeeping(sparse), "");
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
    SeedSource seeds_a, seeds_b;
    seeds_a.fixed = seeds_b.fixed = true;
    seeds_a.base = seeds_b.base = 5;
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

TEST(SparseGraphStore, PairTableCountsAndForgets) {
    PairTable table;
    EXPECT_EQ(table.get(PairTable::key(1, 2)), 0);
    // Keys that share home slots and wrap the table's end; every one removed in another order.
    std::vector<uint64_t> keys;
    for (int a = 0; a < 40; ++a) keys.push_back(PairTable::key(a, 1000 + 3 * a));
    for (const uint64_t k : keys) EXPECT_EQ(table.add(k, 1), 1);
    for (const uint64_t k : keys) EXPECT_EQ(table.add(k, 1), 2);
    EXPECT_EQ(table.size(), keys.size());
    EXPECT_EQ(PairTable::key(5, 3), PairTable::key(3, 5));
    for (size_t r = 0; r < keys.size(); r += 2) {
        EXPECT_EQ(table.add(keys[r], -1), 1);
        EXPECT_EQ(table.add(keys[r], -1), 0);
    }
    EXPECT_EQ(table.size(), keys.size() / 2);
    for (size_t r = 0; r < keys.size(); ++r) EXPECT_EQ(table.get(keys[r]), r % 2 == 0 ? 0 : 2);
}

}  // namespace
}  // namespace vexa
