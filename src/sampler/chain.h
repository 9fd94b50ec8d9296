#pragma once
// A Markov chain over networks of one store type: the network, the model's terms, the
// statistics vector the chain carries beside the network, the change vectors and workspace of
// its proposals, the sampler's settings and the run's generator. Estimation, simulation and
// goodness of fit run chains and read their statistics; nothing else of a chain's state lives
// anywhere else.
//
// A step proposes one change (a toggle of one dyad, or a move of one tie that keeps a count
// fixed), asks the combiner for the weighted change statistics, accepts with the
// Metropolis-Hastings probability, and on acceptance updates the store's bookkeeping and the
// statistics in place. A step allocates nothing and recounts nothing.

#include <cstdint>
#include <vector>

#include "effects/combiner.h"
#include "effects/term.h"
#include "network/dyad_mask.h"
#include "numeric/rng.h"

namespace vexa {

struct SamplerSettings {
    // Graphs: 1 the edge-preserving move, anything else the toggle. Digraphs: 1 the arc-count-
    // preserving swap, 2 the out-degree-preserving receiver move, anything else the toggle.
    int32_t variant = 0;
    int32_t max_degree = 9999;       // graphs: no tie is added at a node of this degree;
                                     // digraphs: the cap on out-degrees
    int32_t max_in_degree = 9999;    // digraphs: the cap on in-degrees
    const DyadMask* mask = nullptr;  // when set, only the dyads it allows may change
};

template <class Store>
struct Chain {
    Store* store = nullptr;
    const std::vector<Term<Store>>* terms = nullptr;
    SamplerSettings settings;
    Rng* rng = nullptr;
    std::vector<double> statistics;  // the current value of every statistic, by slot
    Workspace workspace;
    // Change statistics of a proposal, one entry per statistic, allocated once.
    std::vector<double> change_vector;
    std::vector<double> removal_changes;
    std::vector<double> addition_changes;

    int32_t statistic_count() const { return static_cast<int32_t>(statistics.size()); }
};

// A chain on `store` under `terms` with `statistic_count` statistics; its statistics are the
// store's totals. The store, the terms, the mask and the generator must outlive the chain.
template <class Store>
Chain<Store> make_chain(Store& store, const std::vector<Term<Store>>& terms,
                        int32_t statistic_count, const SamplerSettings& settings, Rng& rng) {
    Chain<Store> chain;
    chain.store = &store;
    chain.terms = &terms;
    chain.settings = settings;
    chain.rng = &rng;
    const auto count = static_cast<size_t>(statistic_count);
    chain.statistics.assign(count, 0.0);
    chain.change_vector.assign(count, 0.0);
    chain.removal_changes.assign(count, 0.0);
    chain.addition_changes.assign(count, 0.0);
    prepare_workspace(chain.workspace, terms);
    compute_totals(store, terms, chain.workspace, chain.statistics);
    return chain;
}

// Recounts the statistics from the store (after the store was changed from outside the chain).
template <class Store>
void recount(Chain<Store>& chain) {
    compute_totals(*chain.store, *chain.terms, chain.workspace, chain.statistics);
}

// The statistics the chain does not carry (counted afresh wherever a sample is read).
template <class Store>
void recount_uncarried(Chain<Store>& chain) {
    bool any = false;
    bool cliques = false;
    for (const Term<Store>& term : *chain.terms) {
        any = any || !term.carried;
        cliques = cliques || (!term.carried && term.clique_order > 0);
    }
    if (!any) return;
    if (cliques) prepare_totals(*chain.store, chain.workspace);
    for (const Term<Store>& term : *chain.terms) {
        if (!term.carried) {
            chain.statistics[static_cast<size_t>(term.slot)] =
                term.total(*chain.store, term, chain.workspace);
        }
    }
}

}  // namespace vexa
