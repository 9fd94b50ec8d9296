// Parameter recovery: networks simulated from known parameters are estimated back, and the
// known values should lie within about two standard errors in most replications. Long:
// run with `ctest -L slow`.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "effects/digraph/digraph_catalogue.h"
#include "effects/graph/graph_catalogue.h"
#include "model/terms.h"
#include "report/network_file.h"
#include "sampler/runs.h"
#include "support/run_files.h"
#include "support/simulated_network.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using Truth = testing::TrueEffect;

// Estimates each replication with the multiplication factor the verdict asks for on networks of
// this size, checks every converged estimate with a long chain, and counts, per parameter, how
// often the truth lies within two standard errors of the estimate.
// Replications of a model: `VEXA_RECOVERY_REPLICATIONS` when set (100 for the full measure of
// coverage), else the count given.
int replications_or(int count) {
    const char* text = std::getenv("VEXA_RECOVERY_REPLICATIONS");
    const int asked = text != nullptr ? std::atoi(text) : 0;
    return asked > 0 ? asked : count;
}

struct Recovery {
    int converged = 0;
    int confirmed = 0;
    int degenerate_runs = 0;
    std::vector<int> covered;  // per parameter, at the given multiple of the standard error
};

template <class Store>
Recovery recover(const char* tag, int n, const std::vector<Truth>& truth, int replications,
                 int factor, double interval = 2.0, bool confirm = true) {
    const std::string dir = testing::scratch_directory(std::string("recovery_").append(tag));
    Recovery result;
    std::vector<int>& covered = result.covered;
    covered.assign(truth.size(), 0);
    int& converged = result.converged;
    int& confirmed = result.confirmed;
    for (int r = 0; r < replications; ++r) {
        const Store g = testing::simulate_network<Store>(n, truth, static_cast<uint32_t>(1000 + r));
        write_network_file(dir + "/net.txt", g);
        testing::GraphRunFile file;
        file.kind = Store::kind;
        file.nodes = n;
        file.network_file = "net.txt";
        file.name = std::string("r").append(std::to_string(r));
        for (const Truth& t : truth) file.effects[t.name] = {0.0, t.lambda};
        file.runs = 5;
        file.factor = factor;
        testing::run_vexa(dir, file, static_cast<uint32_t>(r + 1), confirm);
        const std::string out = std::string(dir).append("/out/");
        const std::string verdicts = testing::read_text(out + "convergence_" + file.name + ".txt");
        const auto summary =
            testing::last_summary(testing::read_text(out + "estimation_" + file.name + ".txt"));
        const bool is_converged = verdicts.find("verdict\tconverged\n") != std::string::npos;
        const bool is_confirmed = verdicts.find("check\tconfirmed") != std::string::npos;
        converged += is_converged ? 1 : 0;
        confirmed += is_confirmed ? 1 : 0;
        for (size_t at = verdicts.find("verdict\tdegenerate"); at != std::string::npos;
             at = verdicts.find("verdict\tdegenerate", at + 1))
            ++result.degenerate_runs;
        if (summary.size() != truth.size()) continue;  // degenerate: no summary
        for (size_t k = 0; k < truth.size(); ++k) {
            if (std::fabs(summary[k].estimate - truth[k].value) <= interval * summary[k].se)
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
    std::printf(
        "%s: %d of %d converged, %d of those confirmed by the long chain, %d runs "
        "degenerate; covered:",
        tag, converged, replications, confirmed, result.degenerate_runs);
    for (size_t k = 0; k < truth.size(); ++k) std::printf(" %s %d", truth[k].name, covered[k]);
    std::printf("\n");
    return result;
}

// The graph models at the multiplication factor the verdict asks for: three in four converge,
// at least 17 claims of 20 hold, and two standard errors cover the truth in most replications.
// These fits run in the plain mode: phase 3's 500 draws (some 150 effective) give a t-ratio a
// Monte Carlo spread of about 0.08, so a claim of |t| < 0.1 can hide a true |t| beyond the 0.14
// the long chain tolerates, and where a model lies near a second mode of its distribution (the
// alternating model here, in about 1 replication of 12) phase 3 can stay in the observed
// network's mode while the long chain finds the other. The automatic mode's 1,000 effective
// draws are the cure; its claims are held to 95 in 100 (automatic_test.cpp).
// A model the networks were drawn from is a good model, and a run that stops on the way from a
// far start is not a verdict on it: no run may call it degenerate, but for `degenerate_allowed`.
void expect_recovered(const Recovery& r, const std::vector<Truth>& truth, int replications,
                      int degenerate_allowed = 0) {
    EXPECT_LE(r.degenerate_runs, degenerate_allowed);
    EXPECT_GE(r.converged, replications * 3 / 4);
    EXPECT_GE(r.confirmed, r.converged * 85 / 100);
    for (size_t k = 0; k < truth.size(); ++k)
        EXPECT_GE(r.covered[k], replications * 7 / 10) << truth[k].name;
}

TEST(ParameterRecovery, MarkovModel) {
    const std::vector<Truth> truth{{"edge", -0.5, 0.0, int(GraphEffect::edge)},
                                   {"2-star", -0.15, 0.0, int(GraphEffect::star2)},
                                   {"Triangle", 0.5, 0.0, int(GraphEffect::triangle)}};
    expect_recovered(recover<Graph>("markov", 30, truth, 40, 6), truth, 40);
}

TEST(ParameterRecovery, AlternatingModel) {
    const std::vector<Truth> truth{{"edge", -2.0, 0.0, int(GraphEffect::edge)},
                                   {"AS", -0.3, 2.0, int(GraphEffect::as)},
                                   {"AT", 0.8, 2.0, int(GraphEffect::at)},
                                   {"A2P", -0.1, 2.0, int(GraphEffect::a2p)}};
    // 40 replications here (VEXA_RECOVERY_REPLICATIONS for more). One network of the first 60
    // (seed 1058, 47 ties) has its estimate where the model is bistable: phase 2 settles at
    // parameters under which the chain, left alone in phase 3, moves to a second mode near 78
    // ties and stays; two runs in a row find this, and the second names the model degenerate
    // on that network. The generating model itself never visits that mode (60 chains of 200
    // draws stay between 27 and 95 ties).
    const int replications = replications_or(40);
    expect_recovered(recover<Graph>("alternating", 40, truth, replications, 8), truth, replications,
                     replications > 58 ? 1 : 0);
}

// Digraphs of 50 nodes (about 350 arcs) in the plain mode at factor 10: at least 9 fits in 10
// converge, and the 95 % intervals (1.96 standard errors) cover the truth about 95 times in
// 100. The bound below is that rate's lower binomial limit (three standard deviations) at the
// replications run: 10 here, VEXA_RECOVERY_REPLICATIONS=100 for the full measure.
TEST(ParameterRecovery, DigraphModel) {
    using E = DigraphEffect;
    const std::vector<Truth> truth{{"arc", -2.5, 0.0, int(E::arc)},
                                   {"reciprocity", 1.5, 0.0, int(E::reciprocity)},
                                   {"AT-T", 0.2, 2.0, int(E::at_t)}};
    const int replications = replications_or(10);
    const Recovery r = recover<Digraph>("digraph", 50, truth, replications, 10, 1.96, false);
    EXPECT_EQ(r.degenerate_runs, 0);
    EXPECT_GE(r.converged * 10, replications * 9);
    const double spread = 3.0 * std::sqrt(0.95 * 0.05 * replications);
    for (size_t k = 0; k < truth.size(); ++k)
        EXPECT_GE(r.covered[k], 0.95 * replications - spread) << truth[k].name;
}

}  // namespace
}  // namespace vexa
