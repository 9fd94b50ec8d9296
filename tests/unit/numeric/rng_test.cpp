#include "numeric/rng.h"

#include <gtest/gtest.h>

#include <ctime>

namespace vexa {
namespace {

TEST(Rng, KnownDrawsAndSeedSources) {
    Rng rng;
    rng.seed(1);
    for (const int expected : {41, 18467, 6334, 26500, 19169}) EXPECT_EQ(rng.next(), expected);
    Rng unseeded;
    EXPECT_EQ(unseeded.next(), 41);

    SeedSource fixed{true, 1000, 0};
    EXPECT_EQ(fixed.next_seed(), 1000u);
    EXPECT_EQ(fixed.next_seed(), 1001u);
    fixed.reseed(rng);
    EXPECT_EQ(rng.state, 1002u);
    EXPECT_EQ(fixed.seedings, 3u);

    SeedSource clock;
    const auto before = static_cast<uint32_t>(std::time(nullptr));
    const uint32_t seed = clock.next_seed();
    const auto after = static_cast<uint32_t>(std::time(nullptr));
    EXPECT_GE(seed, before);
    EXPECT_LE(seed, after);
}

}  // namespace
}  // namespace vexa
