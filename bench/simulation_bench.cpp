// A simulation as a researcher runs one: n = 1,000, mean degree 10, a sample every 10,000
// proposals with the degree and geodesic files on; and the descriptive work of one sample on
// its own, to set beside the 10,000 sampler steps between two samples.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "describe/graph_describe.h"
#include "effects/graph_catalogue.h"
#include "network/graph.h"
#include "sampler/graph_sampler.h"
#include "simulation/graph_simulation.h"

namespace {

using namespace vexa;

struct Setup {
    Model model = empty_model(NetworkKind::graph);
    std::vector<Term> terms;
    std::vector<double> parameters;
    Graph graph;
};

Setup alternating_setup(int n) {
    Setup s;
    for (const GraphEffect effect : {GraphEffect::edge, GraphEffect::as, GraphEffect::at, GraphEffect::a2p}) {
        EffectSetting& setting = s.model.structural[static_cast<size_t>(effect)];
        setting.slot = s.model.structural_included++;
        setting.lambda = graph_row(effect).lambda_default;
    }
    s.terms = graph_terms(s.model);
    const double density = 10.0 / (n - 1);
    s.parameters = {std::log(density / (1.0 - density)) + 1.6, 0.1, 0.1, -0.1};
    Rng rng;
    SeedSource seeds;
    seeds.fixed = true;
    seeds.base = 5;
    s.graph = random_graph(n, static_cast<int64_t>(5.0 * n), 4, 0, rng, seeds);
    compute_totals(s.graph, s.terms);
    return s;
}

void BM_Simulation(benchmark::State& state) {
    const int samples = static_cast<int>(state.range(0));
    const std::string dir = (std::filesystem::temp_directory_path() / "vexa_bench_simulation").string();
    std::filesystem::create_directories(dir);
    Setup s = alternating_setup(1000);
    GraphSampler sampler = make_graph_sampler(s.terms, 4, 9999, false, nullptr);
    SimulationOptions options;
    options.interval = 10000.0;
    options.proposals = options.interval * samples;
    options.degree_distribution = true;
    options.geodesic = true;
    SimulationFiles files;
    files.report = dir + "/simulation.txt";
    files.parameter = dir + "/parameter.txt";
    files.sample_prefix = dir + "/sample_statistics";
    files.accept = dir + "/accept.txt";
    files.degree_distribution = dir + "/degree_distribution.txt";
    files.geodesic_distribution = dir + "/geodesic_distribution.txt";
    files.geodesic_quartiles = dir + "/geodesic_quartiles.txt";
    Rng rng;
    SeedSource seeds;
    seeds.fixed = true;
    for (auto _ : state) {
        simulate_graph(s.graph, sampler, s.parameters, s.model, options, files, rng, seeds, nullptr);
    }
    state.counters["samples"] = samples;
    state.counters["proposals_per_s"] = benchmark::Counter(options.proposals, benchmark::Counter::kIsRate);
    std::filesystem::remove_all(dir);
}
BENCHMARK(BM_Simulation)->Arg(10000)->Iterations(1)->Unit(benchmark::kSecond);

// One sampling point's descriptive work: the geodesic pass and the degree and geodesic rows.
void BM_SampleDescription(benchmark::State& state) {
    Setup s = alternating_setup(1000);
    DescribeScratch scratch;
    FILE* sink = std::fopen("/dev/null", "w");
    for (auto _ : state) {
        geodesics(s.graph, scratch, false);
        write_degree_row(sink, s.graph);
        write_geodesic_row(sink, s.graph, scratch);
        write_quartile_row(sink, geodesic_quartiles(scratch));
    }
    std::fclose(sink);
}
BENCHMARK(BM_SampleDescription)->Unit(benchmark::kMillisecond);

// The 10,000 sampler steps between two samples.
void BM_StepsBetweenSamples(benchmark::State& state) {
    Setup s = alternating_setup(1000);
    GraphSampler sampler = make_graph_sampler(s.terms, 4, 9999, false, nullptr);
    Rng rng;
    rng.seed(9);
    for (auto _ : state) {
        for (int k = 0; k < 10000; ++k) toggle_step(s.graph, sampler, s.parameters.data(), rng);
    }
}
BENCHMARK(BM_StepsBetweenSamples)->Unit(benchmark::kMillisecond);

}  // namespace
