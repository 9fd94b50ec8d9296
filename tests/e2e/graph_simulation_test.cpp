// Simulation and goodness of fit run from run files through the entry, checked against the
// binomial distribution of an edge-only model. The exact text of the files is the writer
// tests' and the golden outputs' concern.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::GraphRunFile;
using testing::lines_of;
using testing::read_text;
using testing::run_vexa;

TEST(GraphSimulation, EdgeOnlyModelsDrawBinomialEdgeCounts) {
    // Every dyad is a tie with probability 1 / (1 + e^1) independently of the others.
    const std::string dir = testing::scratch_directory("simulation_edge");
    GraphRunFile file;
    file.task = 1;
    file.nodes = 20;
    file.initial_density = 0.2;
    file.effects = {{"edge", {-1.0, 0.0}}};
    file.burn_in = 5000;
    // One sample per 500 proposals: each dyad is proposed about 2.6 times in between, and a
    // dyad's state keeps a correlation of (-1/e)^k after k proposals, about 3% over the gap.
    file.iterations = 1000000;
    file.samples = 2000;
    run_vexa(dir, file, 5);
    const std::vector<std::string> rows =
        lines_of(read_text(dir + "/out/sample_statistics_net.txt"));
    ASSERT_EQ(rows.size(), 2001u);
    double sum = 0.0, squares = 0.0;
    for (size_t r = 1; r < rows.size(); ++r) {
        const std::vector<std::string> f = testing::tab_fields(rows[r]);
        ASSERT_EQ(f.size(), 2u);
        EXPECT_EQ(f[0], std::to_string(r * 500));
        const double edges = std::stod(f[1]);
        sum += edges;
        squares += edges * edges;
    }
    const double n = 2000.0;
    const double mean = sum / n;
    const double variance = (squares - n * mean * mean) / (n - 1.0);
    const double p = 1.0 / (1.0 + std::exp(1.0));
    const double expected_variance = 190.0 * p * (1.0 - p);
    EXPECT_NEAR(mean, 190.0 * p, 4.0 * std::sqrt(expected_variance / n));
    EXPECT_NEAR(variance, expected_variance, 0.15 * expected_variance);

    // Goodness of fit at the log-odds of the marriage network's density (20 of 120 dyads): the
    // sampled edge counts centre on the observed 20, so its t-ratio is near 0 (500 samples).
    std::filesystem::copy_file(testing::data_path("flomarriage.txt"), dir + "/flomarriage.txt");
    file = GraphRunFile{};
    file.task = 3;
    file.network_file = "flomarriage.txt";
    file.effects = {{"edge", {std::log(20.0 / 100.0), 0.0}}, {"AS", {0.0, 2.0}}};
    file.burn_in = 1000;
    file.iterations = 200000;
    file.samples = 500;
    run_vexa(dir, file, 9);
    const std::string report = read_text(dir + "/out/gof_net.txt");
    double observed = 0.0, sample_mean = 0.0, sd = 0.0, t = 1.0;
    const size_t row = report.find("t-ratio\nedge\t");
    ASSERT_NE(row, std::string::npos) << report;
    ASSERT_EQ(std::sscanf(report.c_str() + row, "t-ratio\nedge\t%lf\t%lf\t%lf\t%lf", &observed,
                          &sample_mean, &sd, &t),
              4);
    EXPECT_EQ(observed, 20.0);
    EXPECT_NEAR(sd, std::sqrt(120.0 * (1.0 / 6.0) * (5.0 / 6.0)), 0.5);
    EXPECT_LT(std::fabs(t), 0.3);
}

}  // namespace
}  // namespace vexa
