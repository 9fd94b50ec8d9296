// The convergence file: exact text of a run's block, with and without the warning.

#include "report/convergence_report.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/test_support.h"

namespace vexa {
namespace {

TEST(ConvergenceReport, BlockWithItsTableFiguresWarningAndVerdict) {
    const std::vector<ParameterLabel> labels{
        {.name = "edge", .position = 0},
        {.name = "AT", .position = 1, .alternating = true, .lambda = 2.0f}};
    ConvergenceCheck check;
    check.t_ratios = {0.05, -0.125};
    check.effective_sizes = {812.4, 95.6};
    check.largest_t = 0.125;
    check.overall_ratio = 0.2;
    check.verdict = Verdict::not_converged;
    const auto block = [&] {
        return testing::capture(
            [&](FILE* out) { write_convergence_block(out, "Run 2", check, labels); });
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
