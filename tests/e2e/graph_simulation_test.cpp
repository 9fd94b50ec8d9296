// Simulation and goodness of fit run from run files through the entry.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "entry/run_driver.h"
#include "simulation/goodness_of_fit.h"
#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::GraphRunFile;

using testing::lines_of;
using testing::run_vexa;
using testing::tab_fields;

TEST(GraphSimulation, EdgeOnlyModelGivesTheBinomialEdgeCount) {
    // Every dyad is a tie with probability 1 / (1 + e^1) independently of the others.
    const std::string dir = testing::scratch_directory("simulation_edge");
    GraphRunFile file;
    file.task = 1;
    file.nodes = 20;
    file.initial_density = 0.2;
    file.effects = {{"edge", {-1.0, 0.0}}};
    file.burn_in = 5000;
    file.iterations = 2000000;
    file.samples = 2000;  // one sample per 1000 proposals, about five toggles per dyad
    run_vexa(dir, file, 5);
    const std::vector<std::string> rows =
        lines_of(testing::read_text(dir + "/out/sample_statistics_net.txt"));
    ASSERT_EQ(rows.size(), 2001u);
    EXPECT_EQ(rows[0], "id\tedge\t");
    double sum = 0.0, squares = 0.0;
    for (size_t r = 1; r < rows.size(); ++r) {
        const std::vector<std::string> f = tab_fields(rows[r]);
        ASSERT_EQ(f.size(), 2u);
        EXPECT_EQ(f[0], std::to_string(r * 1000));
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
}

TEST(GraphSimulation, ReportAcceptAndSampleFilesFollowTheirFormats) {
    const std::string dir = testing::scratch_directory("simulation_formats");
    GraphRunFile file;
    file.task = 1;
    file.nodes = 12;
    file.initial_density = 0.3;
    file.effects = {{"edge", {-1.0, 0.0}},
                    {"3-star", {0.01, 0.0}},
                    {"AS", {0.2, 2.5}},
                    {"3Path", {-0.01, 0.0}}};
    file.flags[0] = 1;  // networks with their Pajek form
    file.flags[1] = 1;  // degree distribution
    file.flags[2] = 1;  // geodesics
    file.flags[3] = 1;  // clustering and giant component
    file.iterations = 300;
    file.samples = 3;
    const std::string console = run_vexa(dir, file, 2);
    EXPECT_TRUE(
        std::regex_match(console, std::regex("100\t200\t300\t\nAccepted \\d+ changes\\.\n")));
    const std::string report = testing::read_text(dir + "/out/simulation_net.txt");
    EXPECT_TRUE(
        std::regex_match(report, std::regex("Simulation started for graph with 12 vertices\n"
                                            "Parameter Values:\n"
                                            "edge\t-1\\.00000\n"
                                            "3-star\t0\\.01000\n"
                                            "3Path\t-0\\.01000\n"
                                            "AS\\(2\\.50\\)\t0\\.20000\n"
                                            "Proposed 300 graphs\\.\n"
                                            "Samples are picked up at 1 per 100 graphs\\.\n"
                                            "Accepted \\d+ proposed graphs\\.")))
        << report;
    const std::vector<std::string> sample =
        lines_of(testing::read_text(dir + "/out/sample_statistics_net.txt"));
    ASSERT_EQ(sample.size(), 4u);
    EXPECT_EQ(sample[0], "id\tedge\tstar3\tpath3\tas\t");
    EXPECT_TRUE(std::regex_match(sample[1], std::regex("100\t\\d+\t\\d+\t\\d+\t\\d+\\.\\d\\d\t")));
    const std::vector<std::string> accept =
        lines_of(testing::read_text(dir + "/out/accept_net.txt"));
    ASSERT_EQ(accept.size(), 5u);
    EXPECT_EQ(accept[0], "Acceptance Rate (non-Digraph)");
    EXPECT_TRUE(std::regex_match(accept[1], std::regex("     100\t  [01]\\.\\d{4}")));
    EXPECT_TRUE(std::regex_match(accept[4], std::regex("Accepted \\d+ proposed graphs\\.")));
    const std::vector<std::string> degrees =
        lines_of(testing::read_text(dir + "/out/degree_distribution_net.txt"));
    ASSERT_EQ(degrees.size(), 4u);
    EXPECT_EQ(tab_fields(degrees[0]).size(), 15u);
    EXPECT_EQ(lines_of(testing::read_text(dir + "/out/geodesic_quartiles_net.txt")).size(), 4u);
    EXPECT_EQ(lines_of(testing::read_text(dir + "/out/cluster_giant_net.txt"))[0],
              "mlocal\tglobal\tgiant");
    EXPECT_TRUE(std::filesystem::exists(dir + "/out/sample_statistics_net200.txt"));
    const std::string pajek = testing::read_text(dir + "/out/pajek_net.paj");
    EXPECT_EQ(std::count(pajek.begin(), pajek.end(), '*'), 9);  // three blocks of three keywords
    // The SPSS syntax loads the simulation file and names every statistic.
    const std::string spss = testing::read_text(dir + "/out/sim_net.sps");
    EXPECT_NE(spss.find("/FILE = 'out/simulation_net.txt'\n"), std::string::npos);
    EXPECT_NE(spss.find("id F5.0\nedge F8.0\nstar3 F8.0\npath3 F8.0\nas F8.4\nCACHE.\n"),
              std::string::npos);
    EXPECT_NE(spss.find("GRAPH\n/SCATTERPLOT(BIVAR)=id WITH as\n/MISSING=LISTWISE.\n"),
              std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(dir + "/out/end_statistics_net.txt"));
}

TEST(GraphGoodnessOfFit, FittedModelReproducesTheObservedNetwork) {
    const std::string dir = testing::scratch_directory("gof_edge");
    std::filesystem::copy_file(testing::data_path("flomarriage.txt"), dir + "/flomarriage.txt");
    GraphRunFile file;
    file.task = 3;
    file.network_file = "flomarriage.txt";
    file.effects = {{"edge", {std::log(20.0 / 100.0), 0.0}}, {"AS", {0.0, 2.0}}};
    file.burn_in = 1000;
    file.iterations = 200000;
    file.samples = 500;
    run_vexa(dir, file, 9);
    const std::vector<std::string> lines = lines_of(testing::read_text(dir + "/out/gof_net.txt"));
    const std::vector<std::string> head = {"",
                                           "",
                                           " GOODNESS OF FIT",
                                           "",
                                           "Parameter Values:",
                                           "edge\t-1.60944",
                                           "AS(2.00)\t0.00000",
                                           "Proposed 200000 graphs.",
                                           "Samples were picked up at 1 per 400 graphs."};
    ASSERT_GT(lines.size(), head.size() + 30);
    for (size_t k = 0; k < head.size(); ++k) EXPECT_EQ(lines[k], head[k]);
    size_t k = head.size();
    EXPECT_TRUE(std::regex_match(lines[k++], std::regex("Accepted \\d+ proposed graphs\\.")));
    EXPECT_EQ(lines[k++],
              "obeservation, sample mean (standard error), t-statistic for observed network");
    EXPECT_EQ(lines[k++], "t-statistics = (observation - sample mean)/standard deviation");
    EXPECT_EQ(lines[k++], "");
    EXPECT_EQ(lines[k++], "effects\tobserved\tmean\tstddev\tt-ratio");
    const std::string three = R"(-?\d+\.\d{3})";
    std::smatch m;
    ASSERT_TRUE(std::regex_match(
        lines[k++], m, std::regex("edge\t20\t(" + three + ")\t" + three + "\t(" + three + ")")));
    EXPECT_LT(std::fabs(std::stod(m[2])), 0.3)
        << "the fitted edge parameter reproduces the edge count";
    EXPECT_TRUE(std::regex_match(lines[k++], std::regex("AS\\(2\\.00\\)\t33\\.562\t" + three +
                                                        "\t" + three + "\t" + three)));
    for (const char* label : {"Std Dev degree dist", "Skew degree dist", "Global Clustering",
                              "Mean Local Clustering", "Variance Local Clustering"}) {
        EXPECT_TRUE(
            std::regex_match(lines[k++], std::regex(std::string(label) + "\t" + three + "\t" +
                                                    three + "\t" + three + "\t" + three)))
            << lines[k - 1];
    }
    EXPECT_EQ(lines[k++], "");
    EXPECT_TRUE(std::regex_match(lines[k++], std::regex("ACCEPTANCE RATE: 0\\.\\d{4}")));
    EXPECT_EQ(lines[k++], "");
    EXPECT_EQ(lines[k++], "SAMPLE GEODESIC DISTRIBUTION");
    EXPECT_EQ(lines[k++], "Note: geodesic = shortest path between two nodes.");
    EXPECT_EQ(lines[k++], "The geodesic distribution is not based on semi-paths.");
    EXPECT_EQ(lines[k++], "");
    const char* blocks[][3] = {{"FIRST", "G25", "Observed first quartile geodesic"},
                               {"SECOND", "G50", "Observed median geodesic"},
                               {"THIRD", "G75", "Observed first quartile geodesic"}};
    for (const auto& block : blocks) {
        EXPECT_EQ(lines[k++], std::string(block[0]) + " QUARTILES");
        EXPECT_TRUE(std::regex_match(
            lines[k++], std::regex(std::string("Median of sample ") + block[1] + "s: \\d+")));
        EXPECT_TRUE(std::regex_match(lines[k++], std::regex("Interquartile range: \\d+")));
        EXPECT_TRUE(std::regex_match(lines[k++], std::regex(std::string(block[2]) + ": \\d+")));
        EXPECT_TRUE(std::regex_match(
            lines[k++],
            std::regex(std::string("in model samples, \\d+\\.\\d\\d% of graphs have lower ") +
                       block[1] + "\\.")));
        EXPECT_TRUE(std::regex_match(
            lines[k++],
            std::regex(std::string("in model samples, \\d+\\.\\d\\d% of graphs have higher ") +
                       block[1] + "\\.")));
        EXPECT_EQ(lines[k++], "");
    }
    ASSERT_TRUE(std::regex_match(lines[k++], std::regex("Mahalanobis distance =\\d+\\.\\d{6}")));
    ASSERT_TRUE(std::regex_match(lines[k++], m,
                                 std::regex("(\\d+)% simulated samples have smaller Mahalanobis "
                                            "distances than the observed network")));
    const int percent = std::stoi(m[1]);
    EXPECT_GT(percent, 0);
    EXPECT_LT(percent, 100);
    EXPECT_EQ(k, lines.size());
    // The simulation file holds the samples: id, the statistics and the distance.
    const std::vector<std::string> table =
        lines_of(testing::read_text(dir + "/out/simulation_net.txt"));
    ASSERT_EQ(table.size(), 501u);
    EXPECT_EQ(table[0], "id\tedge\tas\tmahalanobis");
    EXPECT_TRUE(std::regex_match(table[1],
                                 std::regex("400\t\\d+\\.000000\t\\d+\\.\\d{6}\t\\d+\\.\\d{6}\t")));
}

TEST(GraphGoodnessOfFit, SampleQuantilesStayInsideTheSample) {
    // floor(q (N + 1)) reads past the end for one or three samples; it is kept inside.
    EXPECT_EQ(quantile_index(0.75, 1), 0);
    EXPECT_EQ(quantile_index(0.5, 1), 0);
    EXPECT_EQ(quantile_index(0.75, 3), 2);
    EXPECT_EQ(quantile_index(0.25, 3), 1);
    EXPECT_EQ(quantile_index(0.5, 10), 5);
    // Settings that keep no sample at all are refused before any sampling.
    const std::string dir = testing::scratch_directory("gof_no_sample");
    std::filesystem::copy_file(testing::data_path("flomarriage.txt"), dir + "/flomarriage.txt");
    GraphRunFile file;
    file.task = 3;
    file.network_file = "flomarriage.txt";
    file.effects = {{"edge", {-1.6, 0.0}}};
    file.iterations = 10;
    file.samples = 20;
    EXPECT_EQ(run_vexa(dir, file, 1),
              "vexa: goodness of fit keeps no sample: 10 proposals at 1 sample per 0 proposals "
              "(iterations must be at least sample_count)\n");
}

}  // namespace
}  // namespace vexa
