// Toggles per second on the graph store: an addition with its shared-partner update and the
// matching removal, on random graphs of mean degree 10.
#include <benchmark/benchmark.h>

#include <vector>

#include "network/graph.h"
#include "numeric/rng.h"

namespace {

vexa::Graph random_store(int n, double mean_degree) {
    vexa::Rng rng;
    vexa::SeedSource seeds;
    seeds.fixed = true;
    seeds.base = 42;
    return vexa::random_graph(n, static_cast<int64_t>(n * mean_degree / 2.0), rng, seeds);
}

// Bytes the store needs at the least: the n x n shared-partner matrix, the triangle
// histogram, the n x n bit matrix and the per-node arrays.
double model_bytes(int n) {
    const double nodes = n;
    return 4.0 * nodes * nodes + 4.0 * ((nodes - 2.0) * (nodes - 1.0) / 2.0 + 1.0) +
           nodes * nodes / 8.0 + nodes * 4.0 * 4.0;
}

// The bytes the store touches (its neighbour lists reserve more address space than this,
// untouched).
double held_bytes(const vexa::Graph& g) {
    auto bytes = [](const auto& v) { return static_cast<double>(v.size() * sizeof(v[0])); };
    return bytes(g.adjacency) + bytes(g.shared_partners) + bytes(g.degree_histogram) +
           bytes(g.degree) + bytes(g.shared_partner_histogram) + bytes(g.triangles) +
           bytes(g.triangle_histogram) + bytes(g.neighbour_lists);
}

void BM_TogglePair(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    vexa::Graph g = random_store(n, 10.0);
    // Pre-drawn non-edges, so the loop measures the store alone.
    vexa::Rng rng;
    rng.seed(7);
    std::vector<std::pair<int, int>> dyads;
    while (dyads.size() < 4096) {
        const int i = static_cast<int>(
            (static_cast<uint32_t>(rng.next()) << 15 | static_cast<uint32_t>(rng.next())) %
            static_cast<uint32_t>(n));
        const int j = static_cast<int>(
            (static_cast<uint32_t>(rng.next()) << 15 | static_cast<uint32_t>(rng.next())) %
            static_cast<uint32_t>(n));
        if (i != j && !vexa::has_edge(g, i, j)) dyads.emplace_back(i, j);
    }
    size_t k = 0;
    for (auto _ : state) {
        const auto [i, j] = dyads[k++ & 4095];
        vexa::add_edge(g, i, j);
        vexa::update_shared_partners(g, i, j, 1);
        vexa::remove_edge(g, i, j);
        vexa::update_shared_partners(g, i, j, 0);
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["store_MB"] = held_bytes(g) / 1e6;
    state.counters["model_MB"] = model_bytes(n) / 1e6;
}
BENCHMARK(BM_TogglePair)->Arg(1000)->Arg(5000);

}  // namespace
