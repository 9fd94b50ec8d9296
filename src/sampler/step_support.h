#pragma once
// What every sampler step shares: the statistics update of an accepted move, the bookkeeping
// check of checking builds, and the constraint and degree caps a proposal must respect.
//
// Random numbers: a node is drawn as draw mod n; every move is accepted when a 30-bit uniform
// u in [0, 1) lies below its acceptance probability p (so with probability p to within 2^-30,
// and never when p is not a number).

#include <cmath>
#include <string>

#include "base/errors.h"
#include "sampler/chain.h"

namespace vexa {

namespace chain_detail {

template <class Store>
void add_changes(Chain<Store>& chain, const std::vector<double>& changes, double sign) {
    double* statistics = chain.statistics.data();
    const int32_t count = chain.statistic_count();
    for (int32_t k = 0; k < count; ++k) statistics[k] += sign * changes[static_cast<size_t>(k)];
}

// With the bookkeeping check compiled in, every accepted step recounts the store and the
// statistics, so a fault shows at the step that made it.
template <class Store>
void check_after_step([[maybe_unused]] Chain<Store>& chain) {
#ifdef VEXA_CHECK_BOOKKEEPING
    const std::string fault = check_bookkeeping(*chain.store);
    if (!fault.empty()) throw VexaError("vexa: store bookkeeping fault: " + fault);
    std::vector<double> recounted(chain.statistics.size(), 0.0);
    compute_totals(*chain.store, *chain.terms, chain.workspace, recounted);
    for (const Term<Store>& term : *chain.terms) {
        if (!term.carried) continue;
        const size_t slot = static_cast<size_t>(term.slot);
        const double kept = chain.statistics[slot];
        if (std::fabs(kept - recounted[slot]) > 1e-6 * (1.0 + std::fabs(kept))) {
            throw VexaError(
                format_message("vexa: statistic %d drifted: %.9g carried, %.9g recounted",
                               term.slot, kept, recounted[slot]));
        }
    }
#endif
}

inline bool allowed(const SamplerSettings& settings, int i, int j) {
    return settings.mask == nullptr || settings.mask->allows(i, j);
}

// Whether the caps forbid adding (i, j). A graph refuses a tie at a node whose degree has
// reached the cap; a digraph refuses an arc from a node at the out-degree cap or to one at the
// in-degree cap, the caps tested for equality (fixed-choice designs cap nominations exactly).
template <class Store>
bool addition_capped(const Store& store, const SamplerSettings& settings, int i, int j) {
    if constexpr (Store::kind == NetworkKind::graph) {
        return store.degree[static_cast<size_t>(i)] >= settings.max_degree ||
               store.degree[static_cast<size_t>(j)] >= settings.max_degree;
    } else {
        return store.out_degree(i) == settings.max_degree ||
               store.in_degree(j) == settings.max_in_degree;
    }
}

}  // namespace chain_detail

}  // namespace vexa
