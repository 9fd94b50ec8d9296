// Chains side by side: whatever the number of threads, the events reach the observer in ticket
// order and on the calling thread, every round runs once, and a failure anywhere ends the run
// with that failure instead of a hang.

#include "sampler/side_by_side.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <stdexcept>
#include <thread>
#include <vector>

#include "sampler/chain_set.h"

namespace vexa {
namespace {

TEST(SideBySide, EventsComeInTicketOrderForAnyThreadCount) {
    // 5 chains dealt 23 pieces round-robin: chain k's round j is piece j * 5 + k. A host's
    // events come on the calling thread; the engine's may come on any, one at a time.
    constexpr int32_t chains = 5;
    constexpr int64_t pieces = 23;
    const std::thread::id caller = std::this_thread::get_id();
    for (const int32_t threads : {1, 2, 3, 5, 8, -2, -5}) {
        const bool host = threads > 0;
        std::vector<int64_t> told;
        bool off_thread = false;
        Observer observer;
        Relay relay;
        relay.observer = &observer;
        std::vector<std::atomic<int>> ran(pieces);
        const auto rounds = static_cast<int32_t>(pieces_of(pieces, chains, 0));
        std::vector<int32_t> changed_while_waiting(chains, 0);
        std::vector<int32_t> waiting(chains, 0);
        run_rounds(
            chain_plan(chains, std::abs(threads), host), rounds, relay, [&](int32_t k, int32_t j) {
                const int64_t piece = int64_t{j} * chains + k;
                if (piece >= pieces) return;
                // A chain whose event is not yet told is never taken up again.
                changed_while_waiting[static_cast<size_t>(k)] += waiting[static_cast<size_t>(k)];
                waiting[static_cast<size_t>(k)] = 1;
                ++ran[static_cast<size_t>(piece)];
                relay.advance(10);
                relay.deliver(k, static_cast<uint64_t>(piece), [&, piece, k] {
                    off_thread = off_thread || std::this_thread::get_id() != caller;
                    told.push_back(piece);
                    waiting[static_cast<size_t>(k)] = 0;
                });
            });
        ASSERT_EQ(told.size(), static_cast<size_t>(pieces)) << threads << " threads";
        for (int64_t i = 0; i < pieces; ++i) {
            EXPECT_EQ(told[static_cast<size_t>(i)], i) << threads << " threads";
            EXPECT_EQ(ran[static_cast<size_t>(i)].load(), 1);
        }
        if (host) {
            EXPECT_FALSE(off_thread) << threads << " threads";
        }
        EXPECT_EQ(changed_while_waiting, std::vector<int32_t>(chains, 0));
        EXPECT_EQ(relay.steps_done.load(), 10u * pieces);
    }
    // The pieces of every chain add up to the whole, the first chains taking one more.
    int64_t sum = 0;
    for (int32_t k = 0; k < chains; ++k) sum += pieces_of(pieces, chains, k);
    EXPECT_EQ(sum, pieces);
    EXPECT_EQ(pieces_of(pieces, chains, 2), 5);
    EXPECT_EQ(pieces_of(pieces, chains, 3), 4);
    EXPECT_EQ(pieces_of(2, chains, 3), 0);
}

TEST(SideBySide, AFailureInAChainOrInTheObserverEndsTheRunWithIt) {
    for (const int32_t threads : {1, 2, 4}) {
        Observer observer;
        Relay relay;
        relay.observer = &observer;
        // Chain 2 fails at its third piece while the others wait on tickets it will never give.
        EXPECT_THROW(run_rounds(chain_plan(4, threads), 10, relay,
                                [&](int32_t k, int32_t j) {
                                    if (k == 2 && j == 2) throw std::runtime_error("chain 2");
                                    relay.deliver(k, static_cast<uint64_t>(j * 4 + k), [] {});
                                }),
                     std::runtime_error)
            << threads << " threads";

        Relay second;
        second.observer = &observer;
        EXPECT_THROW(run_rounds(chain_plan(3, threads), 4, second,
                                [&](int32_t k, int32_t j) {
                                    const auto ticket = static_cast<uint64_t>(j * 3 + k);
                                    second.deliver(k, ticket, [ticket] {
                                        if (ticket == 5) throw std::runtime_error("observer");
                                    });
                                }),
                     std::runtime_error)
            << threads << " threads";
    }
}

TEST(SideBySide, ThreadsNeverOutnumberChains) {
    EXPECT_EQ(threads_for(1, 0), 1);
    EXPECT_EQ(threads_for(3, 16), 3);
    EXPECT_EQ(threads_for(8, 2), 2);
    EXPECT_GE(threads_for(64, 0), 1);
    EXPECT_LE(threads_for(64, 0), available_cores());
}

}  // namespace
}  // namespace vexa
