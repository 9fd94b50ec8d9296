#pragma once
// Simulation: networks drawn from a model at fixed parameters. A burn-in from the starting
// network, then T proposals keeping every h-th network; the record holds each kept sample's
// statistics and the acceptance rate of the proposals before it. The sampled networks
// themselves go only to the observer, as they are drawn (a file per sample, say), so that a
// long simulation holds no more than its statistics.

#include <cstdint>
#include <vector>

#include "sampler/observer.h"
#include "simulation/sampling.h"

namespace vexa {

struct SimulationRecord {
    std::vector<double> parameters;
    double burn_in = 0.0;
    SamplingPlan plan;
    std::vector<double> sample_numbers;                  // the proposal of each sample
    std::vector<std::vector<double>> sample_statistics;  // per sample, by slot
    std::vector<double> acceptance_rates;                // per sample: accepted / h
    double accepted = 0.0;                               // over the sampling proposals
    std::vector<double> end_statistics;                  // of the final network
};

// Simulates on `setup.observed`, the starting network, which ends as the last network drawn.
// Seeds the generator twice, before the burn-in and before the sampling.
template <class Store>
SimulationRecord simulate(ChainSetup<Store>& setup, const std::vector<double>& parameters,
                          double burn_in, const SamplingPlan& plan, Rng& rng, SeedSource& seeds,
                          const Observer& observer) {
    SimulationRecord record;
    record.parameters = parameters;
    record.burn_in = burn_in;
    record.plan = plan;
    const auto p = static_cast<int32_t>(parameters.size());
    Store& network = setup.observed;
    keep_only(network, setup.keeps);
    Chain<Store> chain = setup.chain_on(network, p, rng);
    run_burn_in(chain, parameters.data(), burn_in, seeds, observer);
    seeds.reseed(rng);
    record.accepted =
        run_proposals(chain, parameters.data(), plan, observer, [&](double i, double accepted) {
            recount_uncarried(chain);
            record.sample_numbers.push_back(i);
            record.sample_statistics.emplace_back(chain.statistics.begin(),
                                                  chain.statistics.begin() + p);
            record.acceptance_rates.push_back(accepted / plan.interval);
            observer.tell(SampleDrawn{i, record.sample_statistics.back(), accepted, &network, {}});
        });
    record.end_statistics = statistics_of(network, setup.terms, p);
    return record;
}

}  // namespace vexa
