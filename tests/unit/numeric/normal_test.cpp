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

// A generator whose next two draws are `first` and `second`. The state after the first draw
// has `first` in bits 16..30 and 17 free bits, so a search finds one; a step back undoes the
// multiplier with its inverse mod 2^32 (Newton's iteration doubles the correct low bits).
Rng generator_before(int first, int second) {
    uint32_t inverse = 214013u;
    for (int k = 0; k < 5; ++k) inverse *= 2u - 214013u * inverse;
    for (uint32_t free_bits = 0; free_bits < (1u << 17); ++free_bits) {
        const uint32_t after = ((free_bits >> 16) << 31) | (static_cast<uint32_t>(first) << 16) |
                               (free_bits & 0xffffu);
        const uint32_t next = after * 214013u + 2531011u;
        if (static_cast<int>((next >> 16) & 0x7fffu) == second) {
            Rng rng;
            rng.seed((after - 2531011u) * inverse);
            Rng check = rng;
            EXPECT_EQ(check.next(), first);
            EXPECT_EQ(check.next(), second);
            return rng;
        }
    }
    ADD_FAILURE() << "no state draws " << first << " then " << second;
    return Rng{};
}

TEST(StandardNormal, HandWorkedPairs) {
    // Draws 0 then 16384: u = -1, v = 0, s = 1 exactly, which is kept: -1 * sqrt(0) = 0.
    Rng unit_circle = generator_before(0, 16384);
    Rng two_later = unit_circle;
    two_later.next();
    two_later.next();
    EXPECT_EQ(standard_normal(unit_circle), 0.0);
    EXPECT_EQ(unit_circle.state, two_later.state);

    // Draws 8192 then 16384: u = -1/2, v = 0, s = 1/4, so -1/2 sqrt(8 ln 4) = -2 sqrt(ln 2).
    // A scale of 1/32767 would move u by 3e-5; u and v swapped would give 0.
    Rng half = generator_before(8192, 16384);
    EXPECT_DOUBLE_EQ(standard_normal(half), -2.0 * std::sqrt(std::log(2.0)));

    // Rejected pairs are dropped whole: s = 2 (corner), s = 0 (centre), s just above 1.
    for (const auto& [first, second] :
         {std::pair{0, 0}, std::pair{16384, 16384}, std::pair{32767, 0}}) {
        Rng rejected = generator_before(first, second);
        Rng after_pair = rejected;
        after_pair.next();
        after_pair.next();
        const double z = standard_normal(rejected);
        EXPECT_TRUE(std::isfinite(z));
        EXPECT_EQ(z, standard_normal(after_pair)) << first << ", " << second;
    }
}

TEST(StandardNormal, DrawsFollowTheStandardNormal) {
    Rng rng;
    rng.seed(12345);
    const int n = 100000;
    double sum = 0.0;
    double squares = 0.0;
    int negative = 0;
    int beyond_196 = 0;
    for (int k = 0; k < n; ++k) {
        const double z = standard_normal(rng);
        sum += z;
        squares += z * z;
        negative += z < 0.0 ? 1 : 0;
        beyond_196 += std::fabs(z) > 1.959964 ? 1 : 0;
    }
    const double mean = sum / n;
    const double variance = (squares - n * mean * mean) / (n - 1);
    // About four standard errors each: 1/sqrt(n), sqrt(2/n), sqrt(p(1-p)/n).
    EXPECT_NEAR(mean, 0.0, 0.013);
    EXPECT_NEAR(variance, 1.0, 0.018);
    EXPECT_NEAR(static_cast<double>(negative) / n, 0.5, 0.0064);
    EXPECT_NEAR(static_cast<double>(beyond_196) / n, 0.05, 0.0028);
}

TEST(MultivariateNormal, SampleMomentsApproachTheGivenOnes) {
    const std::vector<double> mean{1.0, -2.0, 0.5};
    Matrix c = make_matrix(3, 3);
    const double entries[3][3] = {{4, 2, 0.6}, {2, 5, 1}, {0.6, 1, 3}};
    for (int r = 0; r < 3; ++r) {
        for (int k = 0; k < 3; ++k) c[r][k] = entries[r][k];
    }
    SeedSource seeds{true, 99, 0};
    Rng rng;
    const int n = 40000;
    const Matrix draws = multivariate_normal_batch(mean, c, n, rng, seeds);
    ASSERT_EQ(draws.rows, n);
    ASSERT_EQ(draws.cols, 3);
    double sample_mean[3] = {0, 0, 0};
    for (int r = 0; r < n; ++r) {
        for (int j = 0; j < 3; ++j) sample_mean[j] += draws[r][j] / n;
    }
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(sample_mean[i], mean[static_cast<size_t>(i)], 4.5 * std::sqrt(c[i][i] / n));
        for (int j = 0; j <= i; ++j) {
            double cov = 0.0;
            for (int r = 0; r < n; ++r)
                cov += (draws[r][i] - sample_mean[i]) * (draws[r][j] - sample_mean[j]);
            cov /= n - 1;
            // Standard error of a sample covariance of normals: sqrt((s_ii s_jj + s_ij^2) / n).
            EXPECT_NEAR(cov, c[i][j], 4.5 * std::sqrt((c[i][i] * c[j][j] + c[i][j] * c[i][j]) / n))
                << i << j;
        }
    }
}

TEST(MultivariateNormal, ReseedsDegenerateCovariancesAndBadInput) {
    Matrix line = make_matrix(2, 2, 1.0);  // rank one: both coordinates move together
    const std::vector<double> mean{3.0, -1.0};
    SeedSource first{true, 5, 0};
    SeedSource second{true, 5, 0};
    Rng rng_a;
    Rng rng_b;
    rng_b.seed(999);
    const Matrix a = multivariate_normal_batch(mean, line, 50, rng_a, first);
    const Matrix b = multivariate_normal_batch(mean, line, 50, rng_b, second);
    EXPECT_EQ(a.data, b.data);  // the generator's earlier state does not matter
    EXPECT_EQ(first.seedings, 1u);
    EXPECT_NE(multivariate_normal_batch(mean, line, 50, rng_a, first).data, a.data);
    for (int r = 0; r < a.rows; ++r) EXPECT_NEAR(a[r][0] - 3.0, a[r][1] + 1.0, 1e-12);

    const Matrix fixed = multivariate_normal_batch(mean, make_matrix(2, 2, 0.0), 5, rng_a, first);
    for (int r = 0; r < fixed.rows; ++r) {
        EXPECT_EQ(fixed[r][0], 3.0);
        EXPECT_EQ(fixed[r][1], -1.0);
    }
    EXPECT_EQ(multivariate_normal_batch(mean, line, 0, rng_a, first).rows, 0);

    EXPECT_THROW(multivariate_normal_batch(mean, make_matrix(3, 3, 1.0), 5, rng_a, first),
                 SettingError);
    EXPECT_THROW(multivariate_normal_batch(mean, line, -1, rng_a, first), SettingError);
    Matrix indefinite = make_matrix(2, 2, 2.0);
    indefinite[0][0] = 1.0;
    EXPECT_THROW(multivariate_normal_batch(mean, indefinite, 5, rng_a, first), SettingError);
}

}  // namespace
}  // namespace vexa
