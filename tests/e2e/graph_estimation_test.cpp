// Estimations run from run files through the entry, as a front end runs them, checked against
// what is known of the answer; and runs that cannot go on, which end with one clear line. The
// exact text of every report is the writer tests' and the golden outputs' concern.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "entry/run_driver.h"
#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::GraphRunFile;
using testing::last_summary;
using testing::read_text;
using testing::run_vexa;
using testing::SummaryRow;

GraphRunFile flomarriage(const std::string& dir) {
    std::filesystem::copy_file(testing::data_path("flomarriage.txt"), dir + "/flomarriage.txt",
                               std::filesystem::copy_options::overwrite_existing);
    GraphRunFile file;
    file.network_file = "flomarriage.txt";
    return file;
}

TEST(GraphEstimation, EdgeOnlyEstimateIsTheLogOddsOfTheDensity) {
    // 20 ties among 120 dyads: the maximum-likelihood estimate is ln(20/100).
    const std::string dir = testing::scratch_directory("estimation_edge");
    GraphRunFile file = flomarriage(dir);
    file.effects = {{"edge", {0.0, 0.0}}};
    file.runs = 3;
    run_vexa(dir, file, 7);
    const std::vector<SummaryRow> summary =
        last_summary(read_text(dir + "/out/estimation_net.txt"));
    ASSERT_EQ(summary.size(), 1u);
    EXPECT_EQ(summary[0].label, "edge");  // a malformed row would be labelled so
    EXPECT_NEAR(summary[0].estimate, std::log(20.0 / 100.0), summary[0].se);
    EXPECT_LT(std::fabs(summary[0].t), 0.1);
}

TEST(GraphEstimation, GoodnessOfFitAfterEstimationSamplesAtTheEstimationsSpacing) {
    // The edge-only model converges at once. K = n^2 d (1 - d) m = 256 (1/6)(5/6) 2 = 71.1,
    // taken whole as 72: 1,000 samples at 72, 144, ..., 72,000 after a burn-in of 7,200.
    const std::string dir = testing::scratch_directory("estimation_gof_after");
    GraphRunFile file = flomarriage(dir);
    file.effects = {{"edge", {0.0, 0.0}}};
    file.runs = 3;
    file.gof_after = 1;
    int status = 1;
    run_vexa(dir, file, 7, false, &status);
    EXPECT_EQ(status, 0);
    const std::string gof = read_text(dir + "/out/gof_net.txt");
    EXPECT_NE(gof.find("Proposed 72000 graphs.\nSamples were picked up at 1 per 72 graphs.\n"
                       "Goodness of fit after estimation: 1000 samples, one every 72 steps (the "
                       "estimation's steps per draw), after a burn-in of 7200 steps.\n"),
              std::string::npos)
        << gof;
    const std::vector<std::string> rows =
        testing::lines_of(read_text(dir + "/out/sample_statistics_net.txt"));
    ASSERT_EQ(rows.size(), 1001u);
    EXPECT_EQ(testing::tab_fields(rows[1]).at(0), "72");
    EXPECT_EQ(testing::tab_fields(rows[1000]).at(0), "72000");
    // At the maximum-likelihood estimate the observed edge count is the sample's mean: its
    // t-ratio is small.
    const std::vector<std::string> lines = testing::lines_of(gof);
    const auto edge = std::find_if(lines.begin(), lines.end(), [](const std::string& l) {
        return l.rfind("edge\t20\t", 0) == 0;
    });
    ASSERT_NE(edge, lines.end()) << gof;
    EXPECT_LT(std::fabs(std::stod(testing::tab_fields(*edge).at(4))), 0.3) << *edge;
}

TEST(GraphEstimation, MarkovModelAgreesWithTheKnownMaximumLikelihoodEstimates) {
    // Edge, 2-star and Triangle on the marriage network: about -1.57, -0.027 and 0.19, with
    // standard errors about 0.88, 0.22 and 0.77.
    const std::string dir = testing::scratch_directory("estimation_markov");
    GraphRunFile file = flomarriage(dir);
    file.effects = {{"edge", {0.0, 0.0}}, {"2-star", {0.0, 0.0}}, {"Triangle", {0.0, 0.0}}};
    file.runs = 6;
    run_vexa(dir, file, 3);
    const std::vector<SummaryRow> summary =
        last_summary(read_text(dir + "/out/estimation_net.txt"));
    ASSERT_EQ(summary.size(), 3u);
    const double known[] = {-1.57, -0.027, 0.19};
    const double known_se[] = {0.88, 0.22, 0.77};
    for (size_t k = 0; k < 3; ++k) {
        EXPECT_LT(std::fabs(summary[k].t), 0.1) << summary[k].label;
        EXPECT_NEAR(summary[k].estimate, known[k], 0.5 * known_se[k]) << summary[k].label;
        EXPECT_NEAR(summary[k].se, known_se[k], 0.35 * known_se[k]) << summary[k].label;
    }
}

TEST(GraphRuns, DegenerateAndImpossibleRunsEndCleanlyAndKeepWhatTheyWrote) {
    // An empty network: no step can be taken, the draws never vary and the model is degenerate.
    const std::string dir = testing::scratch_directory("runs_ending_early");
    std::string matrix;
    for (int r = 0; r < 8; ++r) matrix += "0 0 0 0 0 0 0 0\n";
    testing::write_text(dir + "/empty.txt", matrix);
    GraphRunFile file;
    file.nodes = 8;
    file.network_file = "empty.txt";
    file.effects = {{"edge", {0.0, 0.0}}, {"2-star", {0.0, 0.0}}};
    file.runs = 2;
    const std::string console = run_vexa(dir, file, 1);
    const std::string report = read_text(dir + "/out/estimation_net.txt");
    EXPECT_EQ(std::count(report.begin(), report.end(), '!'), 2) << "two runs, both degenerate";
    EXPECT_EQ(report.find("Estimation Result"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(dir + "/out/covariance_net.txt"));
    EXPECT_FALSE(std::filesystem::exists(dir + "/out/logodds_net.txt"));
    EXPECT_TRUE(std::filesystem::exists(dir + "/stupdate.vexa"));
    EXPECT_NE(console.find("degenerate"), std::string::npos);

    // A missing network file: one line naming it.
    file.network_file = "missing.txt";
    EXPECT_EQ(run_vexa(dir, file, 1), "vexa: cannot open network file 'missing.txt'\n");

    // A refusal after the network was read keeps the files written before it.
    std::filesystem::remove_all(dir + "/out");
    file = flomarriage(dir);
    file.task = 3;
    file.effects = {{"edge", {-1.6, 0.0}}};
    file.iterations = 10;
    file.samples = 10;
    file.sampler_variant = 1;
    file.constraint_file = "none.txt";
    std::string zeros;
    for (int k = 0; k < 256; ++k) zeros += "0 ";
    testing::write_text(dir + "/none.txt", zeros);
    EXPECT_EQ(run_vexa(dir, file, 1),
              "vexa: the constraint network has no ties, so no dyad may change\n");
    EXPECT_EQ(read_text(dir + "/out/start_statistics_net.txt"),
              "\n***This graph contains:****\nedge\t20\n");
    file.constraint_file.clear();

    // A missing output directory: the first report cannot be written.
    file.directory = "no/such/directory";
    const testing::WorkingDirectory here(dir);
    const std::string path = file.write(dir);
    int status = 0;
    const std::string printed = testing::capture([&](FILE* console_file) {
        RunOptions options;
        options.console = console_file;
        status = run_entry(path.c_str(), options);
    });
    EXPECT_EQ(status, 1);
    EXPECT_EQ(printed, std::string("vexa: cannot write output file 'no/such/directory") +
                           path_separator + "start_statistics_net.txt'\n");
}

}  // namespace
}  // namespace vexa
