// Network files of runs: a large network file is read with its progress told to the console
// and the host.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "numeric/rng.h"
#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::GraphRunFile;

TEST(LargeNetworkFiles, ReadingTellsTheConsoleAndTheHost) {
    const std::string dir = testing::scratch_directory("large_network_file");
    const int n = 200000;
    Rng rng;
    rng.seed(3);
    std::string text = "*Vertices 200000\n*Edges\n";
    for (int k = 0; k < 800000; ++k)
        text += std::to_string(rng.node(n) + 1) + " " + std::to_string(rng.node(n) + 1) + "\n";
    ASSERT_GT(static_cast<double>(text.size()), 8.0 * 1048576.0);
    testing::write_text(dir + "/big.net", text);
    GraphRunFile file;
    file.task = 2;
    file.nodes = n;
    file.network_file = "big.net";
    file.degree_cap = 1;  // refused once the network is read
    file.effects = {{"edge", {-1.0, 0}}};
    std::vector<Stage> stages;
    double read = 0.0, size = 0.0;
    Observer host;
    host.stage_started = [&](const StageStarted& e) { stages.push_back(e.stage); };
    host.steps_done = [&](const StepsDone& e) {
        if (e.stage == Stage::reading) read = e.done, size = e.total;
    };
    RunOptions options;
    options.observer = &host;
    const std::string console = testing::run_vexa_with(dir, file, options);
    const std::vector<std::string> lines = testing::lines_of(console);
    ASSERT_GE(lines.size(), 3u);
    char megabytes[32];
    std::snprintf(megabytes, sizeof megabytes, "%.0f",
                  static_cast<double>(text.size()) / 1048576.0);
    EXPECT_EQ(lines[0], "vexa: reading network file 'big.net' (" + std::string(megabytes) + " MB)");
    EXPECT_EQ(lines[1].rfind("vexa: network file 'big.net' read: ", 0), 0u) << lines[1];
    EXPECT_NE(lines[2].find("(degree_cap)"), std::string::npos) << lines[2];
    // The sparse store counts the pairs of the network it read.
    EXPECT_EQ(stages, (std::vector<Stage>{Stage::reading, Stage::counting}));
    EXPECT_EQ(read, static_cast<double>(text.size()));
    EXPECT_EQ(size, static_cast<double>(text.size()));
}

}  // namespace
}  // namespace vexa
