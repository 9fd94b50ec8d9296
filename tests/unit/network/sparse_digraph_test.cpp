// The sparse digraph store against the dense one, toggle for toggle: the same bookkeeping, the
// same neighbour lists in the same order, the same networks read and drawn, a recount that
// finds nothing wrong, pair tables that empty out again when the arcs go, and a recount that
// does find what was broken on purpose.

#include "network/sparse_digraph.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/errors.h"
#include "network/digraph.h"
#include "numeric/rng.h"
#include "support/test_support.h"

namespace vexa {
namespace {

template <class Store>
void toggle(Store& d, int i, int j) {
    const bool adding = !d.has_arc(i, j);
    adding ? add_arc(d, i, j) : remove_arc(d, i, j);
    update_two_paths(d, i, j, adding ? 1 : 0);
}

std::vector<int32_t> as_vector(std::span<const int32_t> list) { return {list.begin(), list.end()}; }

// Every piece of bookkeeping the effects read, pair by pair against the dense store's matrices.
void expect_same_bookkeeping(const Digraph& dense, const SparseDigraph& sparse) {
    const int n = dense.node_count;
    ASSERT_EQ(sparse.arc_count, dense.arc_count);
    EXPECT_EQ(sparse.mutual_count, dense.mutual_count);
    EXPECT_EQ(sparse.in_degree_values, dense.in_degree_values);
    EXPECT_EQ(sparse.out_degree_values, dense.out_degree_values);
    EXPECT_EQ(sparse.mutual_degree_values, dense.mutual_degree_values);
    EXPECT_EQ(sparse.in_degree_histogram, dense.in_degree_histogram);
    EXPECT_EQ(sparse.out_degree_histogram, dense.out_degree_histogram);
    size_t paths = 0, senders = 0, receivers = 0;
    for (int a = 0; a < n; ++a) {
        ASSERT_EQ(as_vector(sparse.out_neighbours(a)), as_vector(dense.out_neighbours(a)))
            << "receiver order of node " << a;
        ASSERT_EQ(as_vector(sparse.in_neighbours(a)), as_vector(dense.in_neighbours(a)))
            << "sender order of node " << a;
        for (int b = 0; b < n; ++b) {
            if (a == b) continue;
            ASSERT_EQ(sparse.has_arc(a, b), dense.has_arc(a, b)) << a << "->" << b;
            ASSERT_EQ(sparse.paths(a, b), dense.paths(a, b)) << a << "->" << b;
            ASSERT_EQ(sparse.senders(a, b), dense.senders(a, b)) << a << "," << b;
            ASSERT_EQ(sparse.receivers(a, b), dense.receivers(a, b)) << a << "," << b;
            paths += dense.paths(a, b) != 0 ? 1 : 0;
            if (a < b) {
                senders += dense.senders(a, b) != 0 ? 1 : 0;
                receivers += dense.receivers(a, b) != 0 ? 1 : 0;
            }
        }
    }
    EXPECT_EQ(sparse.two_paths.size(), paths) << "only pairs with a two-path are held";
    EXPECT_EQ(sparse.common_senders.size(), senders);
    EXPECT_EQ(sparse.common_receivers.size(), receivers);
}

TEST(SparseDigraphStore, FollowsTheDenseStoreToggleForToggle) {
    // Dense enough for large counts and long probe runs, sparse enough for tables to shrink.
    for (const int n : {1, 2, 3, 17, 65, 130}) {
        Digraph dense = create_digraph(n);
        SparseDigraph sparse = create_sparse_digraph(n);
        Rng rng;
        rng.seed(static_cast<uint32_t>(n * 37 + 5));
        for (int step = 0; step < 8000 && n > 1; ++step) {
            const int i = rng.node(n), j = rng.node(n);
            if (i == j) continue;
            toggle(dense, i, j);
            toggle(sparse, i, j);
            if (step % 2000 == 0) {
                ASSERT_EQ(check_bookkeeping(sparse), "") << "n " << n << " step " << step;
            }
        }
        expect_same_bookkeeping(dense, sparse);
        EXPECT_EQ(check_bookkeeping(sparse), "");
        // Removing every arc empties the tables, whatever their probe runs looked like.
        for (int a = 0; a < n; ++a) {
            while (!sparse.out_neighbours(a).empty())
                toggle(sparse, a, sparse.out_neighbours(a)[0]);
        }
        EXPECT_EQ(
            sparse.two_paths.size() + sparse.common_senders.size() + sparse.common_receivers.size(),
            0u);
        EXPECT_EQ(check_bookkeeping(sparse), "");
    }
}

TEST(SparseDigraphStore, ReadsAndDrawsTheDenseStoresNetworks) {
    Rng rng_a, rng_b;
    SeedSource seeds_a, seeds_b;
    seeds_a.fixed = seeds_b.fixed = true;
    seeds_a.base = seeds_b.base = 9;
    expect_same_bookkeeping(random_digraph_by_count(200, 1500, rng_a, seeds_a),
                            random_sparse_digraph(200, 1500, rng_b, seeds_b));
    EXPECT_THROW(random_sparse_digraph(6, 31, rng_b, seeds_b), SettingError);

    const std::string dir = testing::scratch_directory("sparse_digraph_read");
    testing::write_text(dir + "/m.txt", "1 1 2 -1\n1 0 1.5 0\n0 0 1 1\n0 1 0 0\n");
    MatrixNotes dense_notes, sparse_notes;
    const SparseDigraph read = read_sparse_digraph(dir + "/m.txt", 4, &sparse_notes);
    expect_same_bookkeeping(read_digraph(dir + "/m.txt", 4, &dense_notes), read);
    EXPECT_EQ(sparse_notes.other_values, 3);
    EXPECT_EQ(dense_notes.other_values, 3);
    EXPECT_EQ(check_bookkeeping(read), "");
    testing::write_text(dir + "/bad.txt", "0 1\nx 0\n");
    EXPECT_THROW(read_sparse_digraph(dir + "/bad.txt", 2), InputFileError);

    // Far beyond the dense store's reach: a hub sent to by 300 nodes makes C(300, 2) pairs of
    // common receivers and nothing else.
    SparseDigraph big = create_sparse_digraph(100000);
    for (int a = 1; a <= 300; ++a) toggle(big, 300 * a, 0);
    EXPECT_EQ(big.receivers(300, 450), 0);
    EXPECT_EQ(big.receivers(90000, 300), 1);
    EXPECT_EQ(big.common_receivers.size(), 300u * 299u / 2u);
    EXPECT_EQ(big.two_paths.size() + big.common_senders.size(), 0u);
    EXPECT_EQ(check_bookkeeping(big), "");
}

TEST(SparseDigraphStore, TheRecountFindsWhatWasBroken) {
    SparseDigraph d = create_sparse_digraph(12);
    Rng rng;
    rng.seed(3);
    for (int step = 0; step < 60; ++step) {
        const int i = rng.node(12), j = rng.node(12);
        if (i != j) toggle(d, i, j);
    }
    ASSERT_EQ(check_bookkeeping(d), "");
    ASSERT_GT(d.two_paths.size(), 0u);
    // One two-path more, less, or in a pair that has none; a stray receiver; a degree.
    const auto broken = [&d](auto&& harm) {
        SparseDigraph copy = d;
        harm(copy);
        return check_bookkeeping(copy);
    };
    int a = 0, b = 0;
    d.two_paths.for_each([&](int x, int y, int32_t) { a = x, b = y; });
    EXPECT_NE(broken([&](SparseDigraph& c) { c.two_paths.add(PairTable::ordered_key(a, b), 1); }),
              "");
    EXPECT_NE(broken([&](SparseDigraph& c) { c.two_paths.add(PairTable::ordered_key(b, a), 50); }),
              "");
    EXPECT_NE(broken([&](SparseDigraph& c) { c.common_senders.add(PairTable::key(a, b), 50); }),
              "");
    EXPECT_NE(broken([&](SparseDigraph& c) { c.common_receivers.add(PairTable::key(a, b), 50); }),
              "");
    EXPECT_NE(broken([](SparseDigraph& c) { c.in_lists[0].push_back(11); }), "");
    EXPECT_NE(broken([](SparseDigraph& c) { c.mutual_degree_values[4] += 1; }), "");
    EXPECT_NE(broken([](SparseDigraph& c) { c.out_degree_histogram[0] -= 1; }), "");
}

}  // namespace
}  // namespace vexa
