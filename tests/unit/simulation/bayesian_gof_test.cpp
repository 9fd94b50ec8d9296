// The posterior predictive p-value of goodness of fit over parameter sets, on a hand-worked
// sample. (The sets file reader is checked end to end.)

#include "simulation/bayesian_gof.h"

#include <gtest/gtest.h>

#include <vector>

namespace vexa {
namespace {

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
