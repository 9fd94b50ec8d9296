#pragma once
// Simulation and goodness of fit from K chains side by side (see sampler/side_by_side.h). The
// samples are dealt round-robin: sample s (from 0) is chain s mod K's sample s / K, and is
// numbered (s + 1) h, as one chain's would be. Each chain starts from its own copy of the
// starting network, runs its own burn-in from its own seed, then takes a sample every h
// proposals; the Bayesian form deals its parameter sets the same way. The records come out
// in sample order whatever the number of threads, and the samples reach the observer in that
// order, on the calling thread.

#include <cmath>
#include <cstdint>
#include <vector>

#include "sampler/chain_set.h"
#include "simulation/cluster_samples.h"
#include "simulation/gof_task.h"
#include "simulation/simulate.h"

namespace vexa {

namespace chains_detail {

// The chains of a sampling task: `chains` copies of `from`, keeping `keep`, their seeds from
// one seeding of the run.
template <class Store>
void start_chains(ChainSet<Store>& set, const ChainSetup<Store>& setup, const Store& from,
                  Bookkeeping keep, int32_t p, int32_t chains, SeedSource& seeds) {
    const uint32_t base = seeds.next_seed();
    for (int32_t k = 0; k < chains; ++k)
        add_chain(set, setup.terms, setup.sampler, from, keep, p, base);
}

// Round 0 of a chain: its burn-in, from a fresh seed, then a fresh seed for its samples.
template <class Store>
void burn_in_round(Chain<Store>& chain, SeedSource& seeds, const double* parameters, double burn_in,
                   Relay& relay) {
    seeds.reseed(*chain.rng);
    run_steps_relayed(chain, parameters, burn_in, relay);
    seeds.reseed(*chain.rng);
}

// The relay of a sampling stage of `steps` steps, announced to the observer.
inline void start_relay(Relay& relay, const Observer& observer, Stage stage, double steps) {
    relay.observer = &observer;
    relay.stage = stage;
    relay.total = steps;
    observer.tell(StageStarted{.stage = stage, .steps = steps});
}

// Room for `m` samples in a goodness-of-fit record, to be filled in any order.
inline void size_gof_record(GofRecord& record, size_t m, bool census) {
    for (auto& row : record.sample.statistics) row.assign(m, 0.0);
    for (auto& row : record.sample.measures) row.assign(m, 0.0);
    record.sample.numbers.assign(m, 0.0);
    record.sample.quartiles.assign(m, {});
    record.acceptance_rates.assign(m, 0.0);
    if (census) record.census.assign(m, {});
}

// Sample s of a goodness of fit: the chain's statistics, measures and census.
template <class Store>
void place_sample(GofRecord& record, size_t s, const Chain<Store>& chain, ScratchOf<Store>& scratch,
                  double number, double rate) {
    const Store& network = *chain.store;
    if constexpr (Store::kind != NetworkKind::graph) record.census[s] = triad_census(network);
    for (size_t k = 0; k < record.sample.statistics.size(); ++k)
        record.sample.statistics[k][s] = chain.statistics[k];
    record.sample.numbers[s] = number;
    const SampleMeasures measures = measure(network, scratch);
    for (size_t m = 0; m < measures.values.size(); ++m)
        record.sample.measures[m][s] = measures.values[m];
    record.sample.quartiles[s] = measures.quartiles;
    record.acceptance_rates[s] = rate;
}

// Sample s, drawn by chain k, told to the observer in its turn; the chain waits for it.
template <class Store>
void tell_sample(Relay& relay, int32_t k, size_t s, const Chain<Store>& chain, size_t p,
                 double number, double accepted, ScratchOf<Store>* scratch) {
    const Observer* observer = relay.observer;
    relay.deliver(k, s, [observer, &chain, p, number, accepted, scratch] {
        SampleDrawn drawn{
            number, std::span<const double>(chain.statistics.data(), p), accepted, chain.store, {}};
        if (scratch != nullptr) drawn.measured = scratch;
        observer->tell(drawn);
    });
}

// Process 0's part of sample s, which chain k drew in another process: the statistics and
// the network it sent (onto the chain's idle store here), told in its turn.
template <class Store>
void tell_remote_sample(Relay& relay, int32_t k, size_t s, Chain<Store>& chain,
                        const std::vector<double>& v, size_t ties_at, std::vector<double> stats,
                        double number, double accepted) {
    if (ties_at < v.size()) cluster_detail::take_ties(*chain.store, v, ties_at);
    const Observer* observer = relay.observer;
    relay.deliver(k, s, [observer, &chain, stats = std::move(stats), number, accepted] {
        observer->tell(
            SampleDrawn{number, std::span<const double>(stats), accepted, chain.store, {}});
    });
}

// A goodness-of-fit sample that chain k drew in another process, on process 0.
template <class Store>
void take_remote_gof_sample(GofRecord& record, size_t s, int32_t k, Chain<Store>& chain,
                            const ChainPlan& plan, Relay& relay, double& accepted, Bound& bound) {
    const std::vector<double> v = cluster_receive(plan.cluster.owner(k), k);
    double taken = 0.0;
    const size_t at = cluster_detail::unpack_gof_sample(record, s, v, taken, bound);
    accepted += taken;
    std::vector<double> stats;
    for (const auto& row : record.sample.statistics) stats.push_back(row[s]);
    tell_remote_sample(relay, k, s, chain, v, at, std::move(stats), record.sample.numbers[s],
                       taken);
}

// A goodness-of-fit sample of this process's chain k, sent to process 0.
template <class Store>
void send_gof_sample(const GofRecord& record, size_t s, int32_t k, const Chain<Store>& chain,
                     const ChainPlan& plan, double accepted, Bound bound) {
    std::vector<double> v = cluster_detail::pack_gof_sample(record, s, accepted, bound);
    if (plan.networks_to_root) cluster_detail::append_ties(v, *chain.store);
    cluster_send(0, k, v);
}

// The statistics of the network chain `last` ended at, from the process that ran it.
template <class Store>
std::vector<double> end_statistics_of(ChainSet<Store>& set, const ChainSetup<Store>& setup,
                                      const ChainPlan& plan, int32_t last, int32_t p) {
    std::vector<double> end(static_cast<size_t>(p), 0.0);
    if (plan.cluster.owns(last)) end = statistics_of(*set[last].store, setup.terms, p);
    cluster_sum(plan.cluster, end);
    return end;
}

inline double sum_in_order(const std::vector<double>& values) {
    double sum = 0.0;
    for (const double value : values) sum += value;
    return sum;
}

}  // namespace chains_detail

// Simulation from the plan's chains on copies of `setup.observed`, the starting network.
template <class Store>
SimulationRecord simulate_chains(const ChainSetup<Store>& setup,
                                 const std::vector<double>& parameters, double burn_in,
                                 const SamplingPlan& plan, const ChainPlan& chains,
                                 SeedSource& seeds, const Observer& observer) {
    using namespace chains_detail;
    const auto p = static_cast<int32_t>(parameters.size());
    const int32_t K = chains.chains;
    const auto m = static_cast<size_t>(planned_samples(plan));
    const double h = plan.interval;
    SimulationRecord record;
    record.parameters = parameters;
    record.burn_in = burn_in;
    record.plan = plan;
    record.sample_numbers.assign(m, 0.0);
    record.sample_statistics.assign(m, {});
    record.acceptance_rates.assign(m, 0.0);
    ChainSet<Store> set;
    start_chains(set, setup, setup.observed, setup.keeps, p, K, seeds);
    Relay relay;
    start_relay(relay, observer, Stage::sampling,
                K * std::ceil(burn_in) + static_cast<double>(m) * h);
    std::vector<double> accepted(static_cast<size_t>(K), 0.0);
    const auto rounds = static_cast<int32_t>(1 + pieces_of(static_cast<int64_t>(m), K, 0));
    const Cluster& cluster = chains.cluster;
    run_rounds(chains, rounds, relay, [&](int32_t k, int32_t j) {
        Chain<Store>& chain = set[k];
        const bool mine = cluster.owns(k);
        if (!mine && cluster.rank != 0) return;
        if (j == 0) {
            if (mine)
                burn_in_round(chain, set.seeds[static_cast<size_t>(k)], parameters.data(), burn_in,
                              relay);
            return;
        }
        const size_t s =
            static_cast<size_t>(j - 1) * static_cast<size_t>(K) + static_cast<size_t>(k);
        if (s >= m) return;
        double taken = 0.0;
        if (!mine) {
            const std::vector<double> v = cluster_receive(cluster.owner(k), k);
            const size_t at = cluster_detail::unpack_simulation_sample(
                record, s, static_cast<size_t>(p), v, taken);
            accepted[static_cast<size_t>(k)] += taken;
            return tell_remote_sample(relay, k, s, chain, v, at, record.sample_statistics[s],
                                      record.sample_numbers[s], taken);
        }
        taken = run_steps_relayed(chain, parameters.data(), h, relay);
        accepted[static_cast<size_t>(k)] += taken;
        recount_uncarried(chain);
        const double number = static_cast<double>(s + 1) * h;
        record.sample_numbers[s] = number;
        record.sample_statistics[s].assign(chain.statistics.begin(), chain.statistics.begin() + p);
        record.acceptance_rates[s] = taken / h;
        if (cluster.rank == 0)
            return tell_sample<Store>(relay, k, s, chain, static_cast<size_t>(p), number, taken,
                                      nullptr);
        std::vector<double> v = cluster_detail::pack_simulation_sample(record, s, taken);
        if (chains.networks_to_root) cluster_detail::append_ties(v, *chain.store);
        cluster_send(0, k, v);
    });
    record.accepted = sum_in_order(accepted);
    const int32_t last = m > 0 ? static_cast<int32_t>((m - 1) % static_cast<size_t>(K)) : 0;
    // The last sample's chain ended there; on process 0 its network is at hand when the chain
    // is its own or sent its networks here.
    SamplingEnded ended{Stage::sampling, static_cast<double>(m), record.accepted, std::nullopt};
    if (cluster.owns(last) || chains.networks_to_root) ended.network = set[last].store;
    observer.tell(ended);
    record.end_statistics = end_statistics_of(set, setup, chains, last, p);
    return record;
}

// Goodness of fit at `parameters` from the plan's chains on copies of the observed network.
// Throws SettingError when the plan keeps no sample.
template <class Store>
GofRecord goodness_of_fit_chains(const ChainSetup<Store>& setup,
                                 const std::vector<double>& parameters, const GofPlan& gof,
                                 const ChainPlan& chains, SeedSource& seeds,
                                 const Observer& observer) {
    using namespace chains_detail;
    const SamplingPlan& plan = gof.sampling;
    const auto p = static_cast<int32_t>(parameters.size());
    const int32_t K = chains.chains;
    gof_detail::require_samples(plan);
    const auto m = static_cast<size_t>(planned_samples(plan));
    const double h = plan.interval;
    ChainSet<Store> set;
    start_chains(set, setup, setup.observed, Bookkeeping::all, p, K, seeds);
    std::vector<Alone<ScratchOf<Store>>> scratch(static_cast<size_t>(K) + 1);
    GofRecord record = gof_detail::start_record(setup, p, scratch.back().value);
    gof_detail::observe_given(record, setup, parameters, seeds, scratch.back().value);
    record.parameters = parameters;
    record.plan = plan;
    record.burn_in = gof.burn_in;
    record.after_estimation = gof.after_estimation;
    record.proposals = static_cast<double>(m) * h;
    size_gof_record(record, m, Store::kind != NetworkKind::graph);
    Relay relay;
    start_relay(relay, observer, Stage::sampling, K * std::ceil(gof.burn_in) + record.proposals);
    std::vector<double> accepted(static_cast<size_t>(K), 0.0);
    const auto rounds = static_cast<int32_t>(1 + pieces_of(static_cast<int64_t>(m), K, 0));
    const Cluster& cluster = chains.cluster;
    run_rounds(chains, rounds, relay, [&](int32_t k, int32_t j) {
        Chain<Store>& chain = set[k];
        const auto kk = static_cast<size_t>(k);
        const bool mine = cluster.owns(k);
        if (!mine && cluster.rank != 0) return;
        if (j == 0) {
            if (!mine) return;
            burn_in_round(chain, set.seeds[kk], parameters.data(), gof.burn_in, relay);
            return recount(chain);
        }
        const size_t s = static_cast<size_t>(j - 1) * static_cast<size_t>(K) + kk;
        if (s >= m) return;
        Bound bound = Bound::none;
        if (!mine)
            return take_remote_gof_sample(record, s, k, chain, chains, relay, accepted[kk], bound);
        const double taken = run_steps_relayed(chain, parameters.data(), h, relay);
        accepted[kk] += taken;
        recount_uncarried(chain);
        const double number = static_cast<double>(s + 1) * h;
        place_sample(record, s, chain, scratch[kk].value, number, taken / h);
        if (cluster.rank != 0) return send_gof_sample(record, s, k, chain, chains, taken, bound);
        tell_sample<Store>(relay, k, s, chain, static_cast<size_t>(p), number, taken,
                           &scratch[kk].value);
    });
    record.accepted = sum_in_order(accepted);
    observer.tell(SamplingEnded{.stage = Stage::sampling,
                                .samples = static_cast<double>(m),
                                .accepted = record.accepted,
                                .network = std::nullopt});
    const auto last = static_cast<int32_t>((m - 1) % static_cast<size_t>(K));
    gof_detail::finish_record(record, setup, *set[last].store);
    record.end_statistics = end_statistics_of(set, setup, chains, last, p);
    return record;
}

// Goodness of fit over parameter sets from the plan's chains: set d goes to chain d mod K,
// whose network is reset to the observed one before each of its sets.
template <class Store>
GofRecord bayesian_goodness_of_fit_chains(const ChainSetup<Store>& setup,
                                          const std::vector<std::vector<double>>& sets,
                                          double burn_in, int32_t p, const ChainPlan& chains,
                                          SeedSource& seeds, const Observer& observer) {
    using namespace chains_detail;
    const int32_t K = chains.chains;
    const size_t m = sets.size();
    ChainSet<Store> set;
    start_chains(set, setup, setup.observed, Bookkeeping::all, p, K, seeds);
    std::vector<Alone<ScratchOf<Store>>> scratch(static_cast<size_t>(K) + 1);
    GofRecord record = gof_detail::start_record(setup, p, scratch.back().value);
    record.burn_in = burn_in;
    ParameterSetsSummary summary;
    summary.moments = summarise_sets(sets, p);
    gof_detail::observe_given(record, setup, gof_detail::set_means(summary), seeds,
                              scratch.back().value);
    summary.count = static_cast<int32_t>(m);
    const double steps_per_set = burn_in > 0.0 ? std::ceil(burn_in) : 0.0;
    record.proposals = steps_per_set * summary.count;
    size_gof_record(record, m, Store::kind != NetworkKind::graph);
    Relay relay;
    start_relay(relay, observer, Stage::parameter_sets, record.proposals);
    std::vector<double> accepted(static_cast<size_t>(K), 0.0);
    std::vector<Bound> bounds(m, Bound::none);
    const auto rounds = static_cast<int32_t>(pieces_of(static_cast<int64_t>(m), K, 0));
    const Cluster& cluster = chains.cluster;
    run_rounds(chains, rounds, relay, [&](int32_t k, int32_t j) {
        const auto kk = static_cast<size_t>(k);
        const size_t d = static_cast<size_t>(j) * static_cast<size_t>(K) + kk;
        const bool mine = cluster.owns(k);
        if (d >= m || (!mine && cluster.rank != 0)) return;
        Chain<Store>& chain = set[k];
        if (!mine)
            return take_remote_gof_sample(record, d, k, chain, chains, relay, accepted[kk],
                                          bounds[d]);
        *chain.store = setup.observed;
        recount(chain);
        set.seeds[kk].reseed(*chain.rng);
        const double taken = run_steps_relayed(chain, sets[d].data(), burn_in, relay);
        recount_uncarried(chain);
        accepted[kk] += taken;
        const double rate = steps_per_set > 0.0 ? taken / steps_per_set : 0.0;
        const auto number = static_cast<double>(d + 1);
        place_sample(record, d, chain, scratch[kk].value, number, rate);
        bounds[d] = bound_of(*chain.store);
        if (cluster.rank != 0)
            return send_gof_sample(record, d, k, chain, chains, taken, bounds[d]);
        tell_sample<Store>(relay, k, d, chain, static_cast<size_t>(p), number, taken,
                           &scratch[kk].value);
    });
    record.accepted = sum_in_order(accepted);
    for (const Bound bound : bounds) {
        summary.empty += bound == Bound::empty ? 1 : 0;
        summary.complete += bound == Bound::complete ? 1 : 0;
    }
    observer.tell(SamplingEnded{.stage = Stage::parameter_sets,
                                .samples = static_cast<double>(summary.count),
                                .accepted = record.accepted,
                                .network = std::nullopt});
    record.sets = std::move(summary);
    const auto last = m > 0 ? static_cast<int32_t>((m - 1) % static_cast<size_t>(K)) : 0;
    gof_detail::finish_record(record, setup, *set[last].store);
    record.end_statistics = end_statistics_of(set, setup, chains, last, p);
    return record;
}

}  // namespace vexa
