// Tasks drawn from several chains: the files depend on the seed and the number of chains, never
// on the threads that ran them; the chains draw from the model (the closed form of a model of
// independent dyads) on streams of their own; phase 3 pools its chains' draws.

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::GraphRunFile;
using testing::lines_of;
using testing::read_text;
using testing::report_table;
using testing::tab_fields;

// Every file under `dir`, by its path below it, with the run's console as "console".
std::map<std::string, std::string> files_of(const std::string& dir, const std::string& console) {
    std::map<std::string, std::string> files{{"console", console}};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(dir)) {
        if (entry.is_regular_file())
            files[std::filesystem::relative(entry.path(), dir).string()] =
                read_text(entry.path().string());
    }
    return files;
}

RunOptions chain_options(uint32_t seed, int32_t chains, int32_t threads) {
    RunOptions options;
    options.fixed_seed = true;
    options.seed = seed;
    options.chains = chains;
    options.threads = threads;
    return options;
}

// The run file of `task` on a small network of `kind`, with per-sample files on.
GraphRunFile small_run(const std::string& dir, NetworkKind kind, int task) {
    GraphRunFile file = kind == NetworkKind::graph
                            ? testing::on_network(dir, "flomarriage.txt")
                            : testing::on_network(dir, "samplike.txt", NetworkKind::digraph, 18);
    if (kind == NetworkKind::graph) {
        file.effects = {{"edge", {-1.6, 0}}, {"AS", {0.0, 2}}, {"AT", {0.1, 2}}};
    } else {
        file.effects = {{"arc", {-1.7, 0}}, {"reciprocity", {1.5, 0}}, {"AT-T", {0.1, 2}}};
    }
    // Small, as it runs 18 times (and under the sanitizers, with every step recounted).
    file.task = task;
    file.subphases = 3;
    file.phase3 = 100;
    file.burn_in = 1000;
    file.iterations = 12500;
    file.samples = task == 4 ? 14 : 25;
    for (const int flag : {0, 1, 2, 3}) file.flags[flag] = 1;  // Pajek, degree, geodesic, cluster
    if (task == 4) {
        const std::string set = kind == NetworkKind::graph ? "-1.6\t0.05\t0.1\n-1.5\t0\t0.12\n"
                                                           : "-1.7\t1.5\t0.1\n-1.6\t1.4\t0.12\n";
        std::string sets;
        for (int k = 0; k < 7; ++k) sets += set;
        testing::write_text(dir + "/sets.txt", sets);
        file.parameter_sets_file = "sets.txt";
    }
    return file;
}

TEST(Chains, ThreadCountsNeverChangeAFile) {
    for (const NetworkKind kind : {NetworkKind::graph, NetworkKind::digraph}) {
        for (const int task : {2, 3, 4}) {
            std::map<std::string, std::string> first;
            for (const int threads : {1, 2, 4}) {
                const std::string dir = testing::scratch_directory(
                    "chains_" + std::to_string(static_cast<int>(kind)) + "_" +
                    std::to_string(task) + "_" + std::to_string(threads));
                const GraphRunFile file = small_run(dir, kind, task);
                int status = -1;
                // Three chains: the samples do not divide evenly among them.
                const std::string console =
                    testing::run_vexa_with(dir, file, chain_options(5, 3, threads), &status);
                ASSERT_NE(status, 1) << console;
                const auto files = files_of(dir, console);
                if (threads == 1) {
                    first = files;
                    EXPECT_GE(files.size(), task == 2 ? 6u : 8u);
                    continue;
                }
                ASSERT_EQ(files.size(), first.size()) << "task " << task;
                for (const auto& [name, text] : first)
                    EXPECT_EQ(files.at(name), text)
                        << name << ", task " << task << ", " << threads << " threads";
            }
        }
    }
}

TEST(Chains, SamplesFromSeveralChainsFollowAModelOfIndependentDyads) {
    // Edge alone at -1 on 16 nodes: the tie count is binomial, 120 dyads at
    // p = 1 / (1 + e), mean 32.27 and standard deviation 4.857.
    const std::string dir = testing::scratch_directory("chains_binomial");
    GraphRunFile file = testing::on_network(dir, "flomarriage.txt");
    file.effects = {{"edge", {-1.0, 0}}};
    file.task = 3;
    file.burn_in = 1000;
    file.iterations = 800 * 300;
    file.samples = 800;
    testing::run_vexa_with(dir, file, chain_options(9, 4, 2));
    const auto table = report_table(read_text(dir + "/out/gof_net.txt"),
                                    "effects\tobserved\tmean\tstddev\tt-ratio");
    const double p = 1.0 / (1.0 + std::exp(1.0));
    const double sd = std::sqrt(120.0 * p * (1.0 - p));
    EXPECT_NEAR(table.at("edge")[1], 120.0 * p, 4.0 * sd / std::sqrt(400.0));
    EXPECT_NEAR(table.at("edge")[2] / sd, 1.0, 0.15);

    // Each round of four samples comes from four chains: on streams of their own they rarely
    // agree all four.
    const std::vector<std::string> rows =
        lines_of(read_text(dir + "/out/sample_statistics_net.txt"));
    ASSERT_EQ(rows.size(), 801u);
    int all_equal = 0;
    for (size_t s = 1; s + 3 < rows.size(); s += 4) {
        const std::string edges = tab_fields(rows[s]).back();
        bool same = true;
        for (size_t k = 1; k < 4; ++k) same = same && tab_fields(rows[s + k]).back() == edges;
        all_equal += same ? 1 : 0;
    }
    EXPECT_LT(all_equal, 20);
}

TEST(Chains, PhaseThreePoolsItsChainsAndFindsTheClosedFormEstimate) {
    // Edge alone: the estimate is the log-odds of the density, 20 ties of 120 dyads.
    const std::string dir = testing::scratch_directory("chains_estimation");
    GraphRunFile file = testing::on_network(dir, "flomarriage.txt");
    file.effects = {{"edge", {0.0, 0}}};
    file.task = 2;
    file.phase3 = 1000;
    testing::run_vexa_with(dir, file, chain_options(3, 4, 2));
    const std::string convergence = read_text(dir + "/out/convergence_net.txt");
    EXPECT_NE(convergence.find("phase-3 chains\t4,"), std::string::npos) << convergence;
    const auto summary = testing::last_summary(read_text(dir + "/out/estimation_net.txt"));
    ASSERT_EQ(summary.size(), 1u);
    EXPECT_NEAR(summary[0].estimate, std::log(20.0 / 100.0), 0.1);
    // The standard error of a binomial log-odds: 1 / sqrt(n p (1 - p)).
    EXPECT_NEAR(summary[0].se, 1.0 / std::sqrt(120.0 * (1.0 / 6.0) * (5.0 / 6.0)), 0.03);
}

}  // namespace
}  // namespace vexa
