#pragma once
// Networks drawn from a known model, for recovery tests: a long chain from a random start.

#include <cstdint>
#include <vector>

#include "model/model.h"
#include "model/terms.h"
#include "sampler/runs.h"

namespace vexa::testing {

struct TrueEffect {
    const char* name;  // as the run file names it
    double value;
    double lambda;
    int row;  // in the catalogue of the network kind
};

// One network of n nodes from the structural effects given, by 400 n^2 steps of the toggle from
// a random start of n ties.
template <class Store>
Store simulate_network(int n, const std::vector<TrueEffect>& truth, uint32_t seed) {
    Model model = empty_model(Store::kind);
    std::vector<double> parameters;
    for (const TrueEffect& t : truth) {
        EffectSetting& setting = model.structural[static_cast<size_t>(t.row)];
        setting.slot = model.structural_included++;
        setting.lambda = static_cast<float>(t.lambda);
        parameters.push_back(t.value);
    }
    const std::vector<Term<Store>> terms = make_terms<Store>(model);
    const int p = static_cast<int>(parameters.size());
    Rng rng;
    SeedSource seeds{true, seed, 0};
    Store network;
    if constexpr (Store::kind == NetworkKind::graph) {
        network = random_graph(n, n, rng, seeds);
    } else {
        network = random_digraph_by_count(n, n, rng, seeds);
    }
    Chain<Store> chain = make_chain(network, terms, p, SamplerSettings{}, rng);
    run_sampler(chain, parameters.data(), 400.0 * n * n, seeds);
    return network;
}

}  // namespace vexa::testing
