// Estimation by equilibrium expectation on models whose maximum likelihood estimate has a
// closed form: the estimate lands near the exact value in nearly every seed, phase 3 judges it
// as it judges stochastic approximation, and the convergence file names the method.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

// Eight seeds (two in the checking build) in the plain mode at factor 4, up to three runs: all
// but one converge, and every reported estimate lies within `tolerance` standard errors of the
// exact values (measured: at most 0.13 of a standard error off).
void expect_near_exact(testing::GraphRunFile file, const std::string& dir,
                       const std::vector<double>& exact, double tolerance) {
    file.factor = 4;
    file.runs = 3;
    int converged = 0;
    const uint32_t seeds = testing::checking_build ? 2 : 8;
    for (uint32_t seed = 1; seed <= seeds; ++seed) {
        RunOptions options;
        options.fixed_seed = true;
        options.seed = seed;
        options.method = EstimationMethod::equilibrium_expectation;
        int status = -1;
        const std::string printed = testing::run_vexa_with(dir, file, options, &status);
        converged += status == 0;
        const std::string verdicts = testing::read_text(dir + "/out/convergence_net.txt");
        EXPECT_NE(verdicts.find("method\tequilibrium expectation: one chain"), std::string::npos)
            << verdicts;
        const auto summary =
            testing::last_summary(testing::read_text(dir + "/out/estimation_net.txt"));
        ASSERT_EQ(summary.size(), exact.size()) << printed;
        for (size_t k = 0; k < exact.size(); ++k) {
            EXPECT_LT(std::fabs(summary[k].estimate - exact[k]), tolerance * summary[k].se)
                << "seed " << seed << ": " << summary[k].label << " " << summary[k].estimate
                << " exact " << exact[k] << " se " << summary[k].se;
        }
    }
    EXPECT_GE(converged, static_cast<int>(seeds) - 1);
}

TEST(EquilibriumExpectation, ReachesClosedFormsAndPhase3JudgesThem) {
    // Edge alone on flomarriage: 20 ties of 120 dyads.
    const std::string graph_dir = testing::scratch_directory("equilibrium_edge");
    testing::GraphRunFile edge = testing::on_network(graph_dir, "flomarriage.txt");
    edge.effects = {{"edge", {0, 0}}};
    expect_near_exact(edge, graph_dir, {std::log(20.0 / 100.0)}, 0.2);
    // A single stage is also the last: it keeps the starting gain, and runs again while its
    // halves differ.
    edge.subphases = 1;
    expect_near_exact(edge, graph_dir, {std::log(20.0 / 100.0)}, 0.3);

    // Arc and reciprocity on samplike.
    const std::string digraph_dir = testing::scratch_directory("equilibrium_reciprocity");
    testing::GraphRunFile reciprocity =
        testing::on_network(digraph_dir, "samplike.txt", NetworkKind::digraph, 18);
    reciprocity.effects = {{"arc", {0, 0}}, {"reciprocity", {0, 0}}};
    expect_near_exact(reciprocity, digraph_dir, testing::samplike_reciprocity_estimates(), 0.2);
}

}  // namespace
}  // namespace vexa
