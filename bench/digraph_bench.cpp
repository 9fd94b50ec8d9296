// Digraph chains: proposals per second of every digraph sampler variant under arc +
// reciprocity + AT-T + A2P-T (lambda 2) on random digraphs of mean out-degree 10, with
// parameters under which that density is stationary; the store update of an accepted toggle
// alone; and the memory a store of 5,000 nodes holds.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

#include "effects/combiner.h"
#include "effects/digraph/digraph_catalogue.h"
#include "network/digraph.h"
#include "numeric/rng.h"
#include "sampler/runs.h"

namespace {

using namespace vexa;

constexpr double mean_out_degree = 10.0;

Digraph random_store(int n) {
    Rng rng;
    SeedSource seeds{.fixed = true, .base = 42};
    return random_digraph_by_count(n, static_cast<int64_t>(n * mean_out_degree), rng, seeds);
}

// Arc, reciprocity, AT-T and A2P-T at lambda 2, parameters 0.5, 0.1 and -0.1. The A2P-T change
// of a sparse digraph is about the number of arcs at the two ends (near 20) and pulls the
// density down; an arc parameter 1.6 above the log-odds of the density balances it. Found by
// long chains: the mean out-degree stays at 10.0 to 10.2 over 60 sweeps of the pairs at 1,000
// nodes, and at 9.2 to 9.7 over 12 sweeps at 5,000.
struct Setup {
    Digraph store;
    std::vector<Term<Digraph>> terms;
    std::vector<double> parameters;
};

Setup make_setup(int n) {
    Setup s{random_store(n), {}, {}};
    int32_t slot = 0;
    for (const DigraphEffect effect : {DigraphEffect::arc, DigraphEffect::reciprocity,
                                       DigraphEffect::at_t, DigraphEffect::a2p_t}) {
        s.terms.push_back(digraph_term(effect, slot++, 2.0f));
    }
    const double density = mean_out_degree / (n - 1);
    s.parameters = {std::log(density / (1.0 - density)) + 1.6, 0.5, 0.1, -0.1};
    return s;
}

// Proposals per second of the engine's digraph sampler, variant by variant: 0 the toggle, 1 the
// arc-count-preserving swap, 2 the out-degree-preserving receiver move, 3 the tie/no-tie
// proposal.
void BM_DigraphProposals(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    Setup s = make_setup(n);
    Rng rng;
    rng.seed(7);
    SamplerSettings settings;
    settings.proposal = proposal_of(static_cast<int32_t>(state.range(1)), NetworkKind::digraph);
    vexa::Chain<Digraph> chain = make_chain(s.store, s.terms, 4, settings, rng);
    for (int k = 0; k < 50 * n; ++k) step(chain, s.parameters.data());  // settle
    const double start_degree = mean_degree(s.store);
    double accepted = 0.0;
    for (auto _ : state) accepted += step(chain, s.parameters.data());
    state.SetItemsProcessed(state.iterations());
    state.counters["accepted"] = accepted / static_cast<double>(state.iterations());
    state.counters["out_degree_start"] = start_degree;
    state.counters["out_degree_end"] = mean_degree(s.store);
}
BENCHMARK(BM_DigraphProposals)->ArgsProduct({{1000, 5000}, {0, 1, 2, 3}});

// The bookkeeping of an accepted toggle: add_arc with its two-path update, then the removal,
// over pre-drawn absent pairs, so the loop measures the store alone. Items are updates.
void BM_DigraphAcceptedToggleUpdate(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    Digraph d = random_store(n);
    Rng rng;
    rng.seed(9);
    std::vector<std::pair<int, int>> pairs;
    while (pairs.size() < 4096) {
        const int i = rng.node(n), j = rng.node(n);
        if (i != j && !d.has_arc(i, j)) pairs.emplace_back(i, j);
    }
    size_t k = 0;
    for (auto _ : state) {
        const auto [i, j] = pairs[k];
        k = (k + 1) & 4095;
        add_arc(d, i, j);
        update_two_paths(d, i, j, 1);
        remove_arc(d, i, j);
        update_two_paths(d, i, j, 0);
    }
    state.SetItemsProcessed(2 * state.iterations());
}
BENCHMARK(BM_DigraphAcceptedToggleUpdate)->Arg(1000)->Arg(5000);

// Kilobytes of a /proc/self/status line ("VmRSS:", "VmHWM:"); 0 where there is none.
double status_kilobytes(const char* key) {
    FILE* status = std::fopen("/proc/self/status", "r");
    if (status == nullptr) return 0.0;
    char line[256];
    double value = 0.0;
    while (std::fgets(line, sizeof line, status) != nullptr) {
        if (std::strncmp(line, key, std::strlen(key)) == 0)
            value = std::atof(line + std::strlen(key));
    }
    std::fclose(status);
    return value;
}

// What a store of n nodes at mean out-degree 10 holds, against the bound of three n x n 16-bit
// matrices plus the adjacency (both bit matrices). Megabytes; the resident growth is measured
// around the store's creation, so run this alone for a clean figure.
void BM_DigraphStoreMemory(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    double resident = 0.0, held = 0.0;
    for (auto _ : state) {
        const double before = status_kilobytes("VmRSS:");
        Digraph d = random_store(n);
        resident = (status_kilobytes("VmRSS:") - before) / 1024.0;
        const auto bytes = [](const auto& v) {
            return static_cast<double>(v.size() * sizeof(v[0]));
        };
        held = (bytes(d.out_rows) + bytes(d.in_rows) + bytes(d.in_degree_values) +
                bytes(d.out_degree_values) + bytes(d.mutual_degree_values) +
                bytes(d.in_degree_histogram) + bytes(d.out_degree_histogram) +
                bytes(d.out_lists.entries) + bytes(d.in_lists.entries) + bytes(d.common_receivers) +
                bytes(d.common_senders) + bytes(d.two_paths)) /
               (1024.0 * 1024.0);
        benchmark::DoNotOptimize(d.arc_count);
    }
    const double nodes = n;
    state.counters["held_MB"] = held;
    state.counters["resident_growth_MB"] = resident;
    state.counters["peak_process_MB"] = status_kilobytes("VmHWM:") / 1024.0;
    const int row_bytes = (n + 63) / 64 * 8;  // one bit row, in whole 64-bit words
    state.counters["bound_MB"] =
        (3.0 * nodes * nodes * 2.0 + 2.0 * nodes * row_bytes) / (1024.0 * 1024.0);
}
BENCHMARK(BM_DigraphStoreMemory)->Arg(5000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
