// Goodness of fit over parameter sets (task 4) run from run files through the entry: sets that
// are all one vector reproduce an ordinary goodness of fit at that vector and, for digraphs,
// the closed-form dyad distribution of arc and reciprocity; sets drawn around an estimate
// centre on it; bad sets files end the run with one line.

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "entry/parameter_sets.h"
#include "entry/run_driver.h"
#include "entry/run_file.h"
#include "numeric/matrix.h"
#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::GraphRunFile;
using testing::lines_of;
using testing::read_text;
using testing::report_table;
using testing::tab_fields;

const std::string gof_header = "effects\tobserved\tmean\tstddev\tt-ratio";
const std::string bayes_header = gof_header + "\tp-value";

std::string repeated(const std::string& line, int count) {
    std::string text;
    for (int k = 0; k < count; ++k) text += line + "\n";
    return text;
}

TEST(BayesianGof, EqualSetsAgreeWithOrdinaryGoodnessOfFitAtThatVector) {
    // The example's alternating vector. The ordinary run keeps 500 networks one every 1000
    // steps (8 toggles a dyad apart); the Bayesian run ends 400 chains of 3000 steps each.
    const std::string dir = testing::scratch_directory("bayes_equal_sets");
    GraphRunFile file = testing::on_network(dir, "flomarriage.txt");
    file.effects = {{"edge", {-1.2, 0}}, {"AS", {-0.5, 2}}, {"AT", {0.08, 2}}, {"A2P", {0.25, 2}}};
    file.task = 3;
    file.burn_in = 10000;
    file.iterations = 500000;
    file.samples = 500;
    testing::run_vexa(dir, file, 21);
    const auto ordinary = report_table(read_text(dir + "/out/gof_net.txt"), gof_header);

    testing::write_text(dir + "/sets.txt", repeated("-1.2\t-0.5\t0.08\t0.25", 400));
    file.task = 4;
    file.name = "bayes";
    file.parameter_sets_file = "sets.txt";
    file.burn_in = 3000;
    file.samples = 400;
    testing::run_vexa(dir, file, 22);
    const std::string report = read_text(dir + "/out/gof_bayes.txt");
    const auto bayes = report_table(report, bayes_header);
    EXPECT_NE(report.find("edge\t-1.20000\t0.00000\n"), std::string::npos) << report;
    for (const char* label : {"edge", "AS(2.00)", "AT(2.00)", "A2P(2.00)"}) {
        const std::vector<double>& g = ordinary.at(label);
        const std::vector<double>& b = bayes.at(label);
        ASSERT_EQ(g.size(), 4u);
        ASSERT_EQ(b.size(), 5u);
        EXPECT_EQ(b[0], g[0]) << label;  // the observed value
        const double error = std::sqrt(g[2] * g[2] / 500.0 + b[2] * b[2] / 400.0);
        EXPECT_NEAR(b[1], g[1], 4.5 * error) << label;
        // Standard deviations of 400 and 500 near-independent draws agree within 20%.
        EXPECT_NEAR(b[2] / g[2], 1.0, 0.2) << label;
        EXPECT_TRUE(b[4] >= 0.0 && b[4] <= 1.0) << label;
    }
    EXPECT_EQ(lines_of(read_text(dir + "/out/sample_statistics_bayes.txt")).size(), 401u);
    EXPECT_EQ(lines_of(read_text(dir + "/out/simulation_bayes.txt")).size(), 401u);
}

TEST(BayesianGof, DigraphDrawsAtTheClosedFormEstimateFollowTheDyadDistribution) {
    // At arc = ln(16/93), reciprocity = ln(28 x 93 / 256) the dyads of samplike are independent,
    // mutual, asymmetric (either way) or null with probabilities 28 : 32 : 93 over 153 (the
    // observed shares): arcs 88 with sd sqrt(144 - 88^2/153) = 9.66, mutual dyads 28 with sd
    // sqrt(28 x 125 / 153) = 4.78.
    const std::string dir = testing::scratch_directory("bayes_digraph");
    GraphRunFile file = testing::on_network(dir, "samplike.txt", NetworkKind::digraph, 18);
    file.task = 4;
    const double arc = std::log(16.0 / 93.0), reciprocity = std::log(28.0 * 93.0 / 256.0);
    file.effects = {{"arc", {arc, 0}}, {"reciprocity", {reciprocity, 0}}};
    char line[64];
    std::snprintf(line, sizeof line, "%.9f %.9f", arc, reciprocity);
    testing::write_text(dir + "/sets.txt", repeated(line, 300));
    file.parameter_sets_file = "sets.txt";
    file.burn_in = 20000;
    file.samples = 300;
    testing::run_vexa(dir, file, 8);
    const std::string report = read_text(dir + "/out/gof_net.txt");
    const auto rows = report_table(report, bayes_header);
    ASSERT_EQ(rows.count("arc"), 1u) << report;
    EXPECT_NEAR(rows.at("arc")[1], 88.0, 4.5 * 9.66 / std::sqrt(300.0));
    EXPECT_NEAR(rows.at("recip")[1], 28.0, 4.5 * 4.78 / std::sqrt(300.0));
}

TEST(BayesianGof, BadSetsFilesEndTheRunWithOneLine) {
    const std::string dir = testing::scratch_directory("bayes_bad_sets");
    GraphRunFile file = testing::on_network(dir, "flomarriage.txt");
    file.task = 4;
    file.effects = {{"edge", {-1.6, 0}}, {"AS", {0.1, 2}}};
    file.parameter_sets_file = "sets.txt";
    file.burn_in = 200;
    file.samples = 5;
    const std::string name = "vexa: parameter sets file 'sets.txt'";
    for (const auto& [text, message] : std::vector<std::pair<std::string, std::string>>{
             {"-1.6 0.1\n-1.5\n", name + ", line 2: 1 values, but the model has 2 parameters"},
             {"-1.6 0.1 3\n", name + ", line 1: 3 values, but the model has 2 parameters"},
             {"-1.6\tzero\n", name + ", line 1, value 2: 'zero' is not a finite number"},
             {"", name + " holds no parameter set"}}) {
        testing::write_text(dir + "/sets.txt", text);
        std::filesystem::remove_all(dir + "/out");
        const std::string printed = testing::run_vexa(dir, file, 1);
        EXPECT_EQ(printed, message + "\n");
        // What was written before the sets were read stays.
        EXPECT_TRUE(std::filesystem::exists(dir + "/out/start_statistics_net.txt"));
    }
    std::filesystem::remove(dir + "/sets.txt");
    EXPECT_EQ(testing::run_vexa(dir, file, 1),
              "vexa: cannot open parameter sets file 'sets.txt'\n");

    // Fewer sets than asked for: one line says so, and the two there are are used (a blank line
    // and a Windows line end are no trouble).
    testing::write_text(dir + "/sets.txt", "-1.6\t0.1\r\n\n-1.7   0.2\n");
    const std::string printed = testing::run_vexa(dir, file, 1);
    EXPECT_EQ(lines_of(printed)[0],
              "vexa: parameter sets file 'sets.txt' holds 2 parameter sets where sample_count "
              "asks for 5; all 2 are used");
    EXPECT_NE(read_text(dir + "/out/gof_net.txt").find("Proposed 2 parameter sets.\n"),
              std::string::npos);
    EXPECT_EQ(lines_of(read_text(dir + "/out/sample_statistics_net.txt")).size(), 3u);
}

// The first two steps of the README on the bundled marriage network: estimate the alternating
// model, draw 200 sets around the estimate (what the bundled Bayesian run makes of them is the
// goldens' concern).
TEST(BayesianGof, SetsDrawnAfterAnEstimationCentreOnTheEstimates) {
    const std::string dir = testing::scratch_directory("bayes_workflow");
    for (const char* name : {"flomarriage.txt", "flomarriage_alternating.txt"})
        std::filesystem::copy_file(testing::example_path(name), dir + "/" + name);
    std::filesystem::create_directories(dir + "/out");
    const testing::WorkingDirectory here(dir);
    RunOptions options;
    options.fixed_seed = true;
    options.seed = 7;
    options.console = std::tmpfile();
    ASSERT_EQ(run_entry("flomarriage_alternating.txt", options), 0);
    ASSERT_EQ(draw_parameter_sets_entry("flomarriage_alternating.txt", 200, "flomarriage_sets.txt",
                                        options),
              0);

    // The sets centre on the estimates, within 4.5 standard errors of a mean of 200 draws.
    const RunFile estimation = read_run_file("flomarriage_alternating.txt", options.console);
    const std::vector<double> estimates = read_update_estimates(estimation.model, "");
    const Matrix covariance = read_matrix(estimation.names.covariance, 4);
    std::vector<std::vector<double>> sets;
    for (const std::string& line : lines_of(read_text("flomarriage_sets.txt"))) {
        sets.emplace_back();
        for (const std::string& value : tab_fields(line)) sets.back().push_back(std::stod(value));
    }
    ASSERT_EQ(sets.size(), 200u);
    // Their variances follow the covariance's diagonal: 200 normal draws keep a sample variance
    // within 30% of the truth but for about one chance in 400.
    for (int k = 0; k < 4; ++k) {
        double mean = 0.0, squares = 0.0;
        for (const std::vector<double>& set : sets) {
            mean += set.at(static_cast<size_t>(k)) / 200.0;
            squares += set[static_cast<size_t>(k)] * set[static_cast<size_t>(k)] / 200.0;
        }
        EXPECT_NEAR(mean, estimates[static_cast<size_t>(k)],
                    4.5 * std::sqrt(covariance[k][k] / 200.0))
            << k;
        EXPECT_NEAR((squares - mean * mean) / covariance[k][k], 1.0, 0.3) << k;
    }
    std::fclose(options.console);
}

}  // namespace
}  // namespace vexa
