// The estimation report and the convergence file where the bundled runs cannot reach them: the
// degenerate endings, the star rule at its edges and the warning of a noisy verdict.

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

// The full report is in the golden outputs; none of the bundled runs ends degenerate.
TEST(EstimationReport, ADegenerateRunEndsWhereItStopped) {
    EstimationRun run;
    run.observed = {20.0, 33.5625};
    run.starting = run.after_phase1 = {-1.5, 0.25};
    run.phase1_means = {19.5, 30.25};
    run.subphases = {{0.1f, 9, {-1.61, 0.3125}}, {0.2f, 23, {-1.625, -0.03125}}};
    run.after_phase2 = run.estimates = {-1.625, -0.03125};
    run.phase3_means = {20.01, 33.5};
    run.standard_errors = {0.25, 0.5};
    run.t_ratios = {-0.04, 0.125};
    run.covariance = Matrix{2, 2, {0.0625, -0.01, -0.01, 0.25}};
    const std::vector<ParameterLabel> labels{label("edge", 0), label("AS", 1, 2.5f)};
    const auto report = [&] {
        return capture([&](FILE* out) { write_estimation_run(out, run, labels, true); });
    };
    const std::string full = report();
    // Each stage's report is the complete one cut before the next stage begins, and no summary.
    run.degenerate = true;
    for (const auto& [stage, next] :
         {std::pair{1, "END PHASE1"}, {2, "END PHASE2"}, {3, "\nEstimation Result"}}) {
        run.stage = stage;
        ASSERT_NE(full.find(next), std::string::npos) << next;
        EXPECT_EQ(report(), full.substr(0, full.find(next)) + "Degenerate Model!\n") << stage;
    }
}

TEST(EstimationReport, StarOnlyForAConvergedRunsEstimateBeyondTwoStandardErrors) {
    // The rule at its edges: |t| exactly 0.1 or |theta| exactly 2 se gets no star; a hair inside
    // both does, though it prints the same numbers.
    const double t_in = std::nextafter(0.1, 0.0), theta_out = std::nextafter(2.0, 3.0);
    const std::vector<double> theta{3.0, -3.0, 2.0, -3.0, 300.0, theta_out};
    const std::vector<double> se(theta.size(), 1.0);
    const std::vector<double> t{0.1, -0.1, 0.05, 0.05, 0.15, t_in};
    const std::vector<ParameterLabel> labels{label("e0", 0), label("e1", 1), label("e2", 2),
                                             label("e3", 3), label("e4", 4), label("e5", 5)};
    const auto summary = [&](bool converged) {
        return capture(
            [&](FILE* out) { write_estimation_summary(out, labels, theta, se, t, converged); });
    };
    const std::string starred = summary(true);
    EXPECT_EQ(starred,
              "\nEstimation Result for Network SUMMARY (parameter, standard error, t-statistics)\n"
              "NOTE: t-statistics = (observation - sample mean)/standard error\n"
              "effects\testimates\tstderr\tt-ratio\n"
              "e0\t3.000000\t1.00000\t0.10000\t\n"
              "e1\t-3.000000\t1.00000\t-0.10000\t\n"
              "e2\t2.000000\t1.00000\t0.05000\t\n"
              "e3\t-3.000000\t1.00000\t0.05000\t*\n"
              "e4\t300.000000\t1.00000\t0.15000\t\n"
              "e5\t2.000000\t1.00000\t0.10000\t*\n");
    // A run that did not converge claims nothing: the same table without a star.
    std::string plain = starred;
    for (size_t at = plain.find("*\n"); at != std::string::npos; at = plain.find("*\n"))
        plain.erase(at, 1);
    EXPECT_EQ(summary(false), plain);
}

// The block's table is in the golden outputs; its warning needs a run too short to judge.
TEST(ConvergenceReport, ANoisyVerdictSaysWhatFactorWouldDo) {
    const std::vector<ParameterLabel> labels{label("edge", 0)};
    ConvergenceCheck check;
    check.t_ratios = {0.05};
    check.effective_sizes = {95.6};
    check.suggested_factor = 5;
    check.verdict = Verdict::converged_but_noisy;
    const std::string block =
        capture([&](FILE* out) { write_convergence_block(out, "Run 2", check, labels); });
    EXPECT_NE(block.find("\nwarning\tfewer than 100 effective draws: the t-ratios are too noisy "
                         "to judge convergence; a multiplication factor of 5 would give enough\n"
                         "verdict\tconverged but noisy\n\n"),
              std::string::npos)
        << block;
}

}  // namespace
}  // namespace vexa
