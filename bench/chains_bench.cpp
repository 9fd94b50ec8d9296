// Chains side by side, on the examples' school network (205 nodes) under edge + AT + Grade's
// same-category effect at its estimates:
//   GofThreads/N      a goodness of fit of 2,000 samples, 2,000 toggles apart, from 8 chains
//                     on N threads (wall time: the speed-up is the ratio of the two rows)
//   Phase3Threads/N   phase 3 of an estimation, 2,000 draws from 8 chains on N threads
//   Phase3Chains/K/V  phase 3 from K chains on one thread with the toggle (V = 0) or the
//                     tie/no-tie proposal (3), the same total steps for every K
//                     (a tenth of each chain's draws burns in first, so K chains take as many
//                     steps as one): its effective draws of the worst statistic per second,
//                     ess_per_s, and min_ess (the chains read together: see diagnostics.h)
// The files are the same for every N; only the time changes.
//
//   build/bench/vexa_bench --benchmark_filter='Threads|Phase3Chains'
//
// Measured (Release, this 2-core machine, nothing else running; three runs each):
//   GofThreads        1 thread 247 to 252 ms, 2 threads 134 to 144 ms: 1.7 to 1.8 times
//   Phase3Threads     1 thread 77 ms, 2 threads 39 ms: 1.95 times
//   Phase3Chains      toggle:     K = 1 min_ess 13.9 (86 per s), K = 8 15.6 (98 per s)
//                     tie/no-tie: K = 1 min_ess 41.2 (129 per s), K = 8 37.4 (117 per s)
// At the same steps, 8 chains give about the effective draws one gives: their gain is that
// they run side by side. Each chain holds a store: measured as the peak memory of
// simulations at 100,000 nodes on the sparse stores, a graph of mean degree 10 takes about
// 130 MB a chain, a digraph of a million arcs about 500 MB.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "estimation/diagnostics.h"
#include "estimation/phases.h"
#include "model/terms.h"
#include "school_model.h"
#include "simulation/chains_sampling.h"

namespace {

using namespace vexa;

struct School {
    bench::SchoolModel school = bench::school_model(true);
    ChainSetup<Graph> setup;

    explicit School(Proposal proposal = Proposal::toggle) {
        setup.observed = school.network;
        setup.terms = make_terms<Graph>(school.model);
        setup.sampler.proposal = proposal;
        setup.keeps = chain_keeps(setup.terms, setup.sampler.proposal);
    }
};

void BM_GofThreads(benchmark::State& state) {
    const School school;
    const double h = 2000.0;
    const GofPlan plan{{2000.0 * h, h}, 20000.0, false};
    // As a run of the command line: the engine's observers hear each sample from its chain.
    const ChainPlan chains = chain_plan(8, static_cast<int32_t>(state.range(0)), false);
    for (auto _ : state) {
        SeedSource seeds{true, 1, 0};
        const GofRecord record = goodness_of_fit_chains(school.setup, school.school.parameters,
                                                        plan, chains, seeds, Observer{});
        benchmark::DoNotOptimize(record.accepted);
    }
}

// Phase 3 at the school model's estimates from the plan's chains; returns its draws.
Matrix phase3_draws(const School& school, const ChainPlan& chains, int draws, uint32_t seed = 2) {
    const auto p = static_cast<int32_t>(school.school.parameters.size());
    Rng rng;
    Graph working = school.setup.chain_store();
    Chain<Graph> chain = school.setup.chain_on(working, p, rng);
    std::vector<double> theta = school.school.parameters;
    Matrix D = make_matrix(p, p, 0.0);
    EstimationSettings settings;
    settings.chains = chains;
    const Observer observer;
    estimation_detail::RunState<Graph> r(chain, theta, D, settings, observer);
    estimation_detail::start_run(r);
    SeedSource seeds{true, seed, 0};
    seeds.reseed(rng);
    return estimation_detail::start_phase3(r, seeds, draws);
}

void BM_Phase3Threads(benchmark::State& state) {
    const School school;
    const ChainPlan chains = chain_plan(8, static_cast<int32_t>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(phase3_draws(school, chains, 2000).rows);
}

void BM_Phase3Chains(benchmark::State& state) {
    const School school(state.range(1) == 3 ? Proposal::tie_no_tie : Proposal::toggle);
    const auto K = static_cast<int32_t>(state.range(0));
    // One phase 3 tells the effective size within some 30 %: the mean of five seeds.
    constexpr int seeds = 5;
    double effective = 0.0;
    for (auto _ : state) {
        for (uint32_t seed = 1; seed <= seeds; ++seed) {
            const Matrix draws = phase3_draws(school, chain_plan(K, 1), 4000, seed);
            effective += smallest_effective_size(draws, K) / seeds;
        }
    }
    state.counters["min_ess"] = effective;
    state.counters["ess_per_s"] =
        benchmark::Counter(effective * seeds, benchmark::Counter::kIsRate);
}

BENCHMARK(BM_GofThreads)
    ->Arg(1)
    ->Arg(2)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Phase3Threads)
    ->Arg(1)
    ->Arg(2)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Phase3Chains)
    ->ArgsProduct({{1, 8}, {0, 3}})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
