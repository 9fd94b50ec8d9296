// Digraph runs end to end against independent truths: the closed-form estimate of arc and
// reciprocity on the bundled samplike network, the binomial arc count of an arc-only
// simulation, out-degrees kept by the receiver move, a degenerate Markov model never reported
// as converged, and what a digraph goodness of fit writes.

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::GraphRunFile;
using testing::lines_of;
using testing::tab_fields;

GraphRunFile samplike(const std::string& dir) {
    testing::write_text(dir + "/samplike.txt",
                        testing::read_text(testing::data_path("samplike.txt")));
    GraphRunFile file;
    file.kind = NetworkKind::digraph;
    file.nodes = 18;
    file.network_file = "samplike.txt";
    return file;
}

TEST(DigraphRuns, ArcAndReciprocityEstimatesMatchTheirClosedForm) {
    // 28 mutual, 32 asymmetric, 93 null dyads: arc = ln(16/93), reciprocity = ln(28 x 93 / 16^2).
    const std::string dir = testing::scratch_directory("digraph_estimation");
    GraphRunFile file = samplike(dir);
    file.effects = {{"arc", {0.0, 0.0}}, {"reciprocity", {0.0, 0.0}}};
    file.factor = 6;
    file.runs = 5;
    const std::string printed = testing::run_vexa(dir, file, 3);
    const auto summary = testing::last_summary(testing::read_text(dir + "/out/estimation_net.txt"));
    ASSERT_EQ(summary.size(), 2u) << printed;
    const double truth[] = {std::log(16.0 / 93.0), std::log(28.0 * 93.0 / 256.0)};
    for (size_t k = 0; k < 2; ++k) {
        EXPECT_NEAR(summary[k].estimate, truth[k], summary[k].se) << summary[k].label;
        EXPECT_LT(std::fabs(summary[k].t), 0.1) << summary[k].label;
    }
    EXPECT_EQ(summary[0].label, "arc");
    EXPECT_EQ(summary[1].label, "reciprocity");
    EXPECT_NE(testing::read_text(dir + "/out/convergence_net.txt").find("verdict\tconverged\n"),
              std::string::npos);
    // Change statistics and log-odds cover every ordered pair; the update file every effect.
    EXPECT_EQ(lines_of(testing::read_text(dir + "/out/logodds_net.txt")).size(), 1u + 18u * 17u);
    EXPECT_EQ(lines_of(testing::read_text(dir + "/distupdate.vexa")).size(), 2u * 42u);
}

TEST(DigraphRuns, ArcOnlySimulationGivesTheBinomialArcCountAndTheReceiverMoveKeepsOutDegrees) {
    const std::string dir = testing::scratch_directory("digraph_simulation");
    GraphRunFile file;
    file.kind = NetworkKind::digraph;
    file.task = 1;
    file.nodes = 18;
    file.initial_density = 0.2;
    file.effects = {{"arc", {-1.0, 0.0}}};
    file.burn_in = 5000;
    file.iterations = 2000 * 400;
    file.samples = 2000;
    testing::run_vexa(dir, file, 9);
    std::vector<double> arcs;
    for (const std::string& row :
         lines_of(testing::read_text(dir + "/out/sample_statistics_net.txt"))) {
        if (row.rfind("id", 0) != 0) arcs.push_back(std::stod(tab_fields(row)[1]));
    }
    ASSERT_EQ(arcs.size(), 2000u);
    double mean = 0.0, variance = 0.0;
    for (const double a : arcs) mean += a / 2000.0;
    for (const double a : arcs) variance += (a - mean) * (a - mean) / 1999.0;
    const double p = 1.0 / (1.0 + std::exp(1.0)), pairs = 18.0 * 17.0;
    EXPECT_NEAR(mean, pairs * p, 4.0 * std::sqrt(pairs * p * (1 - p) / 2000.0));
    EXPECT_NEAR(variance, pairs * p * (1 - p), 0.15 * pairs * p * (1 - p));

    // The receiver move: every sample has the out-degrees of the start.
    file.sampler_variant = 2;
    file.flags[1] = 1;  // degree distribution
    file.iterations = 20000;
    file.samples = 50;
    testing::run_vexa(dir, file, 10);
    const std::vector<std::string> rows =
        lines_of(testing::read_text(dir + "/out/degree_distribution_net.txt"));
    ASSERT_EQ(rows.size(), 51u);
    const auto out_degrees = [](const std::string& row) {
        const std::vector<std::string> fields = tab_fields(row);
        return std::vector<std::string>(fields.begin() + 21, fields.begin() + 39);  // outd1..outd18
    };
    for (size_t r = 2; r < rows.size(); ++r)
        EXPECT_EQ(out_degrees(rows[r]), out_degrees(rows[1])) << r;
}

TEST(DigraphRuns, ADegenerateMarkovModelIsNeverReportedConvergedAndGoodnessOfFitWritesItsOwnFiles) {
    const std::string dir = testing::scratch_directory("digraph_degenerate");
    GraphRunFile file = samplike(dir);
    file.effects = {{"arc", {0.0, 0.0}},
                    {"reciprocity", {0.0, 0.0}},
                    {"Transitive-Triad", {0.0, 0.0}},
                    {"Cyclic-Triad", {0.0, 0.0}}};
    file.runs = 3;
    testing::run_vexa(dir, file, 4);
    EXPECT_EQ(testing::read_text(dir + "/out/convergence_net.txt").find("verdict\tconverged\n"),
              std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(dir + "/out/logodds_net.txt"));

    // Goodness of fit: the triad census block, an acceptance file, no end statistics.
    const std::string gof_dir = testing::scratch_directory("digraph_gof");
    GraphRunFile gof = samplike(gof_dir);
    gof.task = 3;
    gof.effects = {{"arc", {-1.76, 0.0}}, {"reciprocity", {2.32, 0.0}}};
    gof.burn_in = 1000;
    gof.iterations = 20000;
    gof.samples = 100;
    testing::run_vexa(gof_dir, gof, 5);
    const std::string report = testing::read_text(gof_dir + "/out/gof_net.txt");
    EXPECT_NE(
        report.find("\nGOF on Triad Census\nTriad\tobserved\tmean\tstddev\tt-ratio\n300\t8\t"),
        std::string::npos);
    EXPECT_NE(report.find("Mahalanobis distance ="), std::string::npos);
    EXPECT_EQ(lines_of(testing::read_text(gof_dir + "/out/accept_net.txt")).size(), 102u);
    EXPECT_FALSE(std::filesystem::exists(gof_dir + "/out/end_statistics_net.txt"));
}

}  // namespace
}  // namespace vexa
