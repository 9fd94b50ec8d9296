// What the sparse stores hold beyond what their dense twins do: pair tables that empty out again
// when the ties go, however their probe runs looked; sizes far past the dense stores' reach; and
// a recount that finds what was broken on purpose. That they agree with the dense stores is the
// property suite's business.

#include <gtest/gtest.h>

#include "numeric/rng.h"
#include "support/kinds.h"

namespace vexa {
namespace {

using testing::toggle;

template <class Store>
void toggle_then_remove_every_tie(int n, uint32_t seed) {
    Store store = testing::empty_store<Store>(n);
    Rng rng;
    rng.seed(seed);
    for (int step = 0; step < 8000; ++step) {
        const int i = rng.node(n), j = rng.node(n);
        if (i != j) toggle(store, i, j);
    }
    ASSERT_EQ(check_bookkeeping(store), "") << "n " << n;
    for (int a = 0; a < n; ++a) {
        for (int b = 0; b < n; ++b) {
            if (a != b && has_tie(store, a, b)) toggle(store, a, b);
        }
    }
    EXPECT_EQ(check_bookkeeping(store), "") << "n " << n;
    if constexpr (Store::kind == NetworkKind::graph) {
        EXPECT_EQ(store.shared_partners.size(), 0u);
    } else {
        EXPECT_EQ(
            store.two_paths.size() + store.common_senders.size() + store.common_receivers.size(),
            0u);
    }
}

TEST(SparseStores, PairTablesEmptyWhenTheTiesGo) {
    // Dense enough for large counts and long probe runs.
    for (const int n : {17, 65, 130}) {
        toggle_then_remove_every_tie<SparseGraph>(n, static_cast<uint32_t>(n * 31 + 7));
        toggle_then_remove_every_tie<SparseDigraph>(n, static_cast<uint32_t>(n * 37 + 5));
    }
}

TEST(SparseStores, HundredThousandNodes) {
    // The triangle histogram starts short and grows when a node needs it: a clique of 455
    // nodes puts C(454, 2) = 102,831 triangles at each of its nodes.
    SparseGraph big = create_sparse_graph(100000);
    EXPECT_EQ(big.triangle_histogram.size(), 100000u);
    EXPECT_EQ(big.shared_partner_histogram[0], int64_t{100000} * 99999 / 2);
    const int clique = 455;
    for (int a = 0; a < clique; ++a) {
        for (int b = a + 1; b < clique; ++b) toggle(big, a, b);
    }
    EXPECT_EQ(big.triangles[0], 102831);
    EXPECT_EQ(big.triangle_histogram[102831], clique);
    EXPECT_EQ(check_bookkeeping(big), "");

    // A hub sent to by 300 nodes makes C(300, 2) pairs of common receivers and nothing else.
    SparseDigraph hub = create_sparse_digraph(100000);
    for (int a = 1; a <= 300; ++a) toggle(hub, 300 * a, 0);
    EXPECT_EQ(hub.receivers(300, 450), 0);
    EXPECT_EQ(hub.receivers(90000, 300), 1);
    EXPECT_EQ(hub.common_receivers.size(), 300u * 299u / 2u);
    EXPECT_EQ(hub.two_paths.size() + hub.common_senders.size(), 0u);
    EXPECT_EQ(check_bookkeeping(hub), "");
}

TEST(SparseStores, TheRecountFindsWhatWasBroken) {
    SparseDigraph d =
        testing::KindFixture<SparseDigraph>::build(testing::random_arc_matrix(12, 0.4, 0.3, 3));
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
