#pragma once
// The sampler steps of every store type: one proposal each, accepted or rejected.
//
// Random numbers: a node is drawn as draw mod n; every move is accepted when a 30-bit uniform
// u in [0, 1) lies below its acceptance probability p (so with probability p to within 2^-30,
// and never when p is not a number).

#include <bit>
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

namespace chain_detail {

// The dyad a tie/no-tie proposal draws: half the time a present tie from the list (on a
// digraph, the tie or, as often, its reverse arc), else any dyad the mask allows. `rng` is the
// chain's generator, or a copy of it when looking ahead. False when the reverse arc drawn is
// one the mask does not allow: the step then proposes nothing.
template <class Store>
bool draw_tie_no_tie(const Chain<Store>& chain, Rng& rng, int& i, int& j) {
    if (chain.ties.size() != 0 && rng.next() < 16384) {
        const uint64_t key = chain.ties.at(
            static_cast<size_t>(rng.uniform(static_cast<int64_t>(chain.ties.size()))));
        i = TieList::first(key);
        j = TieList::second(key);
        if constexpr (Store::kind == NetworkKind::digraph) {
            if (rng.next() < 16384) {
                std::swap(i, j);
                return allowed(chain.settings, i, j);
            }
        }
        return true;
    }
    const int n = chain.store->node_count;
    i = static_cast<int>(rng.uniform(n));
    j = i;
    if (chain.settings.mask == nullptr) {
        while (j == i) j = static_cast<int>(rng.uniform(n));
        return true;
    }
    while (j == i || !chain.settings.mask->allows(i, j)) {
        i = static_cast<int>(rng.uniform(n));
        j = static_cast<int>(rng.uniform(n));
    }
    return true;
}

// The probability that a tie/no-tie proposal picks the dyad (i, j) from a network of `ties`
// listed ties, the dyad being one of them when `present`: from the list (itself, or on a
// digraph as the reverse of a listed (j, i)), or from all dyads.
template <class Store>
double pick_probability(const Chain<Store>& chain, int i, int j, double ties, bool present) {
    if (ties <= 0.0) return 1.0 / chain.allowed_dyads;
    double from_list = present ? 1.0 : 0.0;
    if constexpr (Store::kind == NetworkKind::digraph) {
        const bool reverse_listed = has_tie(*chain.store, j, i) && allowed(chain.settings, j, i);
        from_list = 0.5 * (from_list + (reverse_listed ? 1.0 : 0.0));
    }
    return 0.5 * from_list / ties + 0.5 / chain.allowed_dyads;
}

// From this many nodes on, the pair counts of a dense store outgrow the processor's nearer
// caches and a tie/no-tie step asks for the next proposal's memory ahead. Below, the store's
// lines are at hand and drawing the next dyad twice costs more than it saves (measured: 5 to
// 10 % slower at 205 and 1,000 nodes, 10 % faster at 5,000).
inline constexpr int read_ahead_nodes = 2000;

}  // namespace chain_detail

// One tie/no-tie proposal; 1 when accepted. Half the time it proposes removing a tie drawn
// uniformly from the present ones, otherwise toggling a dyad drawn uniformly (exactly so: the
// ratio below assumes it); sparse networks then see removals as often as additions, where a
// plain toggle proposes almost only additions, most of them refused. On a digraph half of the
// ties drawn give way to their reverse arc, whose toggle reciprocates the tie or undoes a
// mutual dyad: under reciprocity such moves are the likely ones, and a uniform dyad almost
// never hits them (measured at 1,000 nodes: 15 % more effective samples per proposal). The
// acceptance ratio carries q(back) / q(forth), so the chain keeps the same stationary
// distribution as the toggle.
template <class Store>
int tie_no_tie_step(Chain<Store>& chain, const double* parameters) {
    Store& store = *chain.store;
    Rng& rng = *chain.rng;
    const double ties = static_cast<double>(chain.ties.size());
    int i = 0;
    int j = 0;
    if (!chain_detail::draw_tie_no_tie(chain, rng, i, j)) return 0;
    if (chain.settings.mask == nullptr && store.node_count >= chain_detail::read_ahead_nodes) {
        // The next proposal's dyad, from a copy of the generator as if this step draws its
        // uniform, asked for ahead as the toggle does; a hint only (this step may change the
        // tie list it is drawn from).
        Rng ahead = rng;
        ahead.acceptance_uniform();
        int next_i = 0;
        int next_j = 0;
        chain_detail::draw_tie_no_tie(chain, ahead, next_i, next_j);
        prefetch_dyad(store, next_i, next_j);
    }
    const std::vector<Term<Store>>& terms = *chain.terms;
    double* changes = chain.change_vector.data();
    if (!has_tie(store, i, j)) {
        if (chain_detail::addition_capped(store, chain.settings, i, j)) return 0;
        const double s =
            change_statistics(store, terms, chain.workspace, parameters, changes, i, j, 1);
        const double forth = chain_detail::pick_probability(chain, i, j, ties, false);
        const double back = chain_detail::pick_probability(chain, i, j, ties + 1.0, true);
        if (!(rng.acceptance_uniform() < std::exp(s) * back / forth)) return 0;
        chain_detail::add_changes(chain, chain.change_vector, 1.0);
        add_tie(store, i, j);
        update_after_toggle(store, i, j, 1);
        chain.ties.add(dyad_key<Store>(i, j));
        chain_detail::check_after_step(chain);
        return 1;
    }
    remove_tie(store, i, j);
    const double s = change_statistics(store, terms, chain.workspace, parameters, changes, i, j, 0);
    const double forth = chain_detail::pick_probability(chain, i, j, ties, true);
    const double back = chain_detail::pick_probability(chain, i, j, ties - 1.0, false);
    if (!(rng.acceptance_uniform() < std::exp(-s) * back / forth)) {
        add_tie(store, i, j);  // the pair counts never changed
        return 0;
    }
    chain_detail::add_changes(chain, chain.change_vector, -1.0);
    update_after_toggle(store, i, j, 0);
    chain.ties.remove(dyad_key<Store>(i, j));
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
        case Proposal::receiver_move:
            if constexpr (Store::kind == NetworkKind::digraph)
                return receiver_move_step(chain, parameters);
            break;
        case Proposal::toggle: break;
    }
    return toggle_step(chain, parameters);
}

}  // namespace vexa
