#pragma once
// Goodness of fit as tasks: the observed network set beside a sample of networks drawn from
// the model, either from one chain at fixed parameters (every h-th network after a burn-in) or
// one network per parameter set (the end of a burn-in from the observed network under that
// set: the Bayesian form, which carries the parameters' uncertainty along). Both record the
// same things of every sample (statistics, descriptive measures, geodesic quartiles and, for a
// digraph, the triad census) and return them with the observed network's and the Mahalanobis
// distance; the networks go to the observer as they are drawn.

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "base/errors.h"
#include "describe/triad_census.h"
#include "numeric/moments.h"
#include "sampler/observer.h"
#include "simulation/bayesian_gof.h"
#include "simulation/given_sample.h"
#include "simulation/gof_record.h"
#include "simulation/goodness_of_fit.h"
#include "simulation/measures.h"
#include "simulation/sampling.h"

namespace vexa {

// What goodness of fit samples: the plan, the burn-in before it, and whether it follows an
// estimation.
struct GofPlan {
    SamplingPlan sampling;
    double burn_in = 0.0;
    bool after_estimation = false;
};

namespace gof_detail {

// The record before any sample: the observed network's statistics, measures and census.
template <class Store>
GofRecord start_record(const ChainSetup<Store>& setup, int32_t p, ScratchOf<Store>& scratch) {
    GofRecord record;
    record.kind = Store::kind;
    record.observed_statistics = statistics_of(setup.observed, setup.terms, p);
    record.observed_measures = measure(setup.observed, scratch);
    if constexpr (Store::kind != NetworkKind::graph)
        record.observed_census = triad_census(setup.observed);
    record.sample.statistics.assign(static_cast<size_t>(p), {});
    record.sample.measures.assign(measure_names(Store::kind).size(), {});
    return record;
}

// Records the chain's network as a sample and tells the observer.
template <class Store>
void take_sample(GofRecord& record, const Chain<Store>& chain, ScratchOf<Store>& scratch,
                 double number, double accepted, double rate, const Observer& observer) {
    const Store& network = *chain.store;
    if constexpr (Store::kind != NetworkKind::graph) record.census.push_back(triad_census(network));
    const size_t p = record.sample.statistics.size();
    for (size_t k = 0; k < p; ++k) record.sample.statistics[k].push_back(chain.statistics[k]);
    record.sample.numbers.push_back(number);
    const SampleMeasures measures = measure(network, scratch);
    for (size_t m = 0; m < measures.values.size(); ++m)
        record.sample.measures[m].push_back(measures.values[m]);
    record.sample.quartiles.push_back(measures.quartiles);
    record.acceptance_rates.push_back(rate);
    observer.tell(SampleDrawn{number, std::span<const double>(chain.statistics.data(), p), accepted,
                              &network, &scratch});
}

// Refuses a plan that keeps no sample.
inline void require_samples(const SamplingPlan& plan) {
    if (planned_samples(plan) < 1.0) {
        throw SettingError(format_message(
            "vexa: goodness of fit keeps no sample: %.0f proposals at 1 sample per %.0f proposals "
            "(iterations must be at least sample_count)",
            plan.proposals, plan.interval));
    }
}

// The distance and the last network's statistics, once every sample is in.
template <class Store>
void finish_record(GofRecord& record, const ChainSetup<Store>& setup, const Store& last) {
    record.distance = mahalanobis(record.sample.statistics, record.observed_statistics);
    record.end_statistics =
        statistics_of(last, setup.terms, static_cast<int32_t>(record.observed_statistics.size()));
}

}  // namespace gof_detail

// Goodness of fit at `parameters`: a chain from the observed network, its burn-in, then the
// plan's samples. Throws SettingError when the plan keeps no sample.
template <class Store>
GofRecord goodness_of_fit(const ChainSetup<Store>& setup, const std::vector<double>& parameters,
                          const GofPlan& gof, Rng& rng, SeedSource& seeds,
                          const Observer& observer) {
    const SamplingPlan& plan = gof.sampling;
    const auto p = static_cast<int32_t>(parameters.size());
    Store working = setup.observed;
    Chain<Store> chain = setup.chain_on(working, p, rng);
    gof_detail::require_samples(plan);
    const double expected_samples = planned_samples(plan);
    run_burn_in(chain, parameters.data(), gof.burn_in, seeds, observer);
    seeds.reseed(rng);

    ScratchOf<Store> scratch;
    GofRecord record = gof_detail::start_record(setup, p, scratch);
    gof_detail::observe_given(record, setup, parameters, seeds, scratch);
    record.parameters = parameters;
    record.plan = plan;
    record.burn_in = gof.burn_in;
    record.after_estimation = gof.after_estimation;
    record.proposals = plan.proposals;
    const size_t reserve = static_cast<size_t>(std::min(expected_samples, 1e7));
    for (auto& row : record.sample.statistics) row.reserve(reserve);
    recount(chain);
    record.accepted =
        run_proposals(chain, parameters.data(), plan, observer, [&](double i, double accepted) {
            recount_uncarried(chain);
            gof_detail::take_sample(record, chain, scratch, i, accepted, accepted / plan.interval,
                                    observer);
        });
    gof_detail::finish_record(record, setup, working);
    return record;
}

// Goodness of fit over parameter sets: for each set, a chain from the observed network runs
// `burn_in` steps from a fresh seed, and its end is the set's sample.
template <class Store>
GofRecord bayesian_goodness_of_fit(const ChainSetup<Store>& setup,
                                   const std::vector<std::vector<double>>& sets, double burn_in,
                                   int32_t p, Rng& rng, SeedSource& seeds,
                                   const Observer& observer) {
    ScratchOf<Store> scratch;
    GofRecord record = gof_detail::start_record(setup, p, scratch);
    record.burn_in = burn_in;
    ParameterSetsSummary summary;
    summary.moments = summarise_sets(sets, p);
    gof_detail::observe_given(record, setup, gof_detail::set_means(summary), seeds, scratch);
    summary.count = static_cast<int32_t>(sets.size());
    // A chain of b steps takes ceil(b) of them.
    const double steps_per_set = burn_in > 0.0 ? std::ceil(burn_in) : 0.0;
    record.proposals = steps_per_set * summary.count;
    Store working = setup.observed;
    Chain<Store> chain = setup.chain_on(working, p, rng);
    observer.tell(StageStarted{.stage = Stage::parameter_sets, .steps = record.proposals});
    StepCount count{&observer, Stage::parameter_sets, record.proposals};
    record.accepted = run_parameter_sets(
        chain, setup.observed, sets, burn_in, seeds, [&](size_t d, double taken) {
            count.advance(steps_per_set);
            const double rate = steps_per_set > 0.0 ? taken / steps_per_set : 0.0;
            gof_detail::take_sample(record, chain, scratch, static_cast<double>(d + 1), taken, rate,
                                    observer);
            const Bound bound = bound_of(working);
            summary.empty += bound == Bound::empty ? 1 : 0;
            summary.complete += bound == Bound::complete ? 1 : 0;
        });
    observer.tell(SamplingEnded{.stage = Stage::parameter_sets,
                                .samples = static_cast<double>(summary.count),
                                .accepted = record.accepted,
                                .network = std::nullopt});
    record.sets = std::move(summary);
    gof_detail::finish_record(record, setup, working);
    return record;
}

}  // namespace vexa
