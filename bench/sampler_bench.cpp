// Sampler proposals per second under edge + AS + AT + A2P (lambda 2) on random graphs of mean
// degree 10, and the wall time of the bundled example estimations.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "effects/graph/graph_catalogue.h"
#include "entry/run_driver.h"
#include "model/terms.h"
#include "network/graph.h"
#include "sampler/runs.h"
#include "school_model.h"

namespace {

using namespace vexa;

Model alternating_model() {
    Model model = empty_model(NetworkKind::graph);
    for (const GraphEffect effect :
         {GraphEffect::edge, GraphEffect::as, GraphEffect::at, GraphEffect::a2p}) {
        EffectSetting& setting = model.structural[static_cast<size_t>(effect)];
        setting.slot = model.structural_included++;
        setting.lambda = graph_about(effect).lambda_default;
    }
    return model;
}

// Parameters that keep a mean degree near 10: the structural ones about 0.1 in size, the
// edge parameter balancing their pull on the density.
std::vector<double> stable_parameters(int n) {
    const double density = 10.0 / (n - 1);
    return {std::log(density / (1.0 - density)) + 1.6, 0.1, 0.1, -0.1};
}

void BM_SamplerProposals(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const Model model = alternating_model();
    const std::vector<Term<Graph>> terms = make_terms<Graph>(model);
    const std::vector<double> parameters = stable_parameters(n);
    Rng rng;
    SeedSource seeds;
    seeds.fixed = true;
    seeds.base = 3;
    Graph g = random_graph(n, static_cast<int64_t>(5.0 * n), rng, seeds);
    Chain<Graph> chain = make_chain(g, terms, 4, SamplerSettings{}, rng);
    for (int k = 0; k < 20 * n; ++k) toggle_step(chain, parameters.data());  // settle
    double accepted = 0.0;
    for (auto _ : state) accepted += toggle_step(chain, parameters.data());
    state.SetItemsProcessed(state.iterations());
    state.counters["accepted"] = accepted / static_cast<double>(state.iterations());
    state.counters["mean_degree"] = 2.0 * g.edge_count / n;
}
BENCHMARK(BM_SamplerProposals)->Arg(1000)->Arg(5000);

// The school network (205 nodes, 203 ties) under edge + AT (lambda e^0.25) at its estimate,
// with and without the same-grade term: what a homophily term costs a proposal.
void BM_SchoolNetworkProposals(benchmark::State& state) {
    bench::SchoolModel school = bench::school_model(state.range(0) != 0);
    const std::vector<double>& parameters = school.parameters;
    const std::vector<Term<Graph>> terms = make_terms<Graph>(school.model);
    Rng rng;
    rng.seed(5);
    Graph& g = school.network;
    Chain<Graph> chain =
        make_chain(g, terms, static_cast<int>(parameters.size()), SamplerSettings{}, rng);
    double accepted = 0.0;
    for (auto _ : state) accepted += toggle_step(chain, parameters.data());
    state.SetItemsProcessed(state.iterations());
    state.counters["accepted"] = accepted / static_cast<double>(state.iterations());
}
BENCHMARK(BM_SchoolNetworkProposals)->ArgName("grade")->Arg(0)->Arg(1);

// The bundled example estimations, as the command line runs them.
void BM_ExampleEstimation(benchmark::State& state, const char* run_file) {
    const std::filesystem::path examples = VEXA_EXAMPLES_DIR;
    const std::filesystem::path saved = std::filesystem::current_path();
    std::filesystem::current_path(examples);
    std::filesystem::create_directories("out");
    FILE* quiet = std::fopen("/dev/null", "w");
    RunOptions options;
    options.fixed_seed = true;
    options.seed = 1;
    options.console = quiet;
    for (auto _ : state) run_entry(run_file, options);
    std::fclose(quiet);
    std::filesystem::current_path(saved);
}
BENCHMARK_CAPTURE(BM_ExampleEstimation, markov, "flomarriage_markov.txt")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ExampleEstimation, digraph, "samplike_estimation.txt")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ExampleEstimation, alternating, "flomarriage_alternating.txt")
    ->Unit(benchmark::kMillisecond);

}  // namespace
