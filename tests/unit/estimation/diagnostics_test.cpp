// The convergence diagnostics against known truths: the autocorrelation time of an AR(1)
// series, the overall ratio of a hand-worked two-statistic sample, and the verdict's edges.

#include "estimation/diagnostics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>
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

TEST(Diagnostics, DrawsPooledFromChainsCountTheirEffectiveDrawsTogether) {
    // Four AR(1) chains at rho 0.5 (tau 3) dealt round-robin: together 4 x 5000 / 3 effective
    // draws (read as one series, the interleaving would look nearly independent).
    constexpr int chains = 4;
    constexpr int each = 5000;
    const auto pool = [&](double offset) {
        Matrix pooled = make_matrix(chains * each, 1, 0.0);
        for (int k = 0; k < chains; ++k) {
            const Matrix chain = ar1(0.5, each, static_cast<uint32_t>(11 + k));
            for (int i = 0; i < each; ++i) pooled[i * chains + k][0] = chain[i][0] + offset * k;
        }
        return pooled;
    };
    const Matrix pooled = pool(0.0);
    const double truth = chains * each / 3.0;
    EXPECT_NEAR(effective_sample_size(pooled, 0, chains), truth, 0.1 * truth);
    EXPECT_NEAR(smallest_effective_size(pooled, chains), truth, 0.1 * truth);
    EXPECT_NEAR(check_convergence(pooled, {0.05}, 1, chains).effective_sizes[0], truth,
                0.1 * truth);
    // Chains that each sit in a part of their own (means a standard deviation of the chain
    // apart, as chains far too short to cross between modes would) count for far less.
    EXPECT_LT(effective_sample_size(pool(1.7), 0, chains), 0.1 * truth);
    const Matrix second = chain_rows(pooled, chains, 1);
    ASSERT_EQ(second.rows, each);
    EXPECT_EQ(second[2][0], pooled[2 * chains + 1][0]);
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

TEST(AutomaticCarry, ANearMissHandsOnANewtonStepToTheEstimate) {
    // Edge and a same-group effect over 60 dyads within groups (30 ties) and 60 between (12):
    // the maximum likelihood estimate is edge = logit(12/60), same = logit(30/60) - edge.
    // A run that stopped a third of a standard error off, its phase-3 moments exact, hands
    // on a start within a hundredth of a standard error of it.
    const double within = 60, between = 60;
    const auto logit = [](double p) { return std::log(p / (1.0 - p)); };
    const double edge = logit(12.0 / 60.0), same = logit(30.0 / 60.0) - edge;
    const auto run_at = [&](double a, double b) {
        const double pw = 1.0 / (1.0 + std::exp(-(a + b))), pb = 1.0 / (1.0 + std::exp(-a));
        const double vw = within * pw * (1 - pw), vb = between * pb * (1 - pb);
        // Var(edges) = vw + vb, Cov(edges, same) = Var(same) = vw; C is its inverse.
        const double det = (vw + vb) * vw - vw * vw;
        EstimationRun run;
        run.automatic = true;
        run.estimates = {a, b};
        run.observed = {42.0, 30.0};
        run.phase3_means = {within * pw + between * pb, within * pw};
        run.covariance = make_matrix(2, 2, 0.0);
        run.covariance[0][0] = vw / det;
        run.covariance[0][1] = run.covariance[1][0] = -vw / det;
        run.covariance[1][1] = (vw + vb) / det;
        ConvergenceCheck check;
        check.verdict = Verdict::not_converged;
        check.t_ratios = {(42.0 - run.phase3_means[0]) / std::sqrt(vw + vb),
                          (30.0 - run.phase3_means[1]) / std::sqrt(vw)};
        return std::pair{run, check};
    };
    const double se_edge = std::sqrt(1.0 / (between * 0.2 * 0.8));
    const double se_same = std::sqrt(1.0 / (within * 0.25) + 1.0 / (between * 0.16));
    auto [run, check] = run_at(edge + 0.33 * se_edge, same - 0.33 * se_same);
    AutoCarry carry = carry_after(run, check);
    ASSERT_EQ(carry.newton_start.size(), 2u);
    EXPECT_NEAR(carry.newton_start[0], edge, 0.01 * se_edge);
    EXPECT_NEAR(carry.newton_start[1], same, 0.01 * se_same);

    // Too far for the statistics to move linearly, converged, or stopped: no step.
    std::tie(run, check) = run_at(edge + 2.0 * se_edge, same);
    EXPECT_TRUE(carry_after(run, check).newton_start.empty());
    std::tie(run, check) = run_at(edge, same);
    check.verdict = Verdict::converged;
    EXPECT_TRUE(carry_after(run, check).newton_start.empty());
    run.degenerate = true;
    check.verdict = Verdict::degenerate;
    EXPECT_TRUE(carry_after(run, check).newton_start.empty());
}

}  // namespace
}  // namespace vexa
