// The tie/no-tie proposal samples the same distribution as the toggle: on a graph of 5 nodes
// and a digraph of 4, where every network can be enumerated, the long-run frequencies of the
// edge count (graph) or of the arc and mutual-dyad counts together (digraph) match their exact
// probabilities (chi-square tests at fixed seeds) for both proposals; on 30 nodes the long-run
// means of the alternating models' statistics agree between the proposals within their Monte
// Carlo error; the tie list it draws from agrees with a plain set through any sequence of
// changes.

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <vector>

#include "effects/digraph/digraph_catalogue.h"
#include "effects/graph/graph_catalogue.h"
#include "estimation/diagnostics.h"
#include "model/terms.h"
#include "numeric/matrix.h"
#include "sampler/steps.h"
#include "support/digraph_brute_force.h"
#include "support/kinds.h"

namespace vexa {
namespace {

// Exact probabilities of the edge count under the model, by enumerating every graph on n
// nodes (weights exp(theta . statistics) from the brute-force counts).
std::vector<double> exact_edge_distribution(int n, const Model& model,
                                            const std::vector<double>& theta) {
    std::vector<std::pair<int, int>> dyads;
    for (int a = 0; a < n; ++a)
        for (int b = a + 1; b < n; ++b) dyads.emplace_back(a, b);
    const std::vector<Term<Graph>> terms = make_terms<Graph>(model);
    std::vector<double> mass(dyads.size() + 1, 0.0);
    double total = 0.0;
    for (uint32_t bits = 0; bits < (1u << dyads.size()); ++bits) {
        testing::AdjacencyMatrix m(n);
        int edges = 0;
        for (size_t d = 0; d < dyads.size(); ++d) {
            if ((bits >> d) & 1u) m.set(dyads[d].first, dyads[d].second, true), ++edges;
        }
        const std::vector<double> z =
            testing::totals_of(testing::graph_from(m), terms, theta.size());
        double score = 0.0;
        for (size_t k = 0; k < theta.size(); ++k) score += theta[k] * z[k];
        mass[static_cast<size_t>(edges)] += std::exp(score);
        total += std::exp(score);
    }
    for (double& p : mass) p /= total;
    return mass;
}

TEST(TieNoTie, SamplesTheExactDistributionOfASmallGraphLikeTheToggle) {
    const int n = 5;
    const Model model = testing::model_of(
        NetworkKind::graph,
        {int(GraphEffect::edge), int(GraphEffect::star2), int(GraphEffect::triangle)});
    const std::vector<double> theta{-0.8, 0.15, 0.4};
    const std::vector<double> exact = exact_edge_distribution(n, model, theta);
    const std::vector<Term<Graph>> terms = make_terms<Graph>(model);
    for (const int variant : {0, tie_no_tie_variant}) {
        Graph g = create_graph(n);
        Rng rng;
        rng.seed(static_cast<uint32_t>(11 + variant));
        SamplerSettings settings;
        settings.variant = variant;
        Chain<Graph> chain = make_chain(g, terms, 3, settings, rng);
        // Samples 25 steps apart are all but independent on 10 dyads.
        const int samples = 40000;
        std::vector<double> observed(exact.size(), 0.0);
        for (int s = 0; s < samples; ++s) {
            for (int k = 0; k < 25; ++k) step(chain, theta.data());
            observed[static_cast<size_t>(g.edge_count)] += 1.0;
        }
        double chi_square = 0.0;
        int bins = 0;
        for (size_t e = 0; e < exact.size(); ++e) {
            const double expected = exact[e] * samples;
            if (expected < 5.0) continue;
            chi_square += (observed[e] - expected) * (observed[e] - expected) / expected;
            ++bins;
        }
        // The 0.999 quantile of chi-square with up to 10 degrees of freedom is below 30.
        EXPECT_LT(chi_square, 30.0) << "variant " << variant << ", " << bins << " bins";
        EXPECT_EQ(chain.statistics[0], g.edge_count);
        if (variant == tie_no_tie_variant) {
            EXPECT_EQ(chain.ties.size(), static_cast<size_t>(g.edge_count));
        }
    }
}

// The 0.999 quantile of chi-square with `df` degrees of freedom (Wilson and Hilferty's cube
// approximation, within a few percent from 3 degrees of freedom on).
double chi_square_limit(int df) {
    const double k = df;
    const double a = 2.0 / (9.0 * k);
    return k * std::pow(1.0 - a + 3.09 * std::sqrt(a), 3.0);
}

TEST(TieNoTie, SamplesTheExactDistributionOfASmallDigraphLikeTheToggle) {
    // Arcs, reciprocity, 2-out-stars and AT-T on 4 nodes: 12 ordered pairs, 4,096 digraphs.
    const int n = 4;
    const Model model = testing::model_of(
        NetworkKind::digraph, {int(DigraphEffect::arc), int(DigraphEffect::reciprocity),
                               int(DigraphEffect::out_star2), int(DigraphEffect::at_t)});
    const std::vector<double> theta{-0.7, 0.9, -0.2, 0.3};
    const std::vector<Term<Digraph>> terms = make_terms<Digraph>(model);
    std::vector<std::pair<int, int>> pairs;
    for (int a = 0; a < n; ++a)
        for (int b = 0; b < n; ++b)
            if (a != b) pairs.emplace_back(a, b);
    // Cells: arcs * 7 + mutual dyads (0..12 arcs, 0..6 mutual dyads).
    const auto cell = [](const Digraph& d) { return d.arc_count * 7 + d.mutual_count; };
    std::vector<double> exact(13 * 7, 0.0);
    double total = 0.0;
    for (uint32_t bits = 0; bits < (1u << pairs.size()); ++bits) {
        testing::ArcMatrix m(n);
        for (size_t k = 0; k < pairs.size(); ++k) {
            if ((bits >> k) & 1u) m.set(pairs[k].first, pairs[k].second, true);
        }
        const Digraph d = testing::digraph_from(m);
        const std::vector<double> z = testing::totals_of(d, terms, theta.size());
        double score = 0.0;
        for (size_t k = 0; k < theta.size(); ++k) score += theta[k] * z[k];
        exact[static_cast<size_t>(cell(d))] += std::exp(score);
        total += std::exp(score);
    }
    for (double& p : exact) p /= total;
    for (const int variant : {0, tie_no_tie_variant}) {
        Digraph d = create_digraph(n);
        Rng rng;
        rng.seed(static_cast<uint32_t>(23 + variant));
        SamplerSettings settings;
        settings.variant = variant;
        Chain<Digraph> chain = make_chain(d, terms, 4, settings, rng);
        // Samples 30 steps apart are all but independent on 12 dyads.
        const int samples = 40000;
        std::vector<double> observed(exact.size(), 0.0);
        for (int s = 0; s < samples; ++s) {
            for (int k = 0; k < 30; ++k) step(chain, theta.data());
            observed[static_cast<size_t>(cell(d))] += 1.0;
        }
        double chi_square = 0.0;
        int bins = 0;
        for (size_t c = 0; c < exact.size(); ++c) {
            const double expected = exact[c] * samples;
            if (expected < 5.0) continue;
            chi_square += (observed[c] - expected) * (observed[c] - expected) / expected;
            ++bins;
        }
        ASSERT_GT(bins, 20);
        EXPECT_LT(chi_square, chi_square_limit(bins - 1)) << "variant " << variant;
        EXPECT_EQ(chain.statistics[0], d.arc_count);
        if (variant == tie_no_tie_variant) {
            EXPECT_EQ(chain.ties.size(), static_cast<size_t>(d.arc_count));
        }
    }
}

struct LongRun {
    std::vector<double> means;
    std::vector<double> mean_variances;  // variance / effective sample size, per statistic
};

// Means of a thinned chain's statistics and the squared Monte Carlo errors of those means.
template <class Store>
LongRun long_run(Store store, const std::vector<Term<Store>>& terms,
                 const std::vector<double>& theta, int variant, double thin, int draws) {
    const int p = static_cast<int>(theta.size());
    Rng rng;
    rng.seed(static_cast<uint32_t>(61 + variant));
    SamplerSettings settings;
    settings.variant = variant;
    Chain<Store> chain = make_chain(store, terms, p, settings, rng);
    run_steps(chain, theta.data(), 100.0 * thin);
    Matrix recorded = make_matrix(draws, p);
    for (int d = 0; d < draws; ++d) {
        run_steps(chain, theta.data(), thin);
        for (int s = 0; s < p; ++s) recorded[d][s] = chain.statistics[static_cast<size_t>(s)];
    }
    LongRun run;
    for (int s = 0; s < p; ++s) {
        double mean = 0.0, square = 0.0;
        for (int d = 0; d < draws; ++d) mean += recorded[d][s];
        mean /= draws;
        for (int d = 0; d < draws; ++d) square += (recorded[d][s] - mean) * (recorded[d][s] - mean);
        run.means.push_back(mean);
        run.mean_variances.push_back(square / (draws - 1) / effective_sample_size(recorded, s));
    }
    return run;
}

// Both proposals' means of every statistic agree within 4 standard errors of their difference;
// the errors are not so large that any plausible difference would pass.
template <class Store>
void expect_same_means(const Store& start, const std::vector<Term<Store>>& terms,
                       const std::vector<double>& theta, double thin) {
    const LongRun toggle = long_run(start, terms, theta, 0, thin, 2000);
    const LongRun tie_no_tie = long_run(start, terms, theta, tie_no_tie_variant, thin, 2000);
    for (size_t s = 0; s < theta.size(); ++s) {
        const double error = std::sqrt(toggle.mean_variances[s] + tie_no_tie.mean_variances[s]);
        EXPECT_LT(std::fabs(toggle.means[s] - tie_no_tie.means[s]), 4.0 * error)
            << "statistic " << s << ": toggle " << toggle.means[s] << ", tie/no-tie "
            << tie_no_tie.means[s] << ", error " << error;
        EXPECT_LT(error, 0.02 * std::fabs(toggle.means[s])) << "statistic " << s;
    }
}

TEST(TieNoTie, LongRunMeansAgreeWithTheToggleOnThirtyNodes) {
    const int n = 30;
    {
        const Model model =
            testing::model_of(NetworkKind::graph, {int(GraphEffect::edge), int(GraphEffect::as),
                                                   int(GraphEffect::at), int(GraphEffect::a2p)});
        const std::vector<Term<Graph>> terms = make_terms<Graph>(model);
        SCOPED_TRACE("graph");
        expect_same_means(create_graph(n), terms, {-2.0, 0.2, 0.3, -0.1}, 435.0);
    }
    {
        const Model model = testing::model_of(
            NetworkKind::digraph, {int(DigraphEffect::arc), int(DigraphEffect::reciprocity),
                                   int(DigraphEffect::at_t), int(DigraphEffect::a2p_t)});
        const std::vector<Term<Digraph>> terms = make_terms<Digraph>(model);
        SCOPED_TRACE("digraph");
        expect_same_means(create_digraph(n), terms, {-2.5, 1.0, 0.3, -0.05}, 870.0);
    }
}

TEST(TieNoTie, TieListAgreesWithASetThroughAnySequenceOfChanges) {
    TieList list;
    std::set<uint64_t> truth;
    Rng rng;
    rng.seed(5);
    for (int s = 0; s < 200000; ++s) {
        const uint64_t key = TieList::key(rng.node(60), rng.node(60));
        if (truth.count(key) != 0) {
            list.remove(key);
            truth.erase(key);
        } else {
            list.add(key);
            truth.insert(key);
        }
        if (s % 20000 == 0) {
            ASSERT_EQ(list.size(), truth.size());
            std::set<uint64_t> listed;
            for (size_t k = 0; k < list.size(); ++k) listed.insert(list.at(k));
            ASSERT_EQ(listed, truth);
        }
    }
    for (const uint64_t key : truth) EXPECT_TRUE(list.contains(key));
    EXPECT_FALSE(list.contains(TieList::key(61, 62)));
}

}  // namespace
}  // namespace vexa
