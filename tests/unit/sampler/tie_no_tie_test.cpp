// The tie/no-tie and closure proposals sample the same distribution as the toggle: on a graph
// of 5 nodes and a digraph of 4, where every network can be enumerated, the long-run
// frequencies of the edge and triangle counts together (graph) or of the arc and mutual-dyad
// counts together (digraph) match their exact probabilities (chi-square tests at fixed seeds)
// for every proposal of the kind. (The long-run means on 30 nodes are compared among the slow
// statistical checks.)

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

#include "effects/graph/graph_counts.h"
#include "sampler/proposal_choice.h"
#include "sampler/runs.h"
#include "support/kinds.h"
#include "support/test_support.h"

namespace vexa {
namespace {

// The 0.999 quantile of chi-square with `df` degrees of freedom (Wilson and Hilferty's cube
// approximation, within a few percent from 3 degrees of freedom on).
double chi_square_limit(int df) {
    const double k = df;
    const double a = 2.0 / (9.0 * k);
    return k * std::pow(1.0 - a + 3.09 * std::sqrt(a), 3.0);
}

// Both proposals on every network of n nodes: the exact probabilities of the cells `cell`
// sorts networks into, by enumerating the networks (weights exp(theta . statistics)), against
// the frequencies of the cells in samples `thin` steps apart (all but independent), by a
// chi-square test over the cells expected at least 5 times.
template <class Store>
void expect_exact_distribution(int n, const std::vector<int>& rows,
                               const std::vector<double>& theta, int thin, int cells,
                               int (*cell)(const Store&), const DyadMask* mask = nullptr,
                               const std::vector<std::pair<int, int>>& fixed_ties = {}) {
    using Fixture = testing::KindFixture<Store>;
    const std::vector<Term<Store>> terms = make_terms<Store>(testing::model_of(Store::kind, rows));
    std::vector<std::pair<int, int>> dyads;
    for (int a = 0; a < n; ++a) {
        for (int b = Store::kind == NetworkKind::graph ? a + 1 : 0; b < n; ++b) {
            if (a != b && (mask == nullptr || mask->allows(a, b))) dyads.emplace_back(a, b);
        }
    }
    std::vector<double> exact(static_cast<size_t>(cells), 0.0);
    double total = 0.0;
    for (uint32_t bits = 0; bits < (1u << dyads.size()); ++bits) {
        typename Fixture::Matrix m(n);
        for (const auto& [a, b] : fixed_ties) m.set(a, b, true);
        for (size_t d = 0; d < dyads.size(); ++d) {
            if ((bits >> d) & 1u) m.set(dyads[d].first, dyads[d].second, true);
        }
        const Store store = Fixture::build(m);
        const std::vector<double> z = testing::totals_of(store, terms, theta.size());
        double score = 0.0;
        for (size_t k = 0; k < theta.size(); ++k) score += theta[k] * z[k];
        exact[static_cast<size_t>(cell(store))] += std::exp(score);
        total += std::exp(score);
    }
    for (double& p : exact) p /= total;
    std::vector<Proposal> proposals{Proposal::toggle, Proposal::tie_no_tie};
    if (Store::kind == NetworkKind::graph) proposals.push_back(Proposal::closure);
    for (const Proposal proposal : proposals) {
        typename Fixture::Matrix start(n);
        for (const auto& [a, b] : fixed_ties) start.set(a, b, true);
        Store store = Fixture::build(start);
        Rng rng;
        rng.seed(11 + static_cast<uint32_t>(proposal));
        Chain<Store> chain = make_chain(store, terms, static_cast<int32_t>(theta.size()),
                                        SamplerSettings{.proposal = proposal, .mask = mask}, rng);
        const int samples = 40000;
        std::vector<double> observed(exact.size(), 0.0);
        for (int s = 0; s < samples; ++s) {
            for (int k = 0; k < thin; ++k) step(chain, theta.data());
            observed[static_cast<size_t>(cell(store))] += 1.0;
        }
        double chi_square = 0.0;
        int bins = 0;
        for (size_t c = 0; c < exact.size(); ++c) {
            const double expected = exact[c] * samples;
            if (expected < 5.0) continue;
            chi_square += (observed[c] - expected) * (observed[c] - expected) / expected;
            ++bins;
        }
        ASSERT_GT(bins, 5);
        EXPECT_LT(chi_square, chi_square_limit(bins - 1)) << proposal_name(proposal, Store::kind);
        EXPECT_EQ(chain.statistics[0], tie_count(store));
    }
}

// Edges * 11 + triangles: a 5-node graph has at most 10 of each.
template <class G>
int edges_and_triangles(const G& g) {
    return g.edge_count * 11 + static_cast<int>(graph_terms::triangle_count(g));
}

TEST(TieNoTie, SamplesTheExactDistributionOfASmallGraphLikeTheToggle) {
    // 5 nodes: 10 dyads, 1,024 graphs. The closure proposal's two-path draws weigh a dyad by
    // its common neighbours' degrees, so a ratio that missed a term would shift the triangles
    // first: they are part of the cell. Both stores, as their neighbour lists differ.
    const std::vector<int> rows{int(GraphEffect::edge), int(GraphEffect::star2),
                                int(GraphEffect::triangle)};
    const std::vector<double> theta{-0.8, 0.15, 0.4};
    expect_exact_distribution<Graph>(5, rows, theta, 25, 11 * 11, edges_and_triangles<Graph>);
    expect_exact_distribution<SparseGraph>(5, rows, theta, 25, 11 * 11,
                                           edges_and_triangles<SparseGraph>);
    // The checking build (every step recounted) stops here: the same code again under another
    // model adds nothing its sanitizers could find. (With 320,000 samples every case passes.)
    if (testing::checking_build) return;
    // A clustered regime: the alternating triangles pull towards closed triads.
    expect_exact_distribution<Graph>(5, {int(GraphEffect::edge), int(GraphEffect::at)}, {-1.5, 1.0},
                                     25, 11 * 11, edges_and_triangles<Graph>);
}

TEST(TieNoTie, SamplesTheExactDistributionOfASmallDigraphLikeTheToggle) {
    // 4 nodes: 12 ordered pairs, 4,096 digraphs; the cells are arcs * 7 + mutual dyads.
    expect_exact_distribution<Digraph>(4,
                                       {int(DigraphEffect::arc), int(DigraphEffect::reciprocity),
                                        int(DigraphEffect::out_star2), int(DigraphEffect::at_t)},
                                       {-0.7, 0.9, -0.2, 0.3}, 30, 13 * 7, [](const Digraph& d) {
                                           return d.arc_count * 7 + d.mutual_count;
                                       });
}

TEST(TieNoTie, KeepsTheExactDistributionWhereAConstraintFixesOneArcOfADyad) {
    // The digraph proposal also picks the reverse of a present arc; where the constraint fixes
    // that reverse arc (0->1 stays present and 2->3 absent, while 1->0 and 3->2 may change) the
    // pick proposes nothing, a fixed arc is never picked from, and the distribution over the
    // allowed arcs must stay exact.
    DyadMask mask = make_dyad_mask(4, NetworkKind::digraph);
    for (int a = 0; a < 4; ++a) {
        for (int b = 0; b < 4; ++b) {
            const bool fixed = (a == 0 && b == 1) || (a == 2 && b == 3);
            if (a != b && !fixed) allow_dyad(mask, NetworkKind::digraph, a, b);
        }
    }
    expect_exact_distribution<Digraph>(
        4, {int(DigraphEffect::arc), int(DigraphEffect::reciprocity), int(DigraphEffect::at_t)},
        {-0.5, 1.2, 0.3}, 30, 12 * 7,
        [](const Digraph& d) { return d.arc_count * 7 + d.mutual_count; }, &mask, {{0, 1}});
}

TEST(TieNoTie, TheAutomaticModeTakesTheClosureProposalOnClusteredGraphs) {
    using Fixture = testing::KindFixture<Graph>;
    // Triangle 0-1-2 with a pendant 2-3: degrees 2, 2, 3, 1 give 1 + 1 + 3 two-stars, and the
    // triangle closes 3 of them.
    Fixture::Matrix pendant(4);
    for (const auto& [a, b] : {std::pair{0, 1}, {1, 2}, {0, 2}, {2, 3}}) pendant.set(a, b, true);
    EXPECT_DOUBLE_EQ(transitivity(Fixture::build(pendant)), 0.6);

    // Four separate triangles on 12 nodes (density 12/66, every two-path closed), and a ring of
    // 12 (density 12/66, none closed).
    Fixture::Matrix triangles(12), ring(12);
    for (int t = 0; t < 12; t += 3) {
        triangles.set(t, t + 1, true), triangles.set(t + 1, t + 2, true);
        triangles.set(t, t + 2, true);
    }
    for (int v = 0; v < 12; ++v) ring.set(v, (v + 1) % 12, true);
    const Graph clustered = Fixture::build(triangles);
    const Graph open = Fixture::build(ring);
    const auto terms = [](std::vector<int> rows) {
        return make_terms<Graph>(testing::model_of(NetworkKind::graph, rows));
    };
    const auto with_at = terms({int(GraphEffect::edge), int(GraphEffect::at)});
    const auto edge_only = terms({int(GraphEffect::edge)});
    EXPECT_EQ(automatic_proposal(Proposal::toggle, clustered, with_at), Proposal::closure);
    EXPECT_EQ(automatic_proposal(Proposal::toggle, clustered, edge_only), Proposal::tie_no_tie);
    EXPECT_EQ(automatic_proposal(Proposal::toggle, open, with_at), Proposal::tie_no_tie);
    // Dense networks keep the toggle; count-keeping proposals are another model and stay.
    Fixture::Matrix full(5);
    for (int a = 0; a < 5; ++a)
        for (int b = a + 1; b < 5; ++b) full.set(a, b, true);
    EXPECT_EQ(automatic_proposal(Proposal::toggle, Fixture::build(full), with_at),
              Proposal::toggle);
    EXPECT_EQ(automatic_proposal(Proposal::swap, clustered, with_at), Proposal::swap);
    // A digraph has no closure proposal, and code 4 asks a graph for it.
    EXPECT_EQ(proposal_of(4, NetworkKind::graph), Proposal::closure);
    EXPECT_EQ(proposal_of(4, NetworkKind::digraph), Proposal::tie_no_tie);
}

}  // namespace
}  // namespace vexa
