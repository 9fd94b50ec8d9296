// Network files of runs: a simulation's final network saved as a tie list reads back as the
// network whose statistics the run reported, the same bytes from either store and any number
// of chains; a large network file is read with its progress told to the console and the host.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "network/digraph.h"
#include "network/graph.h"
#include "network/sparse_digraph.h"
#include "network/sparse_graph.h"
#include "numeric/rng.h"
#include "report/tie_list_output.h"
#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::GraphRunFile;
using testing::read_text;

// The end statistic of the first effect (edge or arc: the final network's ties).
double end_ties(const std::string& dir) {
    for (const std::string& line :
         testing::lines_of(read_text(dir + "/out/end_statistics_net.txt"))) {
        const std::vector<std::string> fields = testing::tab_fields(line);
        if (fields.size() == 2 && (fields[0] == "edge" || fields[0] == "arc"))
            return std::stod(fields[1]);
    }
    return -1.0;
}

// The saved network read back by both stores of its kind, checked against each other and
// against the run's end statistic; its tie list written again is the saved file itself.
template <class Dense, class Sparse, class Read, class ReadSparse>
void expect_reads_back(const std::string& dir, const std::string& saved, int n, Read&& read,
                       ReadSparse&& read_sparse) {
    const Dense dense = read(saved, n);
    const Sparse sparse = read_sparse(saved, n);
    EXPECT_EQ(check_bookkeeping(sparse), "");
    EXPECT_EQ(static_cast<double>(tie_count(dense)), end_ties(dir));
    EXPECT_EQ(tie_count(sparse), tie_count(dense));
    write_tie_list_file(dir + "/dense.net", dense);
    EXPECT_EQ(read_text(dir + "/dense.net"), read_text(saved));
    write_tie_list_file(dir + "/sparse.net", sparse);
    EXPECT_EQ(read_text(dir + "/sparse.net"), read_text(saved));
}

TEST(SavedNetworks, ASimulationsFinalNetworkReadsBackFromEitherStore) {
    for (const NetworkKind kind : {NetworkKind::graph, NetworkKind::digraph}) {
        const bool directed = kind == NetworkKind::digraph;
        GraphRunFile file;
        file.kind = kind;
        file.task = 1;
        file.nodes = 40;
        file.initial_density = 0.1;
        file.effects = directed
                           ? decltype(file.effects){{"arc", {-1.5, 0}}, {"reciprocity", {1.0, 0}}}
                           : decltype(file.effects){{"edge", {-1.5, 0}}, {"AT", {0.3, 2}}};
        file.burn_in = 2000;
        file.iterations = 22000;
        file.samples = 11;  // the last drawn by chain 1 of 3
        std::string first;
        for (const StoreChoice store : {StoreChoice::dense, StoreChoice::sparse}) {
            for (const int chains : {1, 3}) {
                SCOPED_TRACE(std::to_string(static_cast<int>(kind)) + " store " +
                             std::to_string(static_cast<int>(store)) + " chains " +
                             std::to_string(chains));
                const std::string dir = testing::scratch_directory("saved_network");
                RunOptions options;
                options.fixed_seed = true;
                options.seed = 17;
                options.store = store;
                options.chains = chains;
                options.save_network = dir + "/final.net";
                const std::string console = testing::run_vexa_with(dir, file, options);
                EXPECT_NE(console.find("is saved in '" + options.save_network + "'"),
                          std::string::npos)
                    << console;
                const std::string saved = read_text(options.save_network);
                ASSERT_EQ(
                    saved.rfind(directed ? "*Vertices 40\n*Arcs\n" : "*Vertices 40\n*Edges\n", 0),
                    0u);
                if (directed) {
                    expect_reads_back<Digraph, SparseDigraph>(
                        dir, options.save_network, 40,
                        [](const std::string& p, int n) { return read_digraph(p, n); },
                        [](const std::string& p, int n) { return read_sparse_digraph(p, n); });
                } else {
                    expect_reads_back<Graph, SparseGraph>(
                        dir, options.save_network, 40,
                        [](const std::string& p, int n) { return read_graph(p, n); },
                        [](const std::string& p, int n) { return read_sparse_graph(p, n); });
                }
                // Both stores draw the same chains from the same seed.
                if (chains == 1 && store == StoreChoice::dense) first = saved;
                if (chains == 1 && store == StoreChoice::sparse) {
                    EXPECT_EQ(saved, first);
                }
            }
        }
    }
}

TEST(SavedNetworks, OtherTasksSayTheySaveNone) {
    const std::string dir = testing::scratch_directory("saved_network_gof");
    GraphRunFile file = testing::on_network(dir, "flomarriage.txt");
    file.task = 3;
    file.iterations = 1000;
    file.degree_cap = 1;  // refused once the network is read: the run ends there
    file.effects = {{"edge", {-1.0, 0}}};
    RunOptions options;
    options.save_network = dir + "/final.net";
    int status = 0;
    const std::string console = testing::run_vexa_with(dir, file, options, &status);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(console.substr(0, console.find('\n') + 1),
              "vexa: only a simulation saves its final network; this goodness of fit saves "
              "none\n");
}

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
    std::filesystem::remove_all(dir);  // megabytes
}

}  // namespace
}  // namespace vexa
