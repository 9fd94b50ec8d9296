// The convergence diagnostics against known truths: the autocorrelation time of an AR(1)
// series, the overall ratio of a hand-worked two-statistic sample, and the verdict's edges.

#include "estimation/diagnostics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "estimation/confirmation.h"
#include "estimation/estimate_model.h"
#include "numeric/normal.h"

namespace vexa {
namespace {

// x_t = rho x_{t-1} + e_t: the integrated autocorrelation time is (1 + rho) / (1 - rho).
Matrix ar1(double rho, int n, uint32_t seed) {
    Rng rng;
    rng.seed(seed);
    Matrix m = make_matrix(n, 1, 0.0);
    double x = 0.0;
    for (int t = 0; t < n; ++t) {
        x = rho * x + standard_normal(rng);
        m[t][0] = x;
    }
    return m;
}

TEST(Diagnostics, AutocorrelationTimeAndEffectiveSizeOfKnownSeries) {
    for (const double rho : {0.0, 0.5, 0.9}) {
        const double truth = (1.0 + rho) / (1.0 - rho);
        const Matrix series = ar1(rho, 20000, 7);
        // The estimate's own error grows with tau: within 15% for these lengths.
        EXPECT_NEAR(autocorrelation_time(series, 0), truth, 0.15 * truth) << rho;
        EXPECT_NEAR(effective_sample_size(series, 0), 20000.0 / truth, 0.15 * 20000.0 / truth)
            << rho;
    }
    // A constant series has no effective draws at all.
    const Matrix constant = make_matrix(50, 1, 3.0);
    EXPECT_EQ(effective_sample_size(constant, 0), 0.0);
}

TEST(Diagnostics, OverallRatioTRatiosAndVerdicts) {
    // Two statistics, four draws: (0, 0), (2, 0), (0, 2), (2, 2). Means (1, 1), sample
    // covariance 4/3 I, so for observed (1.1, 1.1): t = 0.1 / sqrt(4/3) each and the overall
    // ratio sqrt(2 x 0.01 / (4/3)).
    Matrix draws = make_matrix(4, 2, 0.0);
    draws[1][0] = 2.0, draws[2][1] = 2.0, draws[3][0] = 2.0, draws[3][1] = 2.0;
    const ConvergenceCheck c = check_convergence(draws, {1.1, 1.1}, 2);
    EXPECT_NEAR(c.t_ratios[0], 0.1 / std::sqrt(4.0 / 3.0), 1e-12);
    EXPECT_NEAR(c.overall_ratio, std::sqrt(0.02 * 0.75), 1e-12);
    EXPECT_NEAR(c.largest_t, c.t_ratios[1], 1e-12);
    // Four draws are far too few to judge: small t-ratios, but noisy; a factor is suggested.
    EXPECT_EQ(c.verdict, Verdict::converged_but_noisy);
    EXPECT_GT(c.suggested_factor, 2);

    // Many independent draws around the observed values: converged; off by half a standard
    // deviation: not converged; a statistic that never moves: degenerate.
    Rng rng;
    rng.seed(3);
    Matrix many = make_matrix(2000, 2, 0.0);
    for (int i = 0; i < 2000; ++i)
        many[i][0] = standard_normal(rng), many[i][1] = standard_normal(rng);
    EXPECT_EQ(check_convergence(many, {0.0, 0.0}, 2).verdict, Verdict::converged);
    EXPECT_EQ(check_convergence(many, {0.5, 0.0}, 2).verdict, Verdict::not_converged);
    for (int i = 0; i < 2000; ++i) many[i][1] = 4.0;
    EXPECT_EQ(check_convergence(many, {0.0, 4.0}, 2).verdict, Verdict::degenerate);

    // The long chain confirms unless a t-ratio lies above 0.1 by more than the fixed margin of
    // twice its error at 2,500 effective draws; a noisier chain gets no wider margin.
    ConvergenceCheck long_chain;
    long_chain.t_ratios = {0.139, -0.05};
    long_chain.effective_sizes = {2600.0, 3000.0};
    long_chain.smallest_effective_size = 2600.0;
    long_chain.overall_ratio = 0.12;
    EXPECT_TRUE(confirms(long_chain));  // 0.139 is within 0.1 + 0.04
    long_chain.t_ratios[0] = 0.141;
    EXPECT_FALSE(confirms(long_chain));
    long_chain.t_ratios[0] = 0.05;
    long_chain.smallest_effective_size = 900.0;  // too few draws to judge
    EXPECT_FALSE(confirms(long_chain));
}

}  // namespace
}  // namespace vexa

namespace vexa {
namespace {

TEST(ReportedRun, TheConvergedRunElseTheSmallestLargestTRatio) {
    const auto record_of = [](const std::vector<std::pair<Verdict, double>>& runs) {
        EstimationRecord record;
        for (const auto& [verdict, largest] : runs) {
            EstimationRun run;
            run.degenerate = verdict == Verdict::degenerate;
            ConvergenceCheck check;
            check.verdict = verdict;
            check.largest_t = largest;
            record.runs.push_back(run);
            record.checks.push_back(check);
        }
        return record;
    };
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(reported_run(record_of({{Verdict::not_converged, 0.3},
                                      {Verdict::degenerate, 0.0},
                                      {Verdict::not_converged, 0.2}})),
              3);
    // A degenerate run's check holds nothing: its 0 is no t-ratio.
    EXPECT_EQ(reported_run(record_of({{Verdict::not_converged, 0.2},
                                      {Verdict::degenerate, 0.0},
                                      {Verdict::converged_but_noisy, 0.4}})),
              1);
    EXPECT_EQ(reported_run(record_of({{Verdict::not_converged, 0.05}, {Verdict::converged, 0.09}})),
              2);
    EXPECT_EQ(
        reported_run(record_of({{Verdict::not_converged, inf}, {Verdict::not_converged, inf}})), 2);
    EXPECT_EQ(reported_run(record_of({{Verdict::degenerate, 0.0}, {Verdict::degenerate, 0.0}})), 0);
    EXPECT_EQ(reported_run(record_of({})), 0);
}

}  // namespace
}  // namespace vexa
