// The comparisons of goodness of fit, and the posterior predictive p-value of its form over
// parameter sets, against hand-worked samples; an identity of the Mahalanobis forms.

#include "simulation/goodness_of_fit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <vector>

#include "numeric/rng.h"
#include "simulation/bayesian_gof.h"

namespace vexa {
namespace {

TEST(GoodnessOfFit, ComparisonsAndQuartilesOfHandWorkedSamples) {
    // 18 20 22 24: mean 21, deviations -3 -1 1 3, variance 20 / (4 - 1).
    const Comparison c = compare(20.0, {24.0, 18.0, 22.0, 20.0});
    EXPECT_DOUBLE_EQ(c.mean, 21.0);
    EXPECT_DOUBLE_EQ(c.stddev, std::sqrt(20.0 / 3.0));
    EXPECT_DOUBLE_EQ(c.t, -1.0 / std::sqrt(20.0 / 3.0));
    // One sample: no spread, so the t-ratio is infinite, or undefined at the mean itself.
    EXPECT_EQ(compare(5.0, {3.0}).t, INFINITY);
    EXPECT_TRUE(std::isnan(compare(3.0, {3.0}).t));

    // floor(q (N + 1)) reads past the end for one or three samples; it is kept inside.
    for (const auto& [q, n, index] :
         {std::tuple{0.75, 1, 0}, {0.5, 1, 0}, {0.75, 3, 2}, {0.25, 3, 1}, {0.5, 10, 5}})
        EXPECT_EQ(quantile_index(q, n), index) << q << " of " << n;
    // Sorted 1 1 2 3 4: median entry 3, range entry 4 - entry 1; two strictly below 2, two above.
    QuartileComparison q = compare_quartile(2, {4, 1, 3, 1, 2});
    EXPECT_EQ(q.median, 3);
    EXPECT_EQ(q.range, 3);
    EXPECT_EQ(q.observed, 2);
    EXPECT_EQ(q.lower, 100.0 * static_cast<double>(0.4f));
    EXPECT_EQ(q.higher, q.lower);
    // Observed equal to every sample: neither below nor above.
    q = compare_quartile(3, {3, 3, 3});
    EXPECT_TRUE(q.median == 3 && q.range == 0 && q.lower == 0.0 && q.higher == 0.0);
    // The share is formed in single precision: 1/160 as a float lies just above 0.00625, so the
    // report prints 0.63% where the exact 0.625 would round to even, 0.62%.
    std::vector<int32_t> many(160, 2);
    many[40] = 1;
    q = compare_quartile(2, many);
    EXPECT_EQ(q.lower, 100.0 * static_cast<double>(1.0f / 160.0f));
    EXPECT_NE(q.lower, 0.625);
}

TEST(GoodnessOfFit, MahalanobisOfHandWorkedAndCollinearSamples) {
    // x = 0 2 0 2, y = 0 0 2 4: means 1 and 1.5; with divisor N, C = [[1, 0.5], [0.5, 2.75]],
    // determinant 2.5, inverse [[1.1, -0.2], [-0.2, 0.4]]. Forms 1.1 dx^2 - 0.4 dx dy + 0.4 dy^2
    // of the samples: 1.4, 2.6, 1.4, 2.6; of the observed (1, 3.5): 1.6, two samples closer.
    Mahalanobis m = mahalanobis({{0, 2, 0, 2}, {0, 0, 2, 4}}, {1.0, 3.5});
    ASSERT_TRUE(m.available);
    const std::vector<double> forms{1.4, 2.6, 1.4, 2.6};
    for (size_t s = 0; s < forms.size(); ++s) EXPECT_NEAR(m.sample_forms[s], forms[s], 1e-12);
    EXPECT_NEAR(m.observed_form, 1.6, 1e-12);
    EXPECT_NEAR(m.observed_distance, std::sqrt(1.6), 1e-12);
    EXPECT_EQ(m.closer_percent, 50.0);
    // The corners of a square: C = I exactly and every form is 2. A sample exactly as far as the
    // observed network is not closer.
    const std::vector<std::vector<double>> square{{0, 2, 0, 2}, {0, 0, 2, 2}};
    EXPECT_EQ(mahalanobis(square, {0.0, 0.0}).closer_percent, 0.0);
    EXPECT_EQ(mahalanobis(square, {1.0, 3.0}).observed_distance, 2.0);
    EXPECT_EQ(mahalanobis(square, {1.0, 3.0}).closer_percent, 100.0);
    // Collinear statistics (y = 2x), or one that never varies: no inverse, no distance.
    EXPECT_FALSE(mahalanobis({{0, 1, 2}, {0, 2, 4}}, {1.0, 1.0}).available);
    EXPECT_FALSE(mahalanobis({{0, 1, 2}, {5, 5, 5}}, {1.0, 1.0}).available);

    // With the covariance divided by N, the forms of the samples sum to N x p, whatever they are.
    Rng rng;
    rng.seed(8);
    std::vector<std::vector<double>> rows(3, std::vector<double>(50));
    for (auto& row : rows)
        for (double& x : row) x = rng.unit() * 10.0;
    m = mahalanobis(rows, {5.0, 5.0, 5.0});
    double sum = 0.0;
    for (const double form : m.sample_forms) sum += form;
    EXPECT_NEAR(sum, 150.0, 1e-9);
}

TEST(ParameterSets, PosteriorPredictiveP) {
    // Sample 1..5. Observed 2: 4 of 5 at or above, 2 of 5 at or below, p = 2 x 2/5. Observed 3,
    // the median: 2 x 3/5 is above 1, so 1. Beyond either end: 0. At the top: 2 x 1/5.
    const std::vector<double> sample{5, 1, 4, 2, 3};
    EXPECT_DOUBLE_EQ(posterior_predictive_p(2.0, sample), 0.8);
    EXPECT_DOUBLE_EQ(posterior_predictive_p(3.0, sample), 1.0);
    EXPECT_DOUBLE_EQ(posterior_predictive_p(0.5, sample), 0.0);
    EXPECT_DOUBLE_EQ(posterior_predictive_p(6.0, sample), 0.0);
    EXPECT_DOUBLE_EQ(posterior_predictive_p(5.0, sample), 0.4);
    // Ties count on both sides: a sample that never varies from the observed value gives 1.
    EXPECT_DOUBLE_EQ(posterior_predictive_p(7.0, {7, 7, 7}), 1.0);
    EXPECT_DOUBLE_EQ(posterior_predictive_p(7.0, {}), 1.0);
}

}  // namespace
}  // namespace vexa
