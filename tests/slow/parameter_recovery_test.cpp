// Parameter recovery: networks simulated from known parameters are estimated back, and the
// known values should lie within about two standard errors in most replications. Long:
// run with `ctest -L slow`.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "effects/digraph/digraph_catalogue.h"
#include "effects/graph/graph_catalogue.h"
#include "model/terms.h"
#include "report/network_file.h"
#include "sampler/runs.h"
#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

struct Truth {
    const char* name;
    double value;
    double lambda;
    int row;  // in the catalogue of the network kind
};

// Draws one network of n nodes from the model by a long chain from a random start.
template <class Store>
Store simulate(int n, const std::vector<Truth>& truth, uint32_t seed) {
    Model model = empty_model(Store::kind);
    std::vector<double> parameters;
    for (const Truth& t : truth) {
        EffectSetting& setting = model.structural[static_cast<size_t>(t.row)];
        setting.slot = model.structural_included++;
        setting.lambda = static_cast<float>(t.lambda);
        parameters.push_back(t.value);
    }
    const std::vector<Term<Store>> terms = make_terms<Store>(model);
    const int p = static_cast<int>(parameters.size());
    Rng rng;
    SeedSource seeds{true, seed, 0};
    Store network;
    if constexpr (Store::kind == NetworkKind::graph) {
        network = random_graph(n, n, rng, seeds);
    } else {
        network = random_digraph_by_count(n, n, rng, seeds);
    }
    Chain<Store> chain = make_chain(network, terms, p, SamplerSettings{}, rng);
    run_sampler(chain, parameters.data(), 400.0 * n * n, seeds);
    return network;
}

// Estimates each replication with the multiplication factor the verdict asks for on networks of
// this size, checks every converged estimate with a long chain, and counts, per parameter, how
// often the truth lies within two standard errors of the estimate.
template <class Store>
void recover(const char* tag, int n, const std::vector<Truth>& truth, int replications,
             int factor) {
    const std::string dir = testing::scratch_directory(std::string("recovery_").append(tag));
    std::vector<int> covered(truth.size(), 0);
    int converged = 0;
    int confirmed = 0;
    for (int r = 0; r < replications; ++r) {
        const Store g = simulate<Store>(n, truth, static_cast<uint32_t>(1000 + r));
        write_network_file(dir + "/net.txt", g);
        testing::GraphRunFile file;
        file.kind = Store::kind;
        file.nodes = n;
        file.network_file = "net.txt";
        file.name = std::string("r").append(std::to_string(r));
        for (const Truth& t : truth) file.effects[t.name] = {0.0, t.lambda};
        file.runs = 5;
        file.factor = factor;
        testing::run_vexa(dir, file, static_cast<uint32_t>(r + 1), true);
        const std::string out = std::string(dir).append("/out/");
        const std::string verdicts = testing::read_text(out + "convergence_" + file.name + ".txt");
        const auto summary =
            testing::last_summary(testing::read_text(out + "estimation_" + file.name + ".txt"));
        const bool is_converged = verdicts.find("check\t") != std::string::npos;
        const bool is_confirmed = verdicts.find("check\tconfirmed") != std::string::npos;
        converged += is_converged ? 1 : 0;
        confirmed += is_confirmed ? 1 : 0;
        if (summary.size() != truth.size()) continue;  // degenerate: no summary
        for (size_t k = 0; k < truth.size(); ++k) {
            if (std::fabs(summary[k].estimate - truth[k].value) <= 2.0 * summary[k].se)
                ++covered[k];
        }
        std::printf("%s %2d (%lld ties)%s:", tag, r, static_cast<long long>(tie_count(g)),
                    is_confirmed   ? " confirmed"
                    : is_converged ? " NOT CONFIRMED"
                                   : " not converged");
        for (const auto& row : summary)
            std::printf("  %s %.3f (%.3f)", row.label.c_str(), row.estimate, row.se);
        std::printf("\n");
    }
    std::printf("%s: %d of %d converged, %d of those confirmed by the long chain; covered:", tag,
                converged, replications, confirmed);
    for (size_t k = 0; k < truth.size(); ++k) std::printf(" %s %d", truth[k].name, covered[k]);
    std::printf("\n");
    EXPECT_GE(converged, replications * 3 / 4);
    // At least 17 claims of 20 hold. These fits run in the plain mode: phase 3's 500 draws
    // (some 150 effective) give a t-ratio a Monte Carlo spread of about 0.08, so a claim of
    // |t| < 0.1 can hide a true |t| beyond the 0.14 the long chain tolerates, and where a
    // model lies near a second mode of its distribution (the alternating model here, in about
    // 1 replication of 12) phase 3 can stay in the observed network's mode while the long
    // chain finds the other. The automatic mode's 1,000 effective draws are the cure; its
    // claims are held to 95 in 100 (automatic_test.cpp).
    EXPECT_GE(confirmed, converged * 85 / 100);
    for (size_t k = 0; k < truth.size(); ++k) {
        EXPECT_GE(covered[k], replications * 7 / 10) << truth[k].name;
    }
}

TEST(ParameterRecovery, MarkovModel) {
    recover<Graph>("markov", 30,
                   {{"edge", -0.5, 0.0, int(GraphEffect::edge)},
                    {"2-star", -0.15, 0.0, int(GraphEffect::star2)},
                    {"Triangle", 0.5, 0.0, int(GraphEffect::triangle)}},
                   40, 6);
}

TEST(ParameterRecovery, AlternatingModel) {
    recover<Graph>("alternating", 40,
                   {{"edge", -2.0, 0.0, int(GraphEffect::edge)},
                    {"AS", -0.3, 2.0, int(GraphEffect::as)},
                    {"AT", 0.8, 2.0, int(GraphEffect::at)},
                    {"A2P", -0.1, 2.0, int(GraphEffect::a2p)}},
                   60, 8);
}

TEST(ParameterRecovery, DigraphModel) {
    using E = DigraphEffect;
    recover<Digraph>("digraph", 30,
                     {{"arc", -1.8, 0.0, int(E::arc)},
                      {"reciprocity", 1.5, 0.0, int(E::reciprocity)},
                      {"AT-T", 0.4, 2.0, int(E::at_t)}},
                     20, 6);
}

}  // namespace
}  // namespace vexa
