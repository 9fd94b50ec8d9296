// The two estimation methods on one network of 1,000 nodes: stochastic approximation and
// equilibrium expectation estimate the same maximum likelihood estimate, so where both
// converge their estimates differ by Monte Carlo error alone, well within a standard error.
// Long: run with `ctest -L slow`.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "effects/graph/graph_catalogue.h"
#include "model/terms.h"
#include "report/network_file.h"
#include "sampler/runs.h"
#include "support/kinds.h"
#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

// A network of 1,000 nodes and mean degree near 10 from edge + AS + AT + A2P (lambda 2): a
// random start and 20 million tie/no-tie proposals, some 40 times the chain's autocorrelation
// time at this size.
Graph simulated_network() {
    const std::vector<Term<Graph>> terms = make_terms<Graph>(
        testing::model_of(NetworkKind::graph, {int(GraphEffect::edge), int(GraphEffect::as),
                                               int(GraphEffect::at), int(GraphEffect::a2p)}));
    const std::vector<double> theta{std::log(10.0 / 989.0) + 1.6, 0.1, 0.1, -0.1};
    Rng rng;
    SeedSource seeds{true, 5, 0};
    Graph network = random_graph(1000, 5000, rng, seeds);
    SamplerSettings sampler;
    sampler.proposal = Proposal::tie_no_tie;
    Chain<Graph> chain = make_chain(network, terms, 4, sampler, rng);
    run_steps(chain, theta.data(), 2e7);
    return network;
}

std::vector<testing::SummaryRow> estimate_by(const std::string& dir, EstimationMethod method) {
    testing::GraphRunFile file;
    file.nodes = 1000;
    file.network_file = "net.txt";
    file.effects = {{"edge", {0, 0}}, {"AS", {0, 2}}, {"AT", {0, 2}}, {"A2P", {0, 2}}};
    file.runs = 3;
    RunOptions options;
    options.fixed_seed = true;
    options.seed = 3;
    options.automatic = true;
    options.method = method;
    int status = -1;
    const auto start = std::chrono::steady_clock::now();
    const std::string printed = testing::run_vexa_with(dir, file, options, &status);
    EXPECT_EQ(status, 0) << printed;
    std::printf("%s: %.1f s\n",
                method == EstimationMethod::equilibrium_expectation ? "equilibrium expectation"
                                                                    : "stochastic approximation",
                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    return testing::last_summary(testing::read_text(dir + "/out/estimation_net.txt"));
}

TEST(EstimationMethods, AgreeWithinAStandardErrorOnAThousandNodes) {
    const std::string dir = testing::scratch_directory("methods_agree");
    write_network_file(dir + "/net.txt", simulated_network());
    const auto approximation = estimate_by(dir, EstimationMethod::stochastic_approximation);
    const auto equilibrium = estimate_by(dir, EstimationMethod::equilibrium_expectation);
    ASSERT_EQ(approximation.size(), 4u);
    ASSERT_EQ(equilibrium.size(), 4u);
    for (size_t k = 0; k < 4; ++k) {
        const double se = std::max(approximation[k].se, equilibrium[k].se);
        EXPECT_LT(std::fabs(approximation[k].estimate - equilibrium[k].estimate), se)
            << approximation[k].label << ": " << approximation[k].estimate << " against "
            << equilibrium[k].estimate << ", se " << se;
        std::printf("%s: approximation %.4f (%.4f), equilibrium %.4f (%.4f)\n",
                    approximation[k].label.c_str(), approximation[k].estimate, approximation[k].se,
                    equilibrium[k].estimate, equilibrium[k].se);
    }
}

}  // namespace
}  // namespace vexa
