// Change-statistics evaluations per second on random graphs of mean degree 10, as a sampler
// asks for them: random dyads, half of them present edges evaluated in the removal state
// (adjacency and degrees without the edge, shared partners and triangles still with it).
#include <benchmark/benchmark.h>

#include <utility>
#include <vector>

#include "effects/combiner.h"
#include "effects/graph/graph_catalogue.h"
#include "model/model.h"
#include "model/terms.h"
#include "network/graph.h"
#include "numeric/rng.h"

namespace {

using vexa::GraphEffect;

struct Setup {
    vexa::Graph graph;
    std::vector<vexa::Term<vexa::Graph>> terms;
    vexa::Workspace workspace;
    std::vector<double> parameters;
    std::vector<std::pair<int, int>> dyads;
};

Setup make_setup(int n, const std::vector<GraphEffect>& effects, float lambda) {
    vexa::Rng rng;
    vexa::SeedSource seeds;
    seeds.fixed = true;
    seeds.base = 7;
    Setup s;
    const int count = static_cast<int>(effects.size());
    s.graph = vexa::random_graph(n, int64_t{5} * n, rng, seeds);
    vexa::Model model = vexa::empty_model(vexa::NetworkKind::graph);
    for (int k = 0; k < count; ++k) {
        vexa::EffectSetting& setting =
            model.structural[static_cast<size_t>(effects[static_cast<size_t>(k)])];
        setting.slot = k;
        setting.lambda = lambda;
        s.parameters.push_back(k == 0 ? -4.0 : 0.3 + 0.1 * k);
    }
    model.structural_included = count;
    s.terms = vexa::make_terms<vexa::Graph>(model);
    vexa::prepare_workspace(s.workspace, s.terms);

    std::vector<std::pair<int, int>> edges;
    for (int u = 0; u < n; ++u) {
        for (int w = 0; w < s.graph.row_words; ++w) {
            vexa::for_each_bit(s.graph.row(u)[w], w * 64, [&](int v) {
                if (u < v) edges.emplace_back(u, v);
            });
        }
    }
    const auto draw = [&](int below) { return (rng.next() * 32768 + rng.next()) % below; };
    while (s.dyads.size() < 8192) {
        if (s.dyads.size() % 2 == 0) {
            const int i = draw(n), j = draw(n);
            if (i != j) s.dyads.emplace_back(i, j);
        } else {
            s.dyads.push_back(edges[static_cast<size_t>(draw(static_cast<int>(edges.size())))]);
        }
    }
    return s;
}

void evaluate(benchmark::State& state, Setup& s) {
    std::vector<double> changes(s.parameters.size(), 0.0);
    size_t k = 0;
    double sink = 0.0;
    for (auto _ : state) {
        const auto [i, j] = s.dyads[k++ & 8191];
        if (vexa::has_edge(s.graph, i, j)) {
            vexa::remove_edge(s.graph, i, j);
            sink += vexa::change_statistics(s.graph, s.terms, s.workspace, s.parameters.data(),
                                            changes.data(), i, j, 0);
            vexa::add_edge(s.graph, i, j);  // rejected: the partner data never changed
        } else {
            sink += vexa::change_statistics(s.graph, s.terms, s.workspace, s.parameters.data(),
                                            changes.data(), i, j, 1);
        }
    }
    benchmark::DoNotOptimize(sink);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}

void BM_EdgeStarTriangle(benchmark::State& state) {
    Setup s = make_setup(static_cast<int>(state.range(0)),
                         {GraphEffect::edge, GraphEffect::star2, GraphEffect::triangle}, 0.0f);
    evaluate(state, s);
}

void BM_EdgeAlternating(benchmark::State& state) {
    Setup s =
        make_setup(static_cast<int>(state.range(0)),
                   {GraphEffect::edge, GraphEffect::as, GraphEffect::at, GraphEffect::a2p}, 2.0f);
    evaluate(state, s);
}

// The alternating clique effect, counting cliques up to 8 nodes.
void BM_EdgeAlternatingCliques(benchmark::State& state) {
    Setup s =
        make_setup(static_cast<int>(state.range(0)), {GraphEffect::edge, GraphEffect::ac}, 2.0f);
    evaluate(state, s);
}

}  // namespace

BENCHMARK(BM_EdgeStarTriangle)->Arg(1000)->Arg(5000);
BENCHMARK(BM_EdgeAlternating)->Arg(1000)->Arg(5000);
BENCHMARK(BM_EdgeAlternatingCliques)->Arg(1000)->Arg(5000);
