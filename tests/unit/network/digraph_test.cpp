// The digraph store: its bookkeeping against a recount from the adjacency alone, toggles undone
// exactly, copies that keep toggling without allocating, matrix files and the random starts.

#include "network/digraph.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "base/errors.h"
#include "numeric/rng.h"
#include "support/digraph_brute_force.h"
#include "support/test_support.h"

namespace vexa {
namespace {

void toggle(Digraph& d, int i, int j) {
    const bool adding = !d.has_arc(i, j);
    adding ? add_arc(d, i, j) : remove_arc(d, i, j);
    update_two_paths(d, i, j, adding ? 1 : 0);
}

void toggle_randomly(Digraph& d, int steps, Rng& rng) {
    for (int s = 0; s < steps; ++s) {
        const int i = rng.node(d.node_count), j = rng.node(d.node_count);
        if (i != j) toggle(d, i, j);
    }
}

TEST(DigraphStore, RandomTogglesKeepTheBookkeepingAndAToggleUndoneRestoresEveryArray) {
    // Sizes straddle the 64-bit word boundary; densities from sparse to nearly complete.
    for (const int n : {1, 2, 3, 17, 64, 65, 130}) {
        for (const int steps : {50, 4000}) {
            Digraph d = create_digraph(n);
            Rng rng;
            rng.seed(static_cast<uint32_t>(n * 7919 + steps));
            toggle_randomly(d, steps, rng);
            for (int s = 0; s < 30 && n > 1; ++s) {
                const int i = rng.node(n), j = (i + 1 + rng.node(n - 1)) % n;
                const Digraph before = d;
                toggle(d, i, j);
                toggle(d, i, j);
                ASSERT_TRUE(testing::same_store(before, d))
                    << "n = " << n << ", " << i << "->" << j;
            }
            EXPECT_EQ(check_bookkeeping(d), "") << "n = " << n << ", steps = " << steps;
        }
    }
}

TEST(DigraphStore, NoOpTogglesAndMutualDyads) {
    Digraph d = create_digraph(4);
    add_arc(d, 0, 1);
    update_two_paths(d, 0, 1, 1);
    const Digraph before = d;
    add_arc(d, 0, 1);     // present: nothing, histograms included
    remove_arc(d, 1, 0);  // absent: nothing
    EXPECT_TRUE(testing::same_store(before, d));
    EXPECT_EQ(d.out_degree_histogram, (std::vector<int32_t>{3, 1, 0, 0}));

    // The reverse arc makes the dyad mutual; removing either arc undoes it.
    toggle(d, 1, 0);
    EXPECT_TRUE(d.mutual_count == 1 && d.mutual_degree(0) == 1 && d.mutual_degree(1) == 1);
    toggle(d, 0, 1);
    EXPECT_TRUE(d.mutual_count == 0 && d.mutual_degree(0) == 0 && d.mutual_degree(1) == 0);
    toggle(d, 0, 1);
    toggle(d, 1, 0);
    EXPECT_TRUE(d.mutual_count == 0 && d.mutual_degree(0) == 0 && d.arc_count == 1);

    toggle(d, 2, 0), toggle(d, 1, 3), toggle(d, 2, 1);
    EXPECT_DOUBLE_EQ(density(d), 4.0 / 12.0);
    EXPECT_DOUBLE_EQ(mean_degree(d), 1.0);
}

TEST(DigraphStore, CopiesHoldEveryArrayAndToggleWithoutAllocating) {
    Digraph source = create_digraph(70);
    Rng rng;
    rng.seed(5);
    toggle_randomly(source, 800, rng);
    // By construction and over a store that held a denser network (its lists spaced wider).
    Digraph copied = source;
    Digraph assigned = create_digraph(70);
    toggle_randomly(assigned, 4000, rng);
    assigned = source;
    for (Digraph* d : {&copied, &assigned}) {
        EXPECT_TRUE(testing::same_store(source, *d));
        const int32_t* out_lists = d->out_lists.entries.data();
        const int32_t* in_lists = d->in_lists.entries.data();
        // Up to a complete digraph: every list spreads to its widest, in place.
        for (int i = 0; i < 70; ++i) {
            for (int j = 0; j < 70; ++j) {
                if (i != j && !d->has_arc(i, j)) toggle(*d, i, j);
            }
        }
        EXPECT_EQ(d->arc_count, 70 * 69);
        EXPECT_EQ(d->out_lists.entries.data(), out_lists) << "the out-lists moved";
        EXPECT_EQ(d->in_lists.entries.data(), in_lists) << "the in-lists moved";
        EXPECT_EQ(check_bookkeeping(*d), "");
    }
}

TEST(DigraphStore, TinyAndTooLargeNetworks) {
    const Digraph one = create_digraph(1);
    EXPECT_EQ(density(one), 0.0);
    EXPECT_EQ(mean_degree(one), 0.0);
    EXPECT_EQ(check_bookkeeping(one), "");
    EXPECT_THROW(create_digraph(0), SettingError);
    try {
        create_digraph(max_digraph_nodes + 1);
        ADD_FAILURE() << "a digraph of 65,538 nodes was created";
    } catch (const SettingError& e) {
        EXPECT_NE(std::string(e.what()).find("65,535"), std::string::npos) << e.what();
    }
}

TEST(DigraphStore, ReadsAMatrixFileAndRefusesBadOnes) {
    const std::string dir = testing::scratch_directory("digraph_read");
    // 2, -1 and 1.5 are no arcs, the diagonal 1 is no loop; the arcs are 0->1, 1->0, 2->3, 3->1.
    testing::write_text(dir + "/m.txt", "1 1 2 -1\n1 0 1.5 0\n0 0 1 1\n0 1 0 0\n");
    const Digraph d = read_digraph(dir + "/m.txt", 4);
    EXPECT_TRUE(d.arc_count == 4 && d.has_arc(0, 1) && d.has_arc(1, 0) && d.has_arc(2, 3) &&
                d.has_arc(3, 1));
    EXPECT_EQ(d.mutual_count, 1);
    EXPECT_EQ(check_bookkeeping(d), "");
    for (const auto& [n, text, named] : {std::tuple{3, "0 1 1\n1 0 1\n1 1\n", "ends in row 3"},
                                         std::tuple{2, "0 1\nx 0\n", "row 2, column 1: 'x'"},
                                         std::tuple{2, "0 1 1 0 0", "more than the 4 values"},
                                         std::tuple{2, "", "ends in row 1"}}) {
        testing::write_text(dir + "/bad.txt", text);
        try {
            read_digraph(dir + "/bad.txt", n);
            ADD_FAILURE() << "accepted: " << text;
        } catch (const InputFileError& e) {
            const std::string message = e.what();
            EXPECT_NE(message.find(named), std::string::npos) << message;
            EXPECT_NE(message.find("bad.txt"), std::string::npos) << message;
        }
    }
    try {
        read_digraph(dir + "/missing.txt", 2);
        ADD_FAILURE() << "a missing file was read";
    } catch (const InputFileError& e) {
        EXPECT_NE(std::string(e.what()).find("missing.txt"), std::string::npos) << e.what();
    }
}

TEST(DigraphStore, RandomStartsHitTheirTargetsAndDrawInOrder) {
    Rng rng, other;
    SeedSource seeds{.fixed = true, .base = 11}, again = seeds;
    const Digraph d = random_digraph_by_count(30, 200, rng, seeds);
    EXPECT_EQ(d.arc_count, 200);
    EXPECT_EQ(check_bookkeeping(d), "");
    EXPECT_EQ(random_digraph_by_count(30, 200, other, again).out_rows, d.out_rows);  // reproducible
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
