#include "numeric/normal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "numeric/matrix.h"
#include "numeric/rng.h"

namespace vexa {
namespace {

// A generator whose next two draws are `first` and `second`: a search over the 17 free bits of the
// state after `first` (bits 16..30), then two steps back with 214013's inverse mod 2^32.
Rng generator_before(int first, int second) {
    Rng rng;
    for (uint32_t bits = 0; bits < (1u << 17); ++bits) {
        rng.seed(((bits >> 16) << 31) | (static_cast<uint32_t>(first) << 16) | (bits & 0xffffu));
        if (rng.next() == second) break;
    }
    for (int back = 0; back < 2; ++back) rng.seed((rng.state - 2531011u) * 0xb9b33155u);
    return rng;
}

Rng two_draws_later(Rng rng) {
    rng.next();
    rng.next();
    return rng;
}

TEST(StandardNormal, HandWorkedPairs) {
    // Draws 0 then 16384: u = -1, v = 0, s = 1 exactly, which is kept: -1 * sqrt(0) = 0.
    Rng unit_circle = generator_before(0, 16384);
    const Rng after_pair = two_draws_later(unit_circle);
    EXPECT_EQ(standard_normal(unit_circle), 0.0);
    EXPECT_EQ(unit_circle.state, after_pair.state);
    // Draws 8192 then 16384: u = -1/2, v = 0, s = 1/4, so -1/2 sqrt(8 ln 4) = -2 sqrt(ln 2).
    // A scale of 1/32767 would move u by 3e-5; u and v swapped would give 0.
    Rng half = generator_before(8192, 16384);
    EXPECT_DOUBLE_EQ(standard_normal(half), -2.0 * std::sqrt(std::log(2.0)));
    // Rejected pairs are dropped whole: s = 2 (corner), s = 0 (centre), s just above 1.
    for (const auto& [first, second] :
         {std::pair{0, 0}, std::pair{16384, 16384}, std::pair{32767, 0}}) {
        Rng rejected = generator_before(first, second), skipped = two_draws_later(rejected);
        EXPECT_EQ(standard_normal(rejected), standard_normal(skipped)) << first << ", " << second;
    }
}

// Sample means and covariances within 4.5 standard errors; that of a sample covariance of
// normals is sqrt((s_ii s_jj + s_ij^2) / n). Each batch reseeds from the seed source first: the
// generator's earlier state does not matter, and the next batch differs.
TEST(MultivariateNormal, ReseedsAndMatchesTheGivenMoments) {
    const std::vector<double> mean{1.0, -2.0, 0.5};
    const Matrix c{3, 3, {4, 2, 0.6, 2, 5, 1, 0.6, 1, 3}};
    SeedSource seeds{true, 99, 0}, same{true, 99, 0};
    Rng rng, other;
    other.seed(12345);
    const int n = 40000;
    const Matrix draws = multivariate_normal_batch(mean, c, n, rng, seeds);
    EXPECT_EQ(draws.data, multivariate_normal_batch(mean, c, n, other, same).data);
    EXPECT_NE(draws.data, multivariate_normal_batch(mean, c, n, rng, seeds).data);
    ASSERT_TRUE(draws.rows == n && draws.cols == 3);
    double m[3] = {0, 0, 0};
    for (size_t k = 0; k < draws.data.size(); ++k) m[k % 3] += draws.data[k] / n;
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(m[i], mean[static_cast<size_t>(i)], 4.5 * std::sqrt(c[i][i] / n));
        for (int j = 0; j <= i; ++j) {
            double cov = 0.0;
            for (int r = 0; r < n; ++r)
                cov += (draws[r][i] - m[i]) * (draws[r][j] - m[j]) / (n - 1);
            EXPECT_NEAR(cov, c[i][j], 4.5 * std::sqrt((c[i][i] * c[j][j] + c[i][j] * c[i][j]) / n))
                << i << j;
        }
    }
    EXPECT_THROW(multivariate_normal_batch(mean, make_matrix(2, 2, 1.0), 5, rng, seeds),
                 SettingError);
    EXPECT_THROW(multivariate_normal_batch(mean, c, -1, rng, seeds), SettingError);
}

}  // namespace
}  // namespace vexa
