#pragma once
// The K chains of a task that draws from several: each on its own copy of the network, with
// its own generator and its own seeds. Chain k's seeds derive from (base, k) by the hash of
// the run's reseeds, the base being one seeding of the run: the chains' streams differ from
// one another and from every other stream of the run, and the same base repeats them.
//
// Work is dealt round-robin: the task's i-th piece (a sample, a parameter set, a draw) goes to
// chain i mod K as that chain's piece i / K, so each chain's pieces keep their order and a
// piece's place in the task's results depends on K alone.

#include <cmath>
#include <cstdint>
#include <deque>
#include <vector>

#include "network/bookkeeping.h"
#include "numeric/matrix.h"
#include "numeric/rng.h"
#include "sampler/chain.h"
#include "sampler/runs.h"
#include "sampler/side_by_side.h"

namespace vexa {

// A value alone on its cache lines: chains that run side by side write their generator and
// their store's counters at every step, and two chains sharing a line would make the cores
// pass it back and forth (measured: two threads no faster than one).
template <class T>
struct alignas(64) Alone {
    T value;
};

template <class Store>
struct ChainSet {
    // Deques: a chain's pointers stay valid as chains are added.
    std::deque<Alone<Store>> stores;
    std::deque<Alone<Rng>> rngs;
    std::deque<Alone<Chain<Store>>> owned;
    std::vector<SeedSource> seeds;      // chain k's
    std::vector<Chain<Store>*> chains;  // chain k, owned here or lent by the caller

    int32_t count() const { return static_cast<int32_t>(chains.size()); }
    Chain<Store>& operator[](int32_t k) { return *chains[static_cast<size_t>(k)]; }
};

// The seeds of chain k of chains whose base is `base`.
inline SeedSource chain_seeds(uint32_t base, int32_t k) {
    SeedSource seeds;
    seeds.fixed = true;
    seeds.base = SeedSource::stream_seed(base, static_cast<uint32_t>(k));
    return seeds;
}

// Adds a chain under `terms` and `sampler` on a copy of `from` that keeps `keep` of its counts.
template <class Store>
void add_chain(ChainSet<Store>& set, const std::vector<Term<Store>>& terms,
               const SamplerSettings& sampler, const Store& from, Bookkeeping keep,
               int32_t statistic_count, uint32_t base) {
    Store& store = set.stores.emplace_back(Alone<Store>{from}).value;
    keep_only(store, keep);
    Rng& rng = set.rngs.emplace_back().value;
    set.seeds.push_back(chain_seeds(base, set.count()));
    set.chains.push_back(&set.owned
                              .emplace_back(Alone<Chain<Store>>{
                                  make_chain(store, terms, statistic_count, sampler, rng)})
                              .value);
}

// Adds `chain`, which the caller keeps, as the set's next chain.
template <class Store>
void lend_chain(ChainSet<Store>& set, Chain<Store>& chain, uint32_t base) {
    set.seeds.push_back(chain_seeds(base, set.count()));
    set.chains.push_back(&chain);
}

// How many of `pieces` pieces dealt round-robin fall to chain k of `chains`.
inline int64_t pieces_of(int64_t pieces, int32_t chains, int32_t k) {
    return pieces > k ? (pieces - k + chains - 1) / chains : 0;
}

// Runs `steps` steps of `chain`, counting them out to the relay in pieces. Returns the number
// accepted.
template <class Store>
double run_steps_relayed(Chain<Store>& chain, const double* parameters, double steps,
                         Relay& relay) {
    constexpr double piece = 65536.0;
    double accepted = 0.0;
    double done = 0.0;
    while (steps - done > piece) {
        accepted += run_steps(chain, parameters, piece);
        done += piece;
        relay.advance(static_cast<uint64_t>(piece));
    }
    accepted += run_steps(chain, parameters, steps - done);
    if (steps > done) relay.advance(static_cast<uint64_t>(std::ceil(steps - done)));
    return accepted;
}

// Burns in each of this process's chains of the set from a fresh seed of its own: chain k for
// burn_in(k) steps.
template <class Store, class BurnIn>
void burn_in_chains(ChainSet<Store>& set, const ChainPlan& plan, const double* theta, Relay& relay,
                    BurnIn&& burn_in) {
    run_rounds(plan, 1, relay, [&](int32_t k, int32_t) {
        if (!plan.cluster.owns(k)) return;
        Chain<Store>& chain = set[k];
        set.seeds[static_cast<size_t>(k)].reseed(*chain.rng);
        run_steps_relayed(chain, theta, burn_in(k), relay);
    });
}

// Rows first .. first + count - 1 of draws dealt round-robin over the set's chains: row i from
// chain i mod K, which takes `steps` steps before each of its draws, so each chain's draws keep
// their order. Each process runs its own chains; the others' rows come in by the sum over the
// processes. `each(k, chain)` is called after every draw.
template <class Store, class Each>
Matrix draw_rows(ChainSet<Store>& set, const ChainPlan& plan, const double* theta, int first,
                 int count, double steps, int columns, Relay& relay, Each&& each) {
    const int32_t K = set.count();
    Matrix rows = make_matrix(std::max(count, 0), columns, 0.0);
    run_rounds(plan, 1, relay, [&](int32_t k, int32_t) {
        if (!plan.cluster.owns(k)) return;
        Chain<Store>& chain = set[k];
        const int start = first + ((k - first % K) % K + K) % K;
        for (int i = start; i < first + count; i += K) {
            run_steps_relayed(chain, theta, steps, relay);
            each(k, chain);
            for (int l = 0; l < columns; ++l)
                rows[i - first][l] = chain.statistics[static_cast<size_t>(l)];
        }
    });
    cluster_sum(plan.cluster, rows.data);
    return rows;
}

// Adds `chain` (the caller's) and K - 1 chains on copies of its network, their seeds from one
// seeding of the run.
template <class Store>
void chains_from(ChainSet<Store>& set, Chain<Store>& chain, int32_t K, SeedSource& seeds) {
    const uint32_t base = seeds.next_seed();
    lend_chain(set, chain, base);
    for (int32_t k = 1; k < K; ++k) {
        add_chain(set, *chain.terms, chain.settings, *chain.store, chain.store->kept,
                  chain.statistic_count(), base);
    }
}

}  // namespace vexa
