// Estimations run from run files through the entry, as a front end runs them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "entry/run_driver.h"
#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::GraphRunFile;
using testing::last_summary;
using testing::lines_of;
using testing::run_vexa;
using testing::SummaryRow;

GraphRunFile flomarriage(const std::string& dir) {
    std::filesystem::copy_file(testing::data_path("flomarriage.txt"), dir + "/flomarriage.txt",
                               std::filesystem::copy_options::overwrite_existing);
    GraphRunFile file;
    file.network_file = "flomarriage.txt";
    return file;
}

TEST(GraphEstimation, EdgeOnlyEstimatesTheLogOddsOfTheDensityAndReportsInTheQuotedFormats) {
    const std::string dir = testing::scratch_directory("estimation_edge");
    GraphRunFile file = flomarriage(dir);
    file.effects = {{"edge", {0.0, 0.0}}};
    file.runs = 3;
    run_vexa(dir, file, 7);
    const std::string report = testing::read_text(dir + "/out/estimation_net.txt");
    const std::vector<SummaryRow> summary = last_summary(report);
    ASSERT_EQ(summary.size(), 1u);
    EXPECT_EQ(summary[0].label, "edge");  // a malformed row would be labelled so
    // 20 ties among 120 dyads: the maximum-likelihood estimate is ln(20/100).
    EXPECT_NEAR(summary[0].estimate, std::log(20.0 / 100.0), summary[0].se);
    EXPECT_LT(std::fabs(summary[0].t), 0.1);
    EXPECT_EQ(summary[0].starred, std::fabs(summary[0].estimate) > 2 * summary[0].se);

    // The report, line by line, for the first run.
    const std::vector<std::string> lines = lines_of(report);
    const std::string number = R"(-?\d+\.\d{6})";
    const std::vector<std::string> head = {
        "STOCHASTIC ESTIMATION FOR NETWORK net",
        "ESTIMATION SETTINGS",
        "Number of sub-phases in estimation \\(phase 2\\) = 5",
        "starting a-value in estimation \\(phase 2\\) = 0\\.100000",
        "Multiplication factor for estimation \\(phase 2\\) = 2",
        "Number of steps in final simulation \\(phase 3\\) = 500",
        "Number of estimation runs = 3",
        "",
        "STOCHASTIC APPROXIMATION RUN 1",
        "",
        "original statistics:20\\.000000\t",
        "starting parameters:-1\\.609438\t",
        "Phase1 started with the following setup:",
        "a = 0\\.100000",
        "num of steps = 10",
        "num of iterations in each step = 71\\.111111",
        "\\*{36}",
        "mean statistics in phase1:" + number + "\t",
        "END PHASE1 parameter:-1\\.609438\t",
        "Phase 2 started"};
    ASSERT_GT(lines.size(), head.size());
    size_t k = 0;
    for (; k < head.size(); ++k) {
        EXPECT_TRUE(std::regex_match(lines[k], std::regex(head[k])))
            << "line " << k + 1 << ": " << lines[k];
    }
    for (int sub = 0; sub < 5; ++sub) {
        const std::string gain[] = {"0\\.100000", "0\\.100000", "0\\.050000", "0\\.025000",
                                    "0\\.012500"};
        const std::vector<std::string> block = {
            "",
            "",
            "Subphase " + std::to_string(sub) + " started with a valued " + gain[sub],
            "",
            "Subphase " + std::to_string(sub) + " has gone up to \\d+ steps",
            "Parameter after Subphase " + std::to_string(sub) + ":[ -]\\d+\\.\\d{5}\t"};
        for (const std::string& expected : block) {
            ASSERT_LT(k, lines.size());
            EXPECT_TRUE(std::regex_match(lines[k], std::regex(expected)))
                << "line " << k + 1 << ": " << lines[k];
            ++k;
        }
    }
    const std::vector<std::string> tail = {
        "END PHASE2 parameter:" + number + "\t",
        "Phase3 started with the following setup:",
        "num of steps = 500",
        "num of iterations in each step = 71\\.111111",
        "\\*{39}",
        "mean statistics in phase3:" + number + "\t",
        "",
        "Estimation Result for Network SUMMARY \\(parameter, standard error, t-statistics\\)",
        "NOTE: t-statistics = \\(observation - sample mean\\)/standard error",
        "effects\testimates\tstderr\tt-ratio",
        "edge\t" + number + "\t-?\\d+\\.\\d{5}\t-?\\d+\\.\\d{5}\t\\*?",
        "",
        "Estimated Covariance Matrix",
        number + "\t",
        "",
        "",
        ""};
    for (const std::string& expected : tail) {
        ASSERT_LT(k, lines.size());
        EXPECT_TRUE(std::regex_match(lines[k], std::regex(expected)))
            << "line " << k + 1 << ": " << lines[k];
        ++k;
    }
    // The runs go on until one converges, and no run starts after it.
    const auto runs = std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
        return line.rfind("STOCHASTIC APPROXIMATION RUN ", 0) == 0;
    });
    EXPECT_EQ(std::count(lines.begin(), lines.end(),
                         "STOCHASTIC APPROXIMATION RUN " + std::to_string(runs)),
              1);

    // The covariance file holds the last matrix, the update file every effect in run-file order.
    EXPECT_TRUE(std::regex_match(testing::read_text(dir + "/out/covariance_net.txt"),
                                 std::regex(number + "\t\n\n")));
    const std::vector<std::string> update = lines_of(testing::read_text(dir + "/stupdate.vexa"));
    const std::vector<std::string> names = {
        "edge",     "2-star",   "3-star",   "4-star",   "5-star",       "Triangle", "4-clique",
        "5-clique", "6-clique", "7-clique", "Isolates", "Triangle2",    "Bow_tie",  "P3",
        "Q10",      "Q20",      "Q30",      "Q31",      "3Path",        "cycle4",   "1ET",
        "2ET",      "0ET",      "ETNT",     "two3star", "one2triangle", "one2et",   "AS",
        "AS2",      "AT",       "AT2",      "A2P",      "AC",           "AET"};
    ASSERT_EQ(update.size(), 2 * names.size());
    for (size_t e = 0; e < names.size(); ++e) {
        EXPECT_EQ(update[2 * e], names[e]);
        if (e > 0) {
            EXPECT_EQ(update[2 * e + 1], "0.00000");
        }
    }
    char estimate[32];
    std::snprintf(estimate, sizeof estimate, "%.5f", summary[0].estimate);
    EXPECT_EQ(update[1], estimate);
    for (const char* empty :
         {"biupdate.vexa", "contupdate.vexa", "catupdate.vexa", "covupdate.vexa"}) {
        EXPECT_TRUE(std::filesystem::exists(dir + "/" + empty));
        EXPECT_EQ(testing::read_text(dir + "/" + empty), "");
    }
    // A converged estimation describes every pair of nodes under the estimates.
    EXPECT_EQ(lines_of(testing::read_text(dir + "/out/logodds_net.txt")).size(), 1u + 120u);
    EXPECT_EQ(lines_of(testing::read_text(dir + "/out/change_statistics_net.txt")).size(),
              1u + 120u);
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
        last_summary(testing::read_text(dir + "/out/estimation_net.txt"));
    ASSERT_EQ(summary.size(), 3u);
    const double known[] = {-1.57, -0.027, 0.19};
    const double known_se[] = {0.88, 0.22, 0.77};
    for (size_t k = 0; k < 3; ++k) {
        EXPECT_LT(std::fabs(summary[k].t), 0.1) << summary[k].label;
        EXPECT_NEAR(summary[k].estimate, known[k], 0.5 * known_se[k]) << summary[k].label;
        EXPECT_NEAR(summary[k].se, known_se[k], 0.35 * known_se[k]) << summary[k].label;
    }
}

TEST(GraphEstimation, DegenerateAndImpossibleRunsEndCleanly) {
    // An empty network: no step can be taken, the draws never vary and the model is degenerate.
    const std::string dir = testing::scratch_directory("estimation_degenerate");
    std::string matrix;
    for (int r = 0; r < 8; ++r) matrix += "0 0 0 0 0 0 0 0\n";
    testing::write_text(dir + "/empty.txt", matrix);
    GraphRunFile file;
    file.nodes = 8;
    file.network_file = "empty.txt";
    file.effects = {{"edge", {0.0, 0.0}}, {"2-star", {0.0, 0.0}}};
    file.runs = 2;
    const std::string console = run_vexa(dir, file, 1);
    const std::string report = testing::read_text(dir + "/out/estimation_net.txt");
    EXPECT_EQ(std::count(report.begin(), report.end(), '!'), 2) << "two runs, both degenerate";
    EXPECT_NE(report.find("Degenerate Model!\n"), std::string::npos);
    EXPECT_EQ(report.find("Estimation Result"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(dir + "/out/covariance_net.txt"));
    EXPECT_FALSE(std::filesystem::exists(dir + "/out/logodds_net.txt"));
    EXPECT_TRUE(std::filesystem::exists(dir + "/stupdate.vexa"));
    EXPECT_NE(console.find("degenerate"), std::string::npos);

    // A missing network file: one line naming it, nothing but the names formed.
    file.network_file = "missing.txt";
    const std::string missing = run_vexa(dir, file, 1);
    EXPECT_EQ(missing, "vexa: cannot open network file 'missing.txt'\n");
    // A missing output directory: the first report cannot be written.
    file.network_file = "empty.txt";
    file.directory = "no/such/directory";
    std::filesystem::remove_all(dir + "/no");
    const testing::WorkingDirectory here(dir);
    const std::string path = file.write(dir);
    RunOptions options;
    int status = 0;
    const std::string printed = testing::capture([&](FILE* console_file) {
        options.console = console_file;
        status = run_entry(path.c_str(), options);
    });
    EXPECT_EQ(status, 1);
    EXPECT_EQ(printed,
              "vexa: cannot write output file 'no/such/directory/start_statistics_net.txt'\n");
}

}  // namespace
}  // namespace vexa
