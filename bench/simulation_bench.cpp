// A simulation's two costs at n = 1,000, mean degree 10: the descriptive work of one sample
// (the geodesic pass and the degree and geodesic rows), beside the 10,000 sampler steps
// between two samples.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <vector>

#include "describe/graph_describe.h"
#include "effects/graph/graph_catalogue.h"
#include "model/terms.h"
#include "network/graph.h"
#include "report/descriptive_files.h"
#include "sampler/runs.h"

namespace {

using namespace vexa;

struct Setup {
    Model model = empty_model(NetworkKind::graph);
    std::vector<Term<Graph>> terms;
    std::vector<double> parameters;
    Graph graph;
};

Setup alternating_setup(int n) {
    Setup s;
    for (const GraphEffect effect :
         {GraphEffect::edge, GraphEffect::as, GraphEffect::at, GraphEffect::a2p}) {
        EffectSetting& setting = s.model.structural[static_cast<size_t>(effect)];
        setting.slot = s.model.structural_included++;
        setting.lambda = graph_about(effect).lambda_default;
    }
    s.terms = make_terms<Graph>(s.model);
    const double density = 10.0 / (n - 1);
    s.parameters = {std::log(density / (1.0 - density)) + 1.6, 0.1, 0.1, -0.1};
    Rng rng;
    SeedSource seeds;
    seeds.fixed = true;
    seeds.base = 5;
    s.graph = random_graph(n, static_cast<int64_t>(5.0 * n), rng, seeds);
    return s;
}

// One sampling point's descriptive work: the geodesic pass and the degree and geodesic rows.
void BM_SampleDescription(benchmark::State& state) {
    Setup s = alternating_setup(1000);
    DescribeScratch scratch;
    FILE* sink = std::fopen("/dev/null", "w");
    for (auto _ : state) {
        geodesics(s.graph, scratch);
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
    Rng rng;
    Chain<Graph> chain = make_chain(s.graph, s.terms, 4, SamplerSettings{}, rng);
    rng.seed(9);
    for (auto _ : state) {
        for (int k = 0; k < 10000; ++k) toggle_step(chain, s.parameters.data());
    }
}
BENCHMARK(BM_StepsBetweenSamples)->Unit(benchmark::kMillisecond);

}  // namespace
