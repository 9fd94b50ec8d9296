// The sparse stores at the sizes they exist for: a random network of n nodes and mean degree 10
// (out-degree for digraphs), built tie by tie as a tie list is read, then tie/no-tie proposals
// under edge + AS + AT + A2P (graphs) or arc + reciprocity + AT-T + A2P-T (digraphs), lambda 2,
// on a copy trimmed as an estimation's chain keeps it. Counters:
//   build_s        processor seconds to build the store (every count kept)
//   full_MB        the built store's memory (every count kept), from its own accounting
//   chain_MB       the chain's trimmed copy
//   proposals_per_s, accepted_per_s  of the chain, after a burn-in of 2 n proposals
//   peak_MB        the process's peak resident memory so far (run one case alone for a clean
//                  figure)
// Opt-in (minutes and gigabytes; only when the filter names SparseScale):
//   build/bench/vexa_bench --benchmark_filter='SparseScale/100000'
//   build/bench/vexa_bench --benchmark_filter='SparseScale/1000000'
//
// Measured (Release, this 2-core machine, one case a process, the other core mostly busy; the
// rates vary by a tenth from run to run):
//   kind     n          build_s  full_MB  chain_MB  proposals/s  accepted/s  peak_MB
//   graph    100,000    0.7      144      143       0.38-0.40 M  0.33-0.35 M   213
//   graph    1,000,000  10.3     2,208    2,199     0.37-0.42 M  0.32-0.37 M  3,260
//   digraph  100,000    2.2      529      273       0.39-0.42 M  0.18-0.20 M    600
//   digraph  1,000,000  44.1     8,361    4,265     0.27 M       0.12 M       9,438
// Both kinds run at a third to two fifths of a million proposals a second whatever the size:
// every proposal waits on some 20 reads and every accepted one on some 20 updates scattered
// over a pair table far larger than the caches. The digraph's table of two-paths holds some
// 10^8 pairs at a million nodes, which is what its memory is.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cmath>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "effects/digraph/digraph_catalogue.h"
#include "effects/graph/graph_catalogue.h"
#include "model/terms.h"
#include "network/sparse_digraph.h"
#include "network/sparse_graph.h"
#include "sampler/runs.h"

namespace {

using namespace vexa;

double cpu_seconds() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

double peak_megabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

// The edge (arc) parameter that holds the mean degree near 10 against the other terms' pull.
double density_parameter(int n) { return std::log(10.0 / (n - 1 - 10.0)) + 1.6; }

template <class Store>
std::vector<Term<Store>> four_effects() {
    std::vector<Term<Store>> terms;
    int32_t slot = 0;
    if constexpr (Store::kind == NetworkKind::graph) {
        for (const GraphEffect e :
             {GraphEffect::edge, GraphEffect::as, GraphEffect::at, GraphEffect::a2p})
            terms.push_back(structural_term<Store>(static_cast<int>(e), slot++, 2.0f));
    } else {
        for (const DigraphEffect e : {DigraphEffect::arc, DigraphEffect::reciprocity,
                                      DigraphEffect::at_t, DigraphEffect::a2p_t})
            terms.push_back(structural_term<Store>(static_cast<int>(e), slot++, 2.0f));
    }
    return terms;
}

template <class Store>
void measure(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    Rng rng;
    SeedSource seeds{.fixed = true, .base = 9};
    double start = cpu_seconds();
    Store full;
    if constexpr (Store::kind == NetworkKind::graph) {
        full = random_sparse_graph(n, int64_t{5} * n, rng, seeds);
    } else {
        full = random_sparse_digraph(n, int64_t{10} * n, rng, seeds);
    }
    state.counters["build_s"] = cpu_seconds() - start;
    state.counters["full_MB"] = held_bytes(full) / 1048576.0;
    const std::vector<Term<Store>> terms = four_effects<Store>();
    SamplerSettings settings;
    settings.proposal = Proposal::tie_no_tie;
    Store store = std::move(full);  // a task's chain copies; moved here to halve the peak
    keep_only(store, chain_keeps(terms, settings.proposal));
    state.counters["chain_MB"] = held_bytes(store) / 1048576.0;
    Chain<Store> chain = make_chain(store, terms, 4, settings, rng);
    const std::vector<double> theta{density_parameter(n),
                                    Store::kind == NetworkKind::graph ? 0.1 : 0.5, 0.1, -0.1};
    run_steps(chain, theta.data(), 2.0 * n);
    const double proposals = 4e6;
    double accepted = 0.0;
    double seconds = 0.0;
    for (auto _ : state) {
        start = cpu_seconds();
        for (double k = 0.0; k < proposals; k += 1.0) accepted += step(chain, theta.data());
        seconds = cpu_seconds() - start;
        state.SetIterationTime(seconds);
    }
    state.counters["proposals_per_s"] = proposals / seconds;
    state.counters["accepted_per_s"] = accepted / seconds;
    state.counters["peak_MB"] = peak_megabytes();
}

bool asked_by_name() {
    return benchmark::GetBenchmarkFilter().find("SparseScale") != std::string::npos;
}

void BM_SparseScaleGraph(benchmark::State& state) {
    if (!asked_by_name()) {
        state.SkipWithError("opt-in: --benchmark_filter=SparseScale");
        for (auto _ : state) {
        }
        return;
    }
    measure<SparseGraph>(state);
}

void BM_SparseScaleDigraph(benchmark::State& state) {
    if (!asked_by_name()) {
        state.SkipWithError("opt-in: --benchmark_filter=SparseScale");
        for (auto _ : state) {
        }
        return;
    }
    measure<SparseDigraph>(state);
}

void once(benchmark::internal::Benchmark* b) {
    b->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_SparseScaleGraph)->Arg(100000)->Arg(1000000)->Apply(once);
BENCHMARK(BM_SparseScaleDigraph)->Arg(100000)->Arg(1000000)->Apply(once);

}  // namespace
