#include "entry/start_from.h"

#include <gtest/gtest.h>

#include "base/errors.h"
#include "entry/parameter_sets.h"
#include "entry/run_driver.h"
#include "entry/run_file.h"
#include "model/parameter_vector.h"
#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using namespace vexa::testing;

// An estimation report as the reports are appended: an older run's table, then the last one,
// its rows in another order than the model's, and its covariance.
const char* const report_text =
    "STOCHASTIC ESTIMATION FOR NETWORK net\n"
    "effects\testimates\tstderr\tt-ratio\n"
    "edge\t-9.000000\t1.0\t0.0\t\n"
    "\nEstimated Covariance Matrix\n9\t\n\n"
    "STOCHASTIC ESTIMATION FOR NETWORK net\n"
    "effects\testimates\tstderr\tt-ratio\n"
    "AS(2.00)\t0.250000\t0.5\t0.01\t\n"
    "edge\t-1.500000\t0.3\t0.02\t*\n"
    "\nEstimated Covariance Matrix\n"
    "4.0\t0.5\t\n"
    "0.5\t1.0\t\n\n";

GraphRunFile edge_and_as() {
    GraphRunFile file;
    file.network_file = "net.txt";
    file.effects["edge"] = {0.0, 0.0};
    file.effects["AS"] = {0.0, 2.0};
    return file;
}

RunFile read_in(const std::string& dir, const GraphRunFile& file) {
    file.write(dir);
    WorkingDirectory here(dir);
    return read_run_file("run.txt", nullptr);
}

TEST(StartFrom, EstimatesAreMatchedByLabelAndAMismatchIsRefusedNamingTheEffects) {
    const std::string dir = scratch_directory("start_from");
    write_text(dir + "/estimation_net.txt", report_text);
    RunFile file = read_in(dir, edge_and_as());

    // The last table counts, each estimate to its own effect whatever the order of the rows;
    // the covariance follows the same reordering.
    const ReportEstimates report = read_report_estimates(dir + "/estimation_net.txt");
    const MatchedEstimates matched = match_report(file.model, report, "report", "run.txt");
    EXPECT_EQ(matched.estimates, (std::vector<double>{-1.5, 0.25}));
    EXPECT_EQ(matched.covariance[0][0], 1.0);
    EXPECT_EQ(matched.covariance[1][1], 4.0);
    EXPECT_EQ(matched.covariance[0][1], 0.5);
    EXPECT_EQ(take_estimates(file.model, dir + "/estimation_net.txt", "run.txt"), 2);
    EXPECT_EQ(pack(file.model), (std::vector<double>{-1.5, 0.25}));

    // Another model: both sides of the mismatch in one line. A lambda is part of the label.
    GraphRunFile other = edge_and_as();
    other.effects.erase("AS");
    other.effects["AT"] = {0.0, 3.0};
    RunFile wrong = read_in(dir, other);
    try {
        take_estimates(wrong.model, dir + "/estimation_net.txt", "run.txt");
        ADD_FAILURE() << "a report of another model was taken";
    } catch (const SettingError& e) {
        EXPECT_EQ(std::string(e.what()),
                  "vexa: --start-from '" + dir +
                      "/estimation_net.txt' does not fit run file 'run.txt': it has no estimate "
                      "of AT(3.00); it estimates AS(2.00), which the run file leaves out");
    }

    // Update files: by run-file name from the folder's files; an effect without an entry is named.
    write_text(dir + "/stupdate.vexa", "edge\n-1.25000\nAS\n0.50000\n");
    file = read_in(dir, edge_and_as());
    EXPECT_EQ(take_estimates(file.model, dir + "/stupdate.vexa", "run.txt"), 2);
    EXPECT_EQ(pack(file.model), (std::vector<double>{-1.25, 0.5}));
    EXPECT_THROW(take_estimates(wrong.model, dir + "/stupdate.vexa", "run.txt"), SettingError);
    write_text(dir + "/notes.txt", "no table here\n");
    EXPECT_THROW(take_estimates(file.model, dir + "/notes.txt", "run.txt"), InputFileError);
}

TEST(StartFrom, RunsAndDrawnSetsRefuseAnEstimationOfAnotherModel) {
    const std::string dir = scratch_directory("start_from_runs");
    write_text(dir + "/net.txt", read_text(data_path("flomarriage.txt")));
    edge_and_as().write(dir);
    std::filesystem::create_directories(dir + "/out");
    write_text(dir + "/out/estimation_net.txt", report_text);
    // A stale update file of another model in the same folder is never read by --draw-sets.
    write_text(dir + "/stupdate.vexa", "edge\n5.0\n");
    const WorkingDirectory here(dir);
    RunOptions options;
    options.fixed_seed = true;
    options.seed = 3;

    std::string said = capture([&](FILE* out) {
        options.console = out;
        EXPECT_EQ(draw_parameter_sets_entry("run.txt", 400, "sets.txt", options), 0);
    });
    // 400 draws around (-1.5, 0.25): the means within 4.5 standard errors.
    double means[2] = {0, 0};
    for (const std::string& line : lines_of(read_text("sets.txt"))) {
        const std::vector<std::string> fields = tab_fields(line);
        means[0] += std::stod(fields.at(0)) / 400.0;
        means[1] += std::stod(fields.at(1)) / 400.0;
    }
    EXPECT_NEAR(means[0], -1.5, 4.5 * std::sqrt(1.0 / 400.0));
    EXPECT_NEAR(means[1], 0.25, 4.5 * std::sqrt(4.0 / 400.0));

    // The run file changed after the estimation: the sets and a run from it are refused.
    GraphRunFile changed = edge_and_as();
    changed.effects["Triangle"] = {0.0, 0.0};
    changed.write(dir);
    std::filesystem::remove("sets.txt");
    said = capture([&](FILE* out) {
        options.console = out;
        EXPECT_EQ(draw_parameter_sets_entry("run.txt", 10, "sets.txt", options), 1);
    });
    // The report's path as the platform joins it ('out\estimation_net.txt' on Windows).
    const std::string report = (std::filesystem::path("out") / "estimation_net.txt").string();
    EXPECT_EQ(said, "vexa: the estimation report '" + report +
                        "' does not fit run file 'run.txt': it has no estimate of Triangle\n");
    EXPECT_FALSE(std::filesystem::exists("sets.txt"));
    options.start_from = "out/estimation_net.txt";
    said = capture([&](FILE* out) {
        options.console = out;
        EXPECT_EQ(run_entry("run.txt", options), run_status_failed);
    });
    EXPECT_EQ(lines_of(said).size(), 1u) << said;
    EXPECT_NE(said.find("it has no estimate of Triangle"), std::string::npos);
}

}  // namespace
}  // namespace vexa
