// Simulations run from run files through the entry, checked against the binomial distribution
// of an edge-only (arc-only) model. The exact text of the files is the golden outputs' concern,
// and the receiver move's kept out-degrees the sampler tests'.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::GraphRunFile;
using testing::lines_of;
using testing::read_text;
using testing::tab_fields;

TEST(Simulation, EdgeOnlyModelsDrawBinomialTieCounts) {
    // Every dyad is a tie with probability 1 / (1 + e^1) independently of the others. A sample
    // every 500 (400) proposals: each dyad is proposed about 2.6 (1.3) times in between, and its
    // state keeps a correlation of (-1/e)^k after k proposals.
    const struct {
        NetworkKind kind;
        int nodes;
        const char* effect;
        double pairs, iterations;
        uint32_t seed;
    } cases[] = {{NetworkKind::graph, 20, "edge", 190.0, 1000000, 5},
                 {NetworkKind::digraph, 18, "arc", 18.0 * 17.0, 800000, 9}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.effect);
        const std::string dir = testing::scratch_directory(std::string("binomial_") + c.effect);
        GraphRunFile file;
        file.kind = c.kind;
        file.task = 1;
        file.nodes = c.nodes;
        file.initial_density = 0.2;
        file.effects = {{c.effect, {-1.0, 0.0}}};
        file.burn_in = 5000;
        file.iterations = c.iterations;
        file.samples = 2000;
        testing::run_vexa(dir, file, c.seed);
        const std::vector<std::string> rows =
            lines_of(read_text(dir + "/out/sample_statistics_net.txt"));
        ASSERT_EQ(rows.size(), 2001u);
        double sum = 0.0, squares = 0.0;
        for (size_t r = 1; r < rows.size(); ++r) {
            const std::vector<std::string> f = tab_fields(rows[r]);
            ASSERT_EQ(f.size(), 2u);
            EXPECT_EQ(f[0], std::to_string(r * static_cast<size_t>(c.iterations / 2000)));
            sum += std::stod(f[1]);
            squares += std::stod(f[1]) * std::stod(f[1]);
        }
        const double mean = sum / 2000.0, variance = (squares - 2000.0 * mean * mean) / 1999.0;
        const double p = 1.0 / (1.0 + std::exp(1.0)), expected = c.pairs * p * (1.0 - p);
        EXPECT_NEAR(mean, c.pairs * p, 4.0 * std::sqrt(expected / 2000.0));
        EXPECT_NEAR(variance, expected, 0.15 * expected);
    }
}

}  // namespace
}  // namespace vexa
