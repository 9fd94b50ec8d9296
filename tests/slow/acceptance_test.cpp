// Moves accepted with the probability the sampler computes, however small: the edge (arc)
// effect alone on 5,000 nodes at a coefficient whose additions are accepted with probability
// 3.05e-4, where a 15-bit uniform would accept with up to 30 % more. Every dyad is then an
// independent tie with probability e^theta / (1 + e^theta), so the long-run mean of the ties
// is known exactly: 3,813.3 edges on a graph, 7,626.6 arcs on a digraph.
//
// The moves that keep the number of ties (the swap, the receiver move) never change the edge
// count, so they have nothing to show here; their acceptance test is the same line of code.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "effects/digraph/digraph_catalogue.h"
#include "effects/graph/graph_catalogue.h"
#include "model/terms.h"
#include "sampler/runs.h"
#include "support/kinds.h"

namespace vexa {
namespace {

constexpr int nodes = 5000;
const double theta = std::log(10.001 / 32767.0);

template <class Store>
double exact_mean() {
    const double dyads =
        Store::kind == NetworkKind::graph ? nodes * (nodes - 1.0) / 2.0 : nodes * (nodes - 1.0);
    return dyads * std::exp(theta) / (1.0 + std::exp(theta));
}

// The mean number of ties over `steps` steps read every 4,096 steps, from a start at the exact
// mean (placed at random). Every network of that many ties is equally likely under the model,
// so the chain's expected count stays at the exact mean from its first step: no burn-in is
// needed for an unbiased mean.
template <class Store>
double long_run_mean(Proposal proposal, double steps, uint32_t seed) {
    Model model = testing::model_of(Store::kind, {0});  // the edge, or the arc
    const std::vector<Term<Store>> terms = make_terms<Store>(model);
    Rng rng;
    SeedSource seeds{.fixed = true, .base = seed};
    Store store;
    if constexpr (Store::kind == NetworkKind::graph) {
        store = random_sparse_graph(nodes, std::llround(exact_mean<Store>()), rng, seeds);
    } else {
        store = random_sparse_digraph(nodes, std::llround(exact_mean<Store>()), rng, seeds);
    }
    Chain<Store> chain = make_chain(store, terms, 1, SamplerSettings{.proposal = proposal}, rng);
    const double parameters[] = {theta};
    constexpr double piece = 4096.0;
    double sum = 0.0, reads = 0.0;
    for (double done = 0.0; done < steps; done += piece) {
        run_steps(chain, parameters, piece);
        sum += static_cast<double>(tie_count(store));
        reads += 1.0;
    }
    return sum / reads;
}

// The toggle's edge count forgets its past once every dyad has been visited (D steps, D the
// dyads), so its mean over T steps has a relative standard error near sqrt(2 D / (T mean)) =
// sqrt(2 / (T p)), p the probability of a tie, whatever the network's size or kind: 5e8 steps
// give 0.36 %, so that the bound of 1 % is more than 2.5 errors away, and the 11 % that a
// 15-bit uniform gives is ten bounds away. The tie/no-tie proposal revisits the ties far more
// often and needs a fifth of that.
template <class Store>
void expect_exact_mean(Proposal proposal, double steps, uint32_t seed) {
    const double mean = long_run_mean<Store>(proposal, steps, seed);
    const double exact = exact_mean<Store>();
    std::printf("%s, %s: long-run mean %.1f, exact %.1f (%+.2f %%)\n",
                Store::kind == NetworkKind::graph ? "graph" : "digraph",
                proposal_name(proposal, Store::kind), mean, exact, 100.0 * (mean / exact - 1.0));
    EXPECT_NEAR(mean / exact, 1.0, 0.01) << proposal_name(proposal, Store::kind);
}

TEST(Acceptance, SmallProbabilitiesGiveTheExactStationaryMeanOnGraphs) {
    expect_exact_mean<SparseGraph>(Proposal::toggle, 5e8, 1);
    expect_exact_mean<SparseGraph>(Proposal::tie_no_tie, 1e8, 2);
}

TEST(Acceptance, SmallProbabilitiesGiveTheExactStationaryMeanOnDigraphs) {
    expect_exact_mean<SparseDigraph>(Proposal::toggle, 5e8, 3);
    expect_exact_mean<SparseDigraph>(Proposal::tie_no_tie, 1e8, 4);
}

}  // namespace
}  // namespace vexa
