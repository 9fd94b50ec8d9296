#pragma once
// The observed side of goodness of fit for a network with missing dyads: its statistics,
// measures and census are unknown, so they are averaged over networks drawn from the model
// given the observed dyads (a chain that toggles only the missing ones, from the observed
// network with them imputed absent). The geodesic quartiles, whole numbers, are the medians
// of the draws'.

#include <algorithm>
#include <cstdint>
#include <vector>

#include "sampler/chain.h"
#include "sampler/runs.h"
#include "simulation/gof_record.h"
#include "simulation/measures.h"

namespace vexa {

// Networks drawn given the observed dyads, each this many proposals per missing dyad after the
// last.
inline constexpr int32_t given_sample_draws = 200;
inline constexpr double given_proposals_per_dyad = 4.0;

namespace gof_detail {

inline int32_t median_of(std::vector<int32_t> values) {
    std::nth_element(values.begin(),
                     values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

// The Bayesian form's given sample is drawn at the mean of its parameter sets.
inline std::vector<double> set_means(const ParameterSetsSummary& summary) {
    std::vector<double> means;
    for (const Moments& m : summary.moments) means.push_back(m.mean);
    return means;
}

// Replaces the record's observed side by the mean over the given sample at `parameters`, when
// the setup has missing dyads.
template <class Store>
void observe_given(GofRecord& record, const ChainSetup<Store>& setup,
                   const std::vector<double>& parameters, SeedSource& seeds,
                   ScratchOf<Store>& scratch) {
    if (setup.missing.empty()) return;
    const auto p = static_cast<int32_t>(record.observed_statistics.size());
    Store working = setup.observed;
    SamplerSettings settings = setup.sampler;
    settings.proposal = Proposal::missing_toggle;
    Rng rng;
    seeds.reseed(rng);
    Chain<Store> chain = make_chain(working, setup.terms, p, settings, rng);
    const double K = given_proposals_per_dyad * static_cast<double>(setup.missing.count());
    run_steps(chain, parameters.data(), 10.0 * K);
    const double share = 1.0 / given_sample_draws;
    std::fill(record.observed_statistics.begin(), record.observed_statistics.end(), 0.0);
    std::vector<double>& values = record.observed_measures.values;
    std::fill(values.begin(), values.end(), 0.0);
    std::fill(record.observed_census.counts.begin(), record.observed_census.counts.end(), 0.0);
    std::vector<int32_t> g25, g50, g75;
    for (int32_t d = 0; d < given_sample_draws; ++d) {
        run_steps(chain, parameters.data(), K);
        recount_uncarried(chain);
        for (int32_t k = 0; k < p; ++k)
            record.observed_statistics[static_cast<size_t>(k)] +=
                share * chain.statistics[static_cast<size_t>(k)];
        const SampleMeasures measures = measure(working, scratch);
        for (size_t m = 0; m < values.size(); ++m) values[m] += share * measures.values[m];
        g25.push_back(measures.quartiles.g25);
        g50.push_back(measures.quartiles.g50);
        g75.push_back(measures.quartiles.g75);
        if constexpr (Store::kind != NetworkKind::graph) {
            const TriadCensus census = triad_census(working);
            for (size_t c = 0; c < census.counts.size(); ++c)
                record.observed_census.counts[c] += share * census.counts[c];
        }
    }
    record.observed_measures.quartiles = {median_of(g25), median_of(g50), median_of(g75)};
    record.given_draws = given_sample_draws;
    record.missing_dyads = setup.missing.count();
}

}  // namespace gof_detail

}  // namespace vexa
