#pragma once
// The steps that draw from the chain's tie list: the tie/no-tie proposal and, on graphs, the
// closure proposal.

#include <cmath>
#include <span>
#include <utility>

#include "sampler/step_support.h"

namespace vexa {

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

// Toggles (i, j) with the Metropolis-Hastings acceptance of a proposal that picks the dyad
// with probability pick(ties, present) from a network of `ties` listed ties, keeping the tie
// list current; 1 when accepted.
template <class Store, class Pick>
int toggle_listed(Chain<Store>& chain, const double* parameters, int i, int j, Pick&& pick) {
    Store& store = *chain.store;
    Rng& rng = *chain.rng;
    const double ties = static_cast<double>(chain.ties.size());
    const std::vector<Term<Store>>& terms = *chain.terms;
    double* changes = chain.change_vector.data();
    if (!has_tie(store, i, j)) {
        if (addition_capped(store, chain.settings, i, j)) return 0;
        const double s =
            change_statistics(store, terms, chain.workspace, parameters, changes, i, j, 1);
        const double forth = pick(ties, false);
        const double back = pick(ties + 1.0, true);
        if (!(rng.acceptance_uniform() < std::exp(s) * back / forth)) return 0;
        add_changes(chain, chain.change_vector, 1.0);
        add_tie(store, i, j);
        update_after_toggle(store, i, j, 1);
        chain.ties.add(dyad_key<Store>(i, j));
        check_after_step(chain);
        return 1;
    }
    remove_tie(store, i, j);
    const double s = change_statistics(store, terms, chain.workspace, parameters, changes, i, j, 0);
    const double forth = pick(ties, true);
    const double back = pick(ties - 1.0, false);
    if (!(rng.acceptance_uniform() < std::exp(-s) * back / forth)) {
        add_tie(store, i, j);  // the pair counts never changed
        return 0;
    }
    add_changes(chain, chain.change_vector, -1.0);
    update_after_toggle(store, i, j, 0);
    chain.ties.remove(dyad_key<Store>(i, j));
    check_after_step(chain);
    return 1;
}

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
    const Store& store = *chain.store;
    Rng& rng = *chain.rng;
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
    return chain_detail::toggle_listed(chain, parameters, i, j, [&](double t, bool present) {
        return chain_detail::pick_probability(chain, i, j, t, present);
    });
}

namespace chain_detail {

// The closure proposal's shares: a listed tie, a dyad closing a two-path, any dyad. Half of
// the proposals stay uniform so that removals are accepted as readily as under the tie/no-tie
// proposal (a removal's reverse move is mostly a uniform draw); measured on the school
// network, a quarter each for the other two mixed best of the shares tried.
inline constexpr double closure_listed_share = 0.25;
inline constexpr double closure_two_path_share = 0.25;
inline constexpr double closure_uniform_share = 0.5;
// The shares as cuts of the generator's 32,768 values, so that each is drawn exactly.
inline constexpr int32_t closure_listed_cut = 8192;
inline constexpr int32_t closure_two_path_cut = 16384;
static_assert(closure_listed_share * 32768 == closure_listed_cut &&
              (closure_listed_share + closure_two_path_share) * 32768 == closure_two_path_cut &&
              closure_listed_share + closure_two_path_share + closure_uniform_share == 1.0);

// The two-path draw's weight of the dyad {i, j}: the sum over its common neighbours k of
// 1 / (d_k - 1). Toggling {i, j} changes neither its common neighbours nor their degrees, so
// the weight is the same before and after the move.
template <class Store>
double two_path_weight(const Store& store, int i, int j) {
    std::span<const int32_t> walk = store.neighbours_of(i);
    int other = j;
    if (store.neighbours_of(j).size() < walk.size()) {
        walk = store.neighbours_of(j);
        other = i;
    }
    double sum = 0.0;
    for (const int32_t k : walk) {
        if (k != other && has_tie(store, k, other)) {
            sum += 1.0 / (store.degree[static_cast<size_t>(k)] - 1);
        }
    }
    return sum;
}

// The probability that the closure proposal picks a dyad of two-path weight `weight` from a
// network of `ties` ties, the dyad being one of them when `present`.
inline double closure_probability(double dyads, double ties, bool present, double weight) {
    const double uniform = closure_uniform_share / dyads;
    if (ties <= 0.0) return uniform;
    return uniform +
           (closure_listed_share * (present ? 1.0 : 0.0) + closure_two_path_share * weight) / ties;
}

// The dyad a closure proposal draws: a listed tie; or a two-path k's two ends, k the centre
// of a listed tie (either end, evenly) and the second end another neighbour of k drawn
// uniformly; or a uniform dyad. False when the draw proposes nothing (no ties yet, or a
// centre without another neighbour).
template <class Store>
bool draw_closure(const Chain<Store>& chain, Rng& rng, int& i, int& j) {
    const Store& store = *chain.store;
    const int32_t u = rng.next();
    if (u < closure_two_path_cut) {
        if (chain.ties.size() == 0) return false;
        const uint64_t key = chain.ties.at(
            static_cast<size_t>(rng.uniform(static_cast<int64_t>(chain.ties.size()))));
        i = TieList::first(key);
        j = TieList::second(key);
        if (u < closure_listed_cut) return true;
        int centre = j;
        if (rng.next() < 16384) std::swap(i, centre);
        const std::span<const int32_t> around = store.neighbours_of(centre);
        if (around.size() < 2) return false;
        const auto r = static_cast<size_t>(rng.uniform(static_cast<int64_t>(around.size() - 1)));
        j = around[r] == i ? around.back() : around[r];
        return true;
    }
    const int n = store.node_count;
    i = static_cast<int>(rng.uniform(n));
    j = i;
    while (j == i) j = static_cast<int>(rng.uniform(n));
    return true;
}

}  // namespace chain_detail

// One closure proposal (graphs, no constraint network); 1 when accepted. A quarter of the
// time it picks a listed tie, a quarter of the time a dyad that closes a two-path, otherwise
// a dyad drawn uniformly. On a clustered network the moves that make and break triangles are
// the ones a model with triangle effects turns on, and a uniform dyad almost never closes a
// two-path: on the school network under edge + AT + same grade, four to six times the
// tie/no-tie proposal's effective samples per second. The acceptance ratio carries
// q(back) / q(forth), both read from the same two-path weight.
template <class Store>
int closure_step(Chain<Store>& chain, const double* parameters) {
    int i = 0;
    int j = 0;
    if (!chain_detail::draw_closure(chain, *chain.rng, i, j)) return 0;
    const double weight = chain_detail::two_path_weight(*chain.store, i, j);
    const double dyads = chain.allowed_dyads;
    return chain_detail::toggle_listed(chain, parameters, i, j, [&](double t, bool present) {
        return chain_detail::closure_probability(dyads, t, present, weight);
    });
}

}  // namespace vexa
