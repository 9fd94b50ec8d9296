// What an estimation says of itself: the verdict file of a converged fit, confirmed by the
// long chain; and a degenerate Markov model, named as such, with no runaway values left in
// the update files.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

TEST(Convergence, AConvergedFitIsConfirmedByTheLongChain) {
    const std::string dir = testing::scratch_directory("convergence_alternating");
    testing::write_text(dir + "/flomarriage.txt",
                        testing::read_text(testing::data_path("flomarriage.txt")));
    testing::GraphRunFile file;
    file.network_file = "flomarriage.txt";
    file.effects = {
        {"edge", {0.0, 0.0}}, {"AS", {0.0, 2.0}}, {"AT", {0.0, 2.0}}, {"A2P", {0.0, 2.0}}};
    file.runs = 10;
    const std::string printed = testing::run_vexa(dir, file, 5, true);
    const std::string verdicts = testing::read_text(dir + "/out/convergence_net.txt");
    EXPECT_NE(verdicts.find("verdict\tconverged\n"), std::string::npos) << verdicts;
    EXPECT_NE(verdicts.find("check\tconfirmed"), std::string::npos) << verdicts;
    EXPECT_NE(printed.find("the long-chain check at the estimate: confirmed"), std::string::npos)
        << printed;
}

TEST(Convergence, ADegenerateMarkovModelIsNamedAndLeavesNoRunawayValues) {
    // 39 nodes: a dense core of 8 and a periphery of pendant ties. Edge, 2-star, 3-star and
    // triangle parameters put the model's weight on the empty or the complete network.
    const std::string dir = testing::scratch_directory("convergence_degenerate");
    testing::write_text(dir + "/net.txt",
                        testing::read_text(testing::data_path("degenerate39.txt")));
    testing::GraphRunFile file;
    file.nodes = 39;
    file.network_file = "net.txt";
    file.effects = {{"edge", {0.0, 0.0}},
                    {"2-star", {0.0, 0.0}},
                    {"3-star", {0.0, 0.0}},
                    {"Triangle", {0.0, 0.0}}};
    file.runs = 3;
    const std::string printed = testing::run_vexa(dir, file, 2);
    const std::string report = testing::read_text(dir + "/out/estimation_net.txt");
    EXPECT_NE(report.find("Degenerate Model!\n"), std::string::npos);
    EXPECT_NE(printed.find("found the model degenerate"), std::string::npos) << printed;
    EXPECT_NE(printed.find("drop or change"), std::string::npos) << printed;
    EXPECT_NE(testing::read_text(dir + "/out/convergence_net.txt").find("verdict\tdegenerate"),
              std::string::npos);
    const std::vector<std::string> update =
        testing::lines_of(testing::read_text(dir + "/stupdate.vexa"));
    for (size_t k = 1; k < update.size(); k += 2) {
        EXPECT_LT(std::fabs(std::stod(update[k])), 300.0) << update[k - 1];
    }
}

}  // namespace
}  // namespace vexa
