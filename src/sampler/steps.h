#pragma once
// The sampler steps of every store type: one proposal each, accepted or rejected, and the
// dispatch to the chain's proposal.

#include <cmath>

#include "sampler/step_support.h"
#include "sampler/tie_steps.h"

namespace vexa {

// The toggle of dyad (i, j), accepted with the Metropolis probability; 1 when accepted.
template <class Store>
int toggle_dyad(Chain<Store>& chain, const double* parameters, int i, int j) {
    Store& store = *chain.store;
    Rng& rng = *chain.rng;
    const std::vector<Term<Store>>& terms = *chain.terms;
    double* changes = chain.change_vector.data();
    if (!has_tie(store, i, j)) {
        if (chain_detail::addition_capped(store, chain.settings, i, j)) return 0;
        const double s =
            change_statistics(store, terms, chain.workspace, parameters, changes, i, j, 1);
        if (!(rng.acceptance_uniform() < std::exp(s))) return 0;
        chain_detail::add_changes(chain, chain.change_vector, 1.0);
        add_tie(store, i, j);
        update_after_toggle(store, i, j, 1);
        chain_detail::check_after_step(chain);
        return 1;
    }
    remove_tie(store, i, j);
    const double s = change_statistics(store, terms, chain.workspace, parameters, changes, i, j, 0);
    if (!(rng.acceptance_uniform() < std::exp(-s))) {
        add_tie(store, i, j);  // the pair counts never changed
        return 0;
    }
    chain_detail::add_changes(chain, chain.change_vector, -1.0);
    update_after_toggle(store, i, j, 0);
    chain_detail::check_after_step(chain);
    return 1;
}

// One toggle of one dyad; 1 when accepted.
template <class Store>
int toggle_step(Chain<Store>& chain, const double* parameters) {
    Store& store = *chain.store;
    Rng& rng = *chain.rng;
    const NodeDraw& draw = chain.draw_node;
    int i = draw(rng);
    int j = i;
    if (chain.settings.mask == nullptr) {
        while (j == i) j = draw(rng);
        // The next proposal's dyad, from a copy of the generator as if this step draws its
        // uniform: its store entries load while this step computes, so a chain waits for memory
        // once a step instead of twice. A hint only; a step that draws otherwise (a capped one,
        // or a next dyad drawn twice) asks for lines nobody reads.
        Rng ahead = rng;
        ahead.acceptance_uniform();
        const int next_i = draw(ahead);
        prefetch_dyad(store, next_i, draw(ahead));
    } else {
        while (j == i || !chain.settings.mask->allows(i, j)) {
            i = draw(rng);
            j = draw(rng);
        }
    }
    return toggle_dyad(chain, parameters, i, j);
}

// One toggle of a missing dyad, drawn uniformly from the settings' list; 1 when accepted.
// The draw is symmetric, so the Metropolis ratio alone decides.
template <class Store>
int missing_toggle_step(Chain<Store>& chain, const double* parameters) {
    const std::vector<uint64_t>& keys = chain.settings.missing->keys;
    const uint64_t key =
        keys[static_cast<size_t>(chain.rng->uniform(static_cast<int64_t>(keys.size())))];
    return toggle_dyad(chain, parameters, MissingDyads::first(key), MissingDyads::second(key));
}

// One move of a tie to a non-tie, keeping the number of ties; 1 when accepted.
template <class Store>
int swap_step(Chain<Store>& chain, const double* parameters) {
    Store& store = *chain.store;
    if (tie_count(store) < 2) return 0;
    Rng& rng = *chain.rng;
    const NodeDraw& draw = chain.draw_node;
    const SamplerSettings& settings = chain.settings;
    int a = 0, b = 0, e = 0, f = 0;
    while (true) {
        if (settings.mask == nullptr) {
            a = draw(rng);
            e = draw(rng);
            b = draw(rng);
            f = draw(rng);
        } else {
            b = draw(rng);
            f = draw(rng);
            a = draw(rng);
            e = draw(rng);
        }
        if (a == b || e == f) continue;
        if (has_tie(store, a, b) == has_tie(store, e, f)) continue;
        if (settings.mask != nullptr &&
            (!chain_detail::allowed(settings, a, b) || !chain_detail::allowed(settings, e, f))) {
            continue;
        }
        break;
    }
    // (r, s) is the tie to move, (t, w) the non-tie it moves to.
    int r = a, s = b, t = e, w = f;
    if (!has_tie(store, a, b)) {
        r = e;
        s = f;
        t = a;
        w = b;
    }
    const std::vector<Term<Store>>& terms = *chain.terms;
    remove_tie(store, r, s);
    const double s_remove = change_statistics(store, terms, chain.workspace, parameters,
                                              chain.removal_changes.data(), r, s, 0);
    update_after_toggle(store, r, s, 0);
    const double s_add = change_statistics(store, terms, chain.workspace, parameters,
                                           chain.addition_changes.data(), t, w, 1);
    const double p = std::exp(s_add - s_remove);
    const bool rejected = !(rng.acceptance_uniform() < p);
    if (rejected) {
        add_tie(store, r, s);
        update_after_toggle(store, r, s, 1);
        return 0;
    }
    double* statistics = chain.statistics.data();
    for (int32_t k = 0; k < chain.statistic_count(); ++k) {
        statistics[k] += chain.addition_changes[static_cast<size_t>(k)] -
                         chain.removal_changes[static_cast<size_t>(k)];
    }
    add_tie(store, t, w);
    update_after_toggle(store, t, w, 1);
    chain_detail::check_after_step(chain);
    return 1;
}

// One move of an arc of a sender to another receiver, keeping every out-degree; 1 when
// accepted (digraphs only). Fixed-choice designs, where each node names a set number of
// others, condition on exactly these degrees.
template <class Store>
int receiver_move_step(Chain<Store>& chain, const double* parameters) {
    Store& store = *chain.store;
    Rng& rng = *chain.rng;
    const NodeDraw& draw = chain.draw_node;
    const SamplerSettings& settings = chain.settings;
    int s = 0, r1 = 0, r2 = 0;
    while (true) {
        s = draw(rng);
        r1 = draw(rng);
        r2 = draw(rng);
        if (store.out_degree(s) < 2 || s == r1 || s == r2 || r1 == r2) continue;
        if (has_tie(store, s, r1) == has_tie(store, s, r2)) continue;
        if (settings.mask != nullptr &&
            (!chain_detail::allowed(settings, s, r1) || !chain_detail::allowed(settings, s, r2))) {
            continue;
        }
        break;
    }
    const int old_receiver = has_tie(store, s, r1) ? r1 : r2;
    const int new_receiver = old_receiver == r1 ? r2 : r1;
    const std::vector<Term<Store>>& terms = *chain.terms;
    remove_tie(store, s, old_receiver);
    const double s1 = change_statistics(store, terms, chain.workspace, parameters,
                                        chain.removal_changes.data(), s, old_receiver, 0);
    update_after_toggle(store, s, old_receiver, 0);
    const double s2 = change_statistics(store, terms, chain.workspace, parameters,
                                        chain.addition_changes.data(), s, new_receiver, 1);
    if (!(rng.acceptance_uniform() < std::exp(s2 - s1))) {
        add_tie(store, s, old_receiver);
        update_after_toggle(store, s, old_receiver, 1);
        return 0;
    }
    double* statistics = chain.statistics.data();
    for (int32_t k = 0; k < chain.statistic_count(); ++k) {
        statistics[k] += chain.addition_changes[static_cast<size_t>(k)] -
                         chain.removal_changes[static_cast<size_t>(k)];
    }
    add_tie(store, s, new_receiver);
    update_after_toggle(store, s, new_receiver, 1);
    chain_detail::check_after_step(chain);
    return 1;
}

// The step of the chain's proposal.
template <class Store>
inline int step(Chain<Store>& chain, const double* parameters) {
    switch (chain.settings.proposal) {
        case Proposal::swap: return swap_step(chain, parameters);
        case Proposal::tie_no_tie: return tie_no_tie_step(chain, parameters);
        case Proposal::closure:  // graphs without a constraint only (see make_chain)
            if constexpr (Store::kind == NetworkKind::graph) return closure_step(chain, parameters);
            break;
        case Proposal::receiver_move:
            if constexpr (Store::kind == NetworkKind::digraph)
                return receiver_move_step(chain, parameters);
            break;
        case Proposal::missing_toggle: return missing_toggle_step(chain, parameters);
        case Proposal::toggle: break;
    }
    return toggle_step(chain, parameters);
}

}  // namespace vexa
