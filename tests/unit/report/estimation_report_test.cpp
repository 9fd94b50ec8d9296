// The estimation report, the covariance file and the convergence file: exact text on hand-made
// runs.

#include "report/estimation_report.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "report/convergence_report.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::capture;

// A label as the summary prints it; a lambda above 0 makes it alternating.
ParameterLabel label(const char* name, int32_t position, float lambda = 0.0f) {
    return {.name = name, .position = position, .alternating = lambda > 0.0f, .lambda = lambda};
}

TEST(EstimationReport, SettingsEcho) {
    const EstimationSettings settings{.multiplication_factor = 3,
                                      .subphase_count = 4,
                                      .phase3_steps = 1000,
                                      .start_a_value = 0.05f};
    EXPECT_EQ(capture([&](FILE* out) { write_estimation_settings(out, "flo", settings, 2); }),
              "STOCHASTIC ESTIMATION FOR NETWORK flo\n"
              "ESTIMATION SETTINGS\n"
              "Number of sub-phases in estimation (phase 2) = 4\n"
              "starting a-value in estimation (phase 2) = 0.050000\n"
              "Multiplication factor for estimation (phase 2) = 3\n"
              "Number of steps in final simulation (phase 3) = 1000\n"
              "Number of estimation runs = 2\n\n");
}

TEST(EstimationReport, TwoParametersTwoSubphasesAndTheDegenerateEndings) {
    EstimationRun run;
    run.observed = {20.0, 33.5625};
    run.starting = {-1.5, 0.25};
    run.gain = 0.1f;
    run.phase1_draws = 13;
    run.steps_per_draw = 64.5;
    run.phase1_means = {19.5, 30.25};
    run.after_phase1 = {-1.5, 0.25};
    run.subphases = {{0.1f, 9, {-1.61, 0.3125}}, {0.2f, 23, {-1.625, -0.03125}}};
    run.after_phase2 = {-1.625, -0.03125};
    run.phase3_draws = 500;
    run.phase3_means = {20.01, 33.5};
    run.estimates = {-1.625, -0.03125};
    run.standard_errors = {0.25, 0.5};
    run.t_ratios = {-0.04, 0.125};
    run.covariance = Matrix{2, 2, {0.0625, -0.01, -0.01, 0.25}};
    const std::vector<ParameterLabel> labels{label("edge", 0), label("AS", 1, 2.5f)};

    const std::string phase1 =
        "original statistics:20.000000\t33.562500\t\n"
        "starting parameters:-1.500000\t0.250000\t\n"
        "Phase1 started with the following setup:\n"
        "a = 0.100000\nnum of steps = 13\nnum of iterations in each step = 64.500000\n"
        "************************************\n"
        "mean statistics in phase1:19.500000\t30.250000\t\n";
    // Sub-phase parameters in "%8.5f": a positive value is padded to eight characters.
    const std::string phase2 =
        "END PHASE1 parameter:-1.500000\t0.250000\t\n"
        "Phase 2 started\n"
        "\n\nSubphase 0 started with a valued 0.100000\n"
        "\nSubphase 0 has gone up to 9 steps\n"
        "Parameter after Subphase 0:-1.61000\t 0.31250\t\n"
        "\n\nSubphase 1 started with a valued 0.200000\n"
        "\nSubphase 1 has gone up to 23 steps\n"
        "Parameter after Subphase 1:-1.62500\t-0.03125\t\n";
    const std::string phase3 =
        "END PHASE2 parameter:-1.625000\t-0.031250\t\n"
        "Phase3 started with the following setup:\n"
        "num of steps = 500\nnum of iterations in each step = 64.500000\n"
        "***************************************\n"
        "mean statistics in phase3:20.010000\t33.500000\t\n";
    // The edge converged (|t| 0.04) and lies 6.5 standard errors from 0: starred.
    const std::string summary =
        "\nEstimation Result for Network SUMMARY (parameter, standard error, t-statistics)\n"
        "NOTE: t-statistics = (observation - sample mean)/standard error\n"
        "effects\testimates\tstderr\tt-ratio\n"
        "edge\t-1.625000\t0.25000\t-0.04000\t*\n"
        "AS(2.50)\t-0.031250\t0.50000\t0.12500\t\n"
        "\nEstimated Covariance Matrix\n"
        "0.062500\t-0.010000\t\n-0.010000\t0.250000\t\n\n";
    const auto report = [&] {
        return capture([&](FILE* out) { write_estimation_run(out, run, labels); });
    };
    EXPECT_EQ(report(), phase1 + phase2 + phase3 + summary);
    // A degenerate run ends its report where it stopped, with no summary.
    run.degenerate = true;
    for (const auto& [stage, written] :
         {std::pair{1, phase1}, {2, phase1 + phase2}, {3, phase1 + phase2 + phase3}}) {
        run.stage = stage;
        EXPECT_EQ(report(), written + "Degenerate Model!\n") << "stage " << stage;
    }
    // The covariance file: the same rows and the closing blank line, here 1 by 1.
    EXPECT_EQ(capture([](FILE* out) {
                  write_covariance_matrix(out, Matrix{1, 1, {0.0625}});
              }),
              "0.062500\t\n\n");
}

TEST(EstimationReport, StarOnlyForAConvergedEstimateBeyondTwoStandardErrors) {
    // The rule at its edges: |t| exactly 0.1 or |theta| exactly 2 se gets no star; a hair inside
    // both does, though it prints the same numbers.
    const double t_in = std::nextafter(0.1, 0.0), theta_out = std::nextafter(2.0, 3.0);
    const std::vector<double> theta{3.0, -3.0, 2.0, -3.0, 300.0, theta_out};
    const std::vector<double> se(theta.size(), 1.0);
    const std::vector<double> t{0.1, -0.1, 0.05, 0.05, 0.15, t_in};
    const std::vector<ParameterLabel> labels{label("e0", 0), label("e1", 1), label("e2", 2),
                                             label("e3", 3), label("e4", 4), label("e5", 5)};
    EXPECT_EQ(capture([&](FILE* out) { write_estimation_summary(out, labels, theta, se, t); }),
              "\nEstimation Result for Network SUMMARY (parameter, standard error, t-statistics)\n"
              "NOTE: t-statistics = (observation - sample mean)/standard error\n"
              "effects\testimates\tstderr\tt-ratio\n"
              "e0\t3.000000\t1.00000\t0.10000\t\n"
              "e1\t-3.000000\t1.00000\t-0.10000\t\n"
              "e2\t2.000000\t1.00000\t0.05000\t\n"
              "e3\t-3.000000\t1.00000\t0.05000\t*\n"
              "e4\t300.000000\t1.00000\t0.15000\t\n"
              "e5\t2.000000\t1.00000\t0.10000\t*\n");
}

TEST(ConvergenceReport, BlockWithItsTableFiguresWarningAndVerdict) {
    const std::vector<ParameterLabel> labels{label("edge", 0), label("AT", 1, 2.0f)};
    ConvergenceCheck check;
    check.t_ratios = {0.05, -0.125};
    check.effective_sizes = {812.4, 95.6};
    check.largest_t = 0.125;
    check.overall_ratio = 0.2;
    check.verdict = Verdict::not_converged;
    const auto block = [&] {
        return capture([&](FILE* out) { write_convergence_block(out, "Run 2", check, labels); });
    };
    const std::string table =
        "Run 2\neffects\tt-ratio\teffective sample size\n"
        "edge\t0.05000\t812\nAT(2.00)\t-0.12500\t96\n"
        "largest t-ratio\t0.12500\noverall maximum convergence ratio\t0.20000\n";
    EXPECT_EQ(block(), table + "verdict\tnot converged\n\n");
    check.suggested_factor = 5;
    check.verdict = Verdict::converged_but_noisy;
    EXPECT_EQ(block(), table +
                           "warning\tfewer than 100 effective draws: the t-ratios are too noisy to "
                           "judge convergence; a multiplication factor of 5 would give enough\n"
                           "verdict\tconverged but noisy\n\n");
}

}  // namespace
}  // namespace vexa
