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
using testing::read_text;
using testing::run_vexa;

TEST(Estimation, DyadIndependentModelsReachTheirClosedForms) {
    // The marriage network: 20 ties among 120 dyads, so edge = ln(20/100). Samplike: 28 mutual,
    // 32 asymmetric and 93 null dyads, so arc = ln(16/93), reciprocity = ln(28 x 93 / 16^2).
    const struct {
        const char* network;
        NetworkKind kind;
        int nodes, factor, runs;
        uint32_t seed;
        std::vector<std::string> effects;
        std::vector<double> truth;
    } cases[] = {
        {"flomarriage.txt", NetworkKind::graph, 16, 2, 3, 7, {"edge"}, {std::log(0.2)}},
        {"samplike.txt",
         NetworkKind::digraph,
         18,
         6,
         5,
         3,
         {"arc", "reciprocity"},
         {std::log(16.0 / 93.0), std::log(28.0 * 93.0 / 256.0)}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.network);
        const std::string dir = testing::scratch_directory(std::string("closed_") + c.network);
        GraphRunFile file = testing::on_network(dir, c.network, c.kind, c.nodes);
        for (const std::string& effect : c.effects) file.effects[effect] = {0.0, 0.0};
        file.factor = c.factor;
        file.runs = c.runs;
        file.gof_after = c.kind == NetworkKind::graph;
        int status = 1;
        run_vexa(dir, file, c.seed, false, &status);
        EXPECT_EQ(status, 0);
        const auto summary = testing::last_summary(read_text(dir + "/out/estimation_net.txt"));
        ASSERT_EQ(summary.size(), c.truth.size());
        for (size_t k = 0; k < summary.size(); ++k) {
            EXPECT_EQ(summary[k].label, c.effects[k]);  // a malformed row would be labelled so
            EXPECT_NEAR(summary[k].estimate, c.truth[k], summary[k].se);
            EXPECT_LT(std::fabs(summary[k].t), 0.1);
        }
        EXPECT_NE(read_text(dir + "/out/convergence_net.txt").find("verdict\tconverged\n"),
                  std::string::npos);
        if (c.kind == NetworkKind::digraph) continue;
        // Goodness of fit after estimation samples at the estimation's spacing: K = n^2 d (1 - d)
        // m = 256 (1/6)(5/6) 2 = 71.1, taken whole as 72, so 1,000 samples at 72, 144, ...,
        // 72,000 after a burn-in of 7,200; at the estimate the observed edge count is the mean.
        const std::string gof = read_text(dir + "/out/gof_net.txt");
        EXPECT_NE(gof.find("Proposed 72000 graphs.\nSamples were picked up at 1 per 72 graphs.\n"
                           "Goodness of fit after estimation: 1000 samples, one every 72 steps "
                           "(the estimation's steps per draw), after a burn-in of 7200 steps.\n"),
                  std::string::npos)
            << gof;
        const auto rows = testing::lines_of(read_text(dir + "/out/sample_statistics_net.txt"));
        ASSERT_EQ(rows.size(), 1001u);
        EXPECT_EQ(testing::tab_fields(rows[1]).at(0), "72");
        EXPECT_EQ(testing::tab_fields(rows[1000]).at(0), "72000");
        const auto edge = testing::report_table(gof, "effects\tobserved\tmean\tstddev\tt-ratio");
        ASSERT_EQ(edge.count("edge"), 1u) << gof;
        EXPECT_EQ(edge.at("edge")[0], 20.0);
        EXPECT_LT(std::fabs(edge.at("edge")[3]), 0.3);
    }
}

TEST(Estimation, MarkovModelAgreesWithTheKnownMaximumLikelihoodEstimates) {
    // Edge, 2-star and Triangle on the marriage network: about -1.57, -0.027 and 0.19, with
    // standard errors about 0.88, 0.22 and 0.77.
    const std::string dir = testing::scratch_directory("estimation_markov");
    GraphRunFile file = testing::on_network(dir, "flomarriage.txt");
    file.effects = {{"edge", {0.0, 0.0}}, {"2-star", {0.0, 0.0}}, {"Triangle", {0.0, 0.0}}};
    file.runs = 6;
    run_vexa(dir, file, 3);
    const auto summary = testing::last_summary(read_text(dir + "/out/estimation_net.txt"));
    ASSERT_EQ(summary.size(), 3u);
    const double known[] = {-1.57, -0.027, 0.19}, known_se[] = {0.88, 0.22, 0.77};
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
    EXPECT_NE(run_vexa(dir, file, 1).find("degenerate"), std::string::npos);
    const std::string report = read_text(dir + "/out/estimation_net.txt");
    EXPECT_EQ(std::count(report.begin(), report.end(), '!'), 2) << "two runs, both degenerate";
    EXPECT_EQ(report.find("Estimation Result"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(dir + "/out/covariance_net.txt"));
    EXPECT_FALSE(std::filesystem::exists(dir + "/out/logodds_net.txt"));
    EXPECT_TRUE(std::filesystem::exists(dir + "/stupdate.vexa"));

    file.network_file = "missing.txt";
    EXPECT_EQ(run_vexa(dir, file, 1), "vexa: cannot open network file 'missing.txt'\n");

    // A refusal after the network was read keeps the files written before it.
    std::filesystem::remove_all(dir + "/out");
    file = testing::on_network(dir, "flomarriage.txt");
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

    // A missing output directory: the first report cannot be written (run_vexa would make it).
    file.directory = "no/such/directory";
    const testing::WorkingDirectory here(dir);
    const std::string path = file.write(dir);
    int status = 0;
    const std::string printed = testing::capture([&](FILE* console) {
        RunOptions options;
        options.console = console;
        status = run_entry(path.c_str(), options);
    });
    EXPECT_EQ(status, 1);
    EXPECT_EQ(printed, std::string("vexa: cannot write output file 'no/such/directory") +
                           path_separator + "start_statistics_net.txt'\n");
}

}  // namespace
}  // namespace vexa
