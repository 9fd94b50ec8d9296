// The tie/no-tie proposal (and on graphs the closure proposal) against the toggle on 30 nodes,
// too many to enumerate: the chains' long-run means of every model statistic agree within their
// Monte Carlo error, for both network kinds.
// Kept with the slow checks: with the bookkeeping recounted after every accepted step, as the
// sanitized build does, its hundreds of thousands of accepted steps take minutes.

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "estimation/diagnostics.h"
#include "numeric/matrix.h"
#include "sampler/runs.h"
#include "support/kinds.h"

namespace vexa {
namespace {

// The mean of every statistic over a chain of `draws` draws `thin` steps apart, after a burn-in
// of 100 draws, with the squared Monte Carlo error of each mean (variance over effective size).
template <class Store>
void long_run_means(const std::vector<Term<Store>>& terms, const std::vector<double>& theta,
                    Proposal proposal, double thin, std::vector<double>& means,
                    std::vector<double>& errors) {
    const int p = static_cast<int>(theta.size()), draws = 2000;
    Store store =
        testing::KindFixture<Store>::build(typename testing::KindFixture<Store>::Matrix(30));
    Rng rng;
    rng.seed(61 + static_cast<uint32_t>(proposal));
    SamplerSettings settings;
    settings.proposal = proposal;
    Chain<Store> chain = make_chain(store, terms, p, settings, rng);
    run_steps(chain, theta.data(), 100.0 * thin);
    Matrix recorded = make_matrix(draws, p);
    for (int d = 0; d < draws; ++d) {
        run_steps(chain, theta.data(), thin);
        for (int s = 0; s < p; ++s) recorded[d][s] = chain.statistics[static_cast<size_t>(s)];
    }
    means.assign(static_cast<size_t>(p), 0.0);
    errors.assign(static_cast<size_t>(p), 0.0);
    for (int s = 0; s < p; ++s) {
        const size_t k = static_cast<size_t>(s);
        for (int d = 0; d < draws; ++d) means[k] += recorded[d][s] / draws;
        for (int d = 0; d < draws; ++d)
            errors[k] += (recorded[d][s] - means[k]) * (recorded[d][s] - means[k]) / (draws - 1);
        errors[k] /= effective_sample_size(recorded, s);
    }
}

// On 30 nodes, too many to enumerate, each proposal's long-run means of every statistic agree
// with the toggle's within 4 standard errors of their difference, and those errors are below
// 2 % of the mean, so that no real difference hides in them.
template <class Store>
void expect_same_long_run_means(const std::vector<int>& rows, const std::vector<double>& theta,
                                double thin, const std::vector<Proposal>& proposals) {
    const std::vector<Term<Store>> terms = make_terms<Store>(testing::model_of(Store::kind, rows));
    std::vector<double> toggle, toggle_errors, other, other_errors;
    long_run_means(terms, theta, Proposal::toggle, thin, toggle, toggle_errors);
    for (const Proposal proposal : proposals) {
        long_run_means(terms, theta, proposal, thin, other, other_errors);
        const char* name = proposal_name(proposal, Store::kind);
        for (size_t s = 0; s < theta.size(); ++s) {
            const double error = std::sqrt(toggle_errors[s] + other_errors[s]);
            EXPECT_LT(std::fabs(toggle[s] - other[s]), 4.0 * error)
                << "statistic " << s << ": toggle " << toggle[s] << ", " << name << " " << other[s];
            EXPECT_LT(error, 0.02 * std::fabs(toggle[s])) << "statistic " << s << ", " << name;
        }
    }
}

TEST(TieNoTie, LongRunMeansAgreeWithTheToggleOnThirtyNodes) {
    expect_same_long_run_means<Graph>(
        {int(GraphEffect::edge), int(GraphEffect::as), int(GraphEffect::at), int(GraphEffect::a2p)},
        {-2.0, 0.2, 0.3, -0.1}, 435.0, {Proposal::tie_no_tie, Proposal::closure});
    expect_same_long_run_means<Digraph>({int(DigraphEffect::arc), int(DigraphEffect::reciprocity),
                                         int(DigraphEffect::at_t), int(DigraphEffect::a2p_t)},
                                        {-2.5, 1.0, 0.3, -0.05}, 870.0, {Proposal::tie_no_tie});
}

}  // namespace
}  // namespace vexa
