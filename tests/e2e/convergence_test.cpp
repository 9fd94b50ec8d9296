// What an estimation says of itself: the verdict file of a converged fit, confirmed by the
// long chain; and degenerate Markov models, named as such, never reported converged, with no
// runaway values left in the update files.

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

TEST(Convergence, AConvergedFitIsConfirmedByTheLongChain) {
    const std::string dir = testing::scratch_directory("convergence_alternating");
    testing::GraphRunFile file = testing::on_network(dir, "flomarriage.txt");
    file.effects = {{"edge", {0, 0}}, {"AS", {0, 2}}, {"AT", {0, 2}}, {"A2P", {0, 2}}};
    file.runs = 10;
    int status = -1;
    const std::string printed = testing::run_vexa(dir, file, 5, true, &status);
    EXPECT_EQ(status, 0);
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
    testing::GraphRunFile file =
        testing::on_network(dir, "degenerate39.txt", NetworkKind::graph, 39);
    file.effects = {{"edge", {0, 0}}, {"2-star", {0, 0}}, {"3-star", {0, 0}}, {"Triangle", {0, 0}}};
    file.runs = 3;
    int status = 0;
    const std::string printed = testing::run_vexa(dir, file, 2, false, &status);
    EXPECT_EQ(status, 3) << "an estimation without a converged run ends with status 3";
    EXPECT_NE(testing::read_text(dir + "/out/estimation_net.txt").find("Degenerate Model!\n"),
              std::string::npos);
    EXPECT_NE(printed.find("found the model degenerate"), std::string::npos) << printed;
    EXPECT_NE(printed.find("drop or change"), std::string::npos) << printed;
    EXPECT_NE(testing::read_text(dir + "/out/convergence_net.txt").find("verdict\tdegenerate"),
              std::string::npos);
    const std::vector<std::string> update =
        testing::lines_of(testing::read_text(dir + "/stupdate.vexa"));
    for (size_t k = 1; k < update.size(); k += 2)
        EXPECT_LT(std::fabs(std::stod(update[k])), 300.0) << update[k - 1];

    // The digraph's Markov model on samplike is never reported converged, nor its log-odds written.
    const std::string ddir = testing::scratch_directory("convergence_digraph_degenerate");
    file = testing::on_network(ddir, "samplike.txt", NetworkKind::digraph, 18);
    file.effects = {{"arc", {0, 0}},
                    {"reciprocity", {0, 0}},
                    {"Transitive-Triad", {0, 0}},
                    {"Cyclic-Triad", {0, 0}}};
    file.runs = 3;
    testing::run_vexa(ddir, file, 4);
    EXPECT_EQ(testing::read_text(ddir + "/out/convergence_net.txt").find("verdict\tconverged\n"),
              std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(ddir + "/out/logodds_net.txt"));
}

}  // namespace
}  // namespace vexa
