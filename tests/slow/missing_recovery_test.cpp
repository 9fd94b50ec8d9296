// Recovery with missing dyads: networks simulated from a known alternating model, a share of
// their dyads removed at random, are estimated back. The 95 % intervals should cover the truth
// about 95 times in 100, and removing dyads should move an estimate by less than its standard
// error on average. Long: run with `ctest -L slow`; VEXA_RECOVERY_REPLICATIONS=100 for the full
// measure.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "effects/graph/graph_catalogue.h"
#include "support/run_files.h"
#include "support/simulated_network.h"
#include "support/test_support.h"

namespace vexa {
namespace {

const std::vector<testing::TrueEffect> truth{{"edge", -2.5, 0.0, int(GraphEffect::edge)},
                                             {"AT", 0.6, 2.0, int(GraphEffect::at)},
                                             {"A2P", -0.1, 2.0, int(GraphEffect::a2p)}};
constexpr int nodes = 50;

// The network's matrix with each pair removed ("NA" in both cells) with probability `share`.
std::string matrix_text(const Graph& g, double share, Rng& rng) {
    const int n = g.node_count;
    std::vector<std::string> cells(static_cast<size_t>(n * n), "0");
    for (int i = 0; i < n; ++i) {
        for (int j = i + 1; j < n; ++j) {
            const bool missing = rng.acceptance_uniform() < share;
            const char* cell = missing ? "NA" : has_edge(g, i, j) ? "1" : "0";
            cells[static_cast<size_t>(i * n + j)] = cells[static_cast<size_t>(j * n + i)] = cell;
        }
    }
    std::string text;
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) text += cells[static_cast<size_t>(i * n + j)] + " ";
        text += "\n";
    }
    return text;
}

std::vector<testing::SummaryRow> fit(const std::string& dir, const std::string& matrix,
                                     uint32_t seed) {
    testing::write_text(dir + "/net.txt", matrix);
    testing::GraphRunFile file;
    file.nodes = nodes;
    file.network_file = "net.txt";
    for (const testing::TrueEffect& t : truth) file.effects[t.name] = {0.0, t.lambda};
    file.runs = 3;
    testing::run_vexa(dir, file, seed, false, nullptr, true);
    return testing::last_summary(testing::read_text(dir + "/out/estimation_net.txt"));
}

TEST(MissingTiesRecovery, IntervalsCoverTheTruthAndEstimatesStayNearTheFullData) {
    const char* text = std::getenv("VEXA_RECOVERY_REPLICATIONS");
    const int replications = text != nullptr && std::atoi(text) > 0 ? std::atoi(text) : 12;
    const std::string dir = testing::scratch_directory("missing_recovery");
    for (const double share : {0.1, 0.3}) {
        std::vector<int> covered(truth.size(), 0);
        std::vector<double> moved(truth.size(), 0.0);  // (missing - full) / se, summed
        int fitted = 0;
        Rng rng;
        rng.seed(static_cast<uint32_t>(share * 100));
        for (int r = 0; r < replications; ++r) {
            const Graph g =
                testing::simulate_network<Graph>(nodes, truth, static_cast<uint32_t>(2000 + r));
            const auto full = fit(dir, matrix_text(g, 0.0, rng), static_cast<uint32_t>(r + 1));
            const auto thinned = fit(dir, matrix_text(g, share, rng), static_cast<uint32_t>(r + 1));
            if (full.size() != truth.size() || thinned.size() != truth.size()) continue;
            ++fitted;
            std::printf("%.0f %% missing, %2d:", 100 * share, r);
            for (size_t k = 0; k < truth.size(); ++k) {
                const double se = thinned[k].se;
                covered[k] += std::fabs(thinned[k].estimate - truth[k].value) <= 1.96 * se;
                moved[k] += (thinned[k].estimate - full[k].estimate) / se;
                std::printf("  %s %.3f (%.3f; full %.3f)", truth[k].name, thinned[k].estimate, se,
                            full[k].estimate);
            }
            std::printf("\n");
        }
        EXPECT_GE(fitted, replications - 1);
        // The lower binomial limit (three standard deviations) of a 95 % rate.
        const double spread = 3.0 * std::sqrt(0.95 * 0.05 * replications);
        std::printf("%.0f %% missing: %d fitted; covered", 100 * share, fitted);
        for (size_t k = 0; k < truth.size(); ++k) {
            std::printf(" %s %d, moved %.2f se;", truth[k].name, covered[k], moved[k] / fitted);
            EXPECT_GE(covered[k], 0.95 * replications - spread) << share << " " << truth[k].name;
            EXPECT_LT(std::fabs(moved[k] / fitted), 1.0) << share << " " << truth[k].name;
        }
        std::printf("\n");
    }
}

}  // namespace
}  // namespace vexa
