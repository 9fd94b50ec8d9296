#pragma once
// Taking the missing dyads of an observed network into a task's setup: from the reader's notes
// (a network file's "NA" and "." cells, a tie list's *Missing section) or from a host's matrix
// (NaN cells), with the refusals of settings that cannot take them.

#include <cmath>
#include <cstdint>
#include <vector>

#include "base/errors.h"
#include "base/matrix_text.h"
#include "entry/run_context.h"
#include "network/missing_dyads.h"
#include "sampler/chain.h"

namespace vexa {

// The missing dyads of a host's n x n matrix: its NaN cells (a graph's above the diagonal).
inline std::vector<uint64_t> missing_in_matrix(const std::vector<double>& adjacency, int n,
                                               NetworkKind kind) {
    std::vector<uint64_t> keys;
    for (int a = 0; a < n; ++a) {
        for (int b = kind == NetworkKind::graph ? a + 1 : 0; b < n; ++b) {
            const double value =
                adjacency[static_cast<size_t>(a) * static_cast<size_t>(n) + static_cast<size_t>(b)];
            if (a != b && std::isnan(value)) keys.push_back(missing_key(a, b));
        }
    }
    return keys;
}

namespace missing_detail {

// The settings under which missing dyads cannot be drawn; throws SettingError naming them.
void refuse_settings(const RunContext& context, Proposal proposal, NetworkKind kind);

// Throws InputFileError when no dyad the sampler may change was observed.
void refuse_all_missing(const RunContext& context, int64_t missing, double dyads);

// One line on the console: how many dyads are missing and what the task does with them.
void say_missing(const RunContext& context, int64_t missing, double dyads);

}  // namespace missing_detail

// Takes the missing dyads the reader noted, or those of the host's matrix, into the setup (after
// its mask is read): the dyads the mask fixes stay as observed, the others are imputed absent
// to start with, and the sampler's settings point at them. A simulation reads no network and
// has none.
template <class Store>
void take_missing(const RunContext& context, ChainSetup<Store>& setup,
                  std::vector<uint64_t> noted) {
    if (context.settings.task == Task::simulation) return;
    if (context.adjacency != nullptr)
        noted = missing_in_matrix(*context.adjacency, setup.observed.node_count, Store::kind);
    if (noted.empty()) return;
    setup.missing = missing_dyads_of(std::move(noted), Store::kind, setup.mask.get());
    const double dyads = setup.mask != nullptr ? static_cast<double>(setup.mask->allowed_count)
                                               : dyad_count(setup.observed.node_count, Store::kind);
    missing_detail::refuse_all_missing(context, setup.missing.count(), dyads);
    if (setup.missing.empty()) return;
    missing_detail::refuse_settings(context, setup.sampler.proposal, Store::kind);
    for (const uint64_t key : setup.missing.keys) {
        const int i = MissingDyads::first(key), j = MissingDyads::second(key);
        if (!has_tie(setup.observed, i, j)) continue;
        remove_tie(setup.observed, i, j);
        update_after_toggle(setup.observed, i, j, 0);
    }
    setup.sampler.missing = &setup.missing;
    missing_detail::say_missing(context, setup.missing.count(), dyads);
}

}  // namespace vexa
