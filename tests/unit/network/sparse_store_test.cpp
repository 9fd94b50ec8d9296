// What the sparse stores hold beyond what their dense twins do: pair tables that empty out again
// when the ties go, however their probe runs looked; sizes far past the dense stores' reach; and
// a recount that finds what was broken on purpose. That they agree with the dense stores is the
// property suite's business.

#include <gtest/gtest.h>

#include <utility>
#include <vector>

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

// Ties with repeats both ways and a clique (counts far above one, a triangle histogram that
// grows), added tie by tie and filled at once: the same lists, entry for entry, and the same
// counts of every pair.
std::vector<std::pair<int32_t, int32_t>> ties_to_fill(int n, int count, uint32_t seed) {
    Rng rng;
    rng.seed(seed);
    std::vector<std::pair<int32_t, int32_t>> ties;
    // Beyond 1,450 nodes the triangle histogram starts n long: 57 nodes put 1,540 at each.
    const int clique = n > 1450 ? 57 : 12;
    for (int a = 0; a < clique; ++a) {
        for (int b = a + 1; b < clique; ++b) ties.emplace_back(n - 1 - a, n - 1 - b);
    }
    while (static_cast<int>(ties.size()) < count) {
        const int i = rng.node(n), j = rng.node(n);
        if (i == j) continue;
        ties.emplace_back(i, j);
        if (rng.node(8) == 0) ties.emplace_back(j, i);
        if (rng.node(8) == 0) ties.emplace_back(i, j);
    }
    return ties;
}

void expect_filled_as_tie_by_tie(int n, int count, uint32_t seed, Bookkeeping keep) {
    const auto ties = ties_to_fill(n, count, seed);
    SparseGraph one_by_one = create_sparse_graph(n);
    keep_only(one_by_one, keep);
    for (const auto& [i, j] : ties) {
        if (!has_tie(one_by_one, i, j)) testing::toggle(one_by_one, i, j);
    }
    SparseGraph at_once = create_sparse_graph(n);
    keep_only(at_once, keep);
    fill_from_ties(at_once, ties, nullptr);
    ASSERT_EQ(check_bookkeeping(at_once), "");
    EXPECT_EQ(at_once.neighbours, one_by_one.neighbours);
    EXPECT_EQ(at_once.degree_histogram, one_by_one.degree_histogram);
    EXPECT_EQ(at_once.shared_partner_histogram, one_by_one.shared_partner_histogram);
    EXPECT_EQ(at_once.triangles, one_by_one.triangles);
    EXPECT_EQ(at_once.triangle_histogram, one_by_one.triangle_histogram);
    for (int a = 0; a < n && keeps(keep, Bookkeeping::shared_partners); ++a) {
        for (int b = 0; b < n; ++b) ASSERT_EQ(at_once.partners(a, b), one_by_one.partners(a, b));
    }
}

void expect_arcs_filled_as_arc_by_arc(int n, int count, uint32_t seed, Bookkeeping keep) {
    const auto arcs = ties_to_fill(n, count, seed);
    SparseDigraph one_by_one = create_sparse_digraph(n);
    keep_only(one_by_one, keep);
    for (const auto& [i, j] : arcs) {
        if (!has_tie(one_by_one, i, j)) testing::toggle(one_by_one, i, j);
    }
    SparseDigraph at_once = create_sparse_digraph(n);
    keep_only(at_once, keep);
    fill_from_ties(at_once, arcs, nullptr);
    ASSERT_EQ(check_bookkeeping(at_once), "");
    EXPECT_EQ(at_once.out_lists, one_by_one.out_lists);
    EXPECT_EQ(at_once.in_lists, one_by_one.in_lists);
    EXPECT_EQ(at_once.mutual_degree_values, one_by_one.mutual_degree_values);
    EXPECT_EQ(at_once.mutual_count, one_by_one.mutual_count);
    for (int a = 0; a < n; ++a) {
        for (int b = 0; b < n; ++b) {
            ASSERT_EQ(at_once.paths(a, b), one_by_one.paths(a, b));
            ASSERT_EQ(at_once.senders(a, b), one_by_one.senders(a, b));
            ASSERT_EQ(at_once.receivers(a, b), one_by_one.receivers(a, b));
        }
    }
}

TEST(SparseStores, FilledAtOnceAsTieByTie) {
    for (const auto& [n, count] : {std::pair{20, 30}, std::pair{60, 700}, std::pair{1500, 6000}}) {
        SCOPED_TRACE(n);
        const auto seed = static_cast<uint32_t>(n * 13 + 1);
        expect_filled_as_tie_by_tie(n, count, seed, Bookkeeping::all);
        expect_filled_as_tie_by_tie(n, count, seed, Bookkeeping::triangles);
        expect_filled_as_tie_by_tie(n, count, seed, Bookkeeping::none);
        if (n > 100) continue;  // every pair of a digraph is compared
        expect_arcs_filled_as_arc_by_arc(n, count, seed, Bookkeeping::all);
        expect_arcs_filled_as_arc_by_arc(n, count, seed, Bookkeeping::two_paths);
    }
}

}  // namespace
}  // namespace vexa
