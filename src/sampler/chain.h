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
#include <memory>
#include <utility>
#include <vector>

#include "effects/combiner.h"
#include "effects/term.h"
#include "network/dyad_mask.h"
#include "network/missing_dyads.h"
#include "numeric/rng.h"
#include "sampler/tie_list.h"

namespace vexa {

// What a step proposes.
enum class Proposal : int32_t {
    toggle,         // one dyad, drawn uniformly, changes
    swap,           // a tie moves to a non-tie: the number of ties stays
    receiver_move,  // digraphs: an arc moves to another receiver of its sender (out-degrees stay)
    tie_no_tie,     // a present tie half of the time, else any dyad: fast on sparse networks
    closure,        // graphs: a present tie, a dyad closing a two-path, or any dyad
    // A dyad not observed, drawn uniformly, changes: the chain of a network given its observed
    // dyads (the settings name the missing dyads).
    missing_toggle,
};

// The proposal a sampler code (of a run file or a command line) selects for a network kind:
// 1 the swap, 2 on a digraph the receiver move, 3 the tie/no-tie proposal, 4 on a graph the
// closure proposal, anything else the toggle (a graph has no receiver move, so its code 2 is
// the toggle; a digraph has no closure proposal, so its code 4 is the tie/no-tie proposal).
Proposal proposal_of(int32_t code, NetworkKind kind);

// The proposal's name for a kind: "toggle", "edge swap" or "arc swap", "receiver move",
// "tie/no-tie", "closure".
const char* proposal_name(Proposal proposal, NetworkKind kind);

struct SamplerSettings {
    Proposal proposal = Proposal::toggle;
    int32_t max_degree = 9999;              // graphs: no tie is added at a node of this degree;
                                            // digraphs: the cap on out-degrees
    int32_t max_in_degree = 9999;           // digraphs: the cap on in-degrees
    const DyadMask* mask = nullptr;         // when set, only the dyads it allows may change
    const MissingDyads* missing = nullptr;  // the missing-dyad toggle's dyads
};

template <class Store>
struct Chain {
    Store* store = nullptr;
    const std::vector<Term<Store>>* terms = nullptr;
    SamplerSettings settings;
    Rng* rng = nullptr;
    NodeDraw draw_node;              // node draws of the store's size
    std::vector<double> statistics;  // the current value of every statistic, by slot
    Workspace workspace;
    // Change statistics of a proposal, one entry per statistic, allocated once.
    std::vector<double> change_vector;
    std::vector<double> removal_changes;
    std::vector<double> addition_changes;
    // The tie/no-tie proposal's removable ties (the ties of dyads the mask allows) and the number
    // of dyads it may toggle.
    TieList ties;
    double allowed_dyads = 0.0;

    int32_t statistic_count() const { return static_cast<int32_t>(statistics.size()); }
};

// The key of a dyad in the tie list: a graph's dyads are unordered.
template <class Store>
uint64_t dyad_key(int i, int j) {
    if constexpr (Store::kind == NetworkKind::graph) {
        if (i > j) std::swap(i, j);
    }
    return TieList::key(i, j);
}

// Whether a proposal draws from the chain's tie list.
inline bool lists_ties(Proposal proposal) {
    return proposal == Proposal::tie_no_tie || proposal == Proposal::closure;
}

// Fills the tie list from the store (for the proposals that draw from it only).
template <class Store>
void list_ties(Chain<Store>& chain) {
    if (!lists_ties(chain.settings.proposal)) return;
    const Store& store = *chain.store;
    const double n = store.node_count;
    const DyadMask* mask = chain.settings.mask;
    chain.allowed_dyads = mask != nullptr ? static_cast<double>(mask->allowed_count)
                          : Store::kind == NetworkKind::graph ? n * (n - 1.0) / 2.0
                                                              : n * (n - 1.0);
    chain.ties.clear();
    chain.ties.reserve(static_cast<size_t>(2 * tie_count(store)) + 64);
    for_each_tie(store, [&](int i, int j) {
        if (mask == nullptr || mask->allows(i, j)) chain.ties.add(dyad_key<Store>(i, j));
    });
}

// A chain on `store` under `terms` with `statistic_count` statistics; its statistics are the
// store's totals. The store, the terms, the mask and the generator must outlive the chain.
template <class Store>
Chain<Store> make_chain(Store& store, const std::vector<Term<Store>>& terms,
                        int32_t statistic_count, const SamplerSettings& settings, Rng& rng) {
    Chain<Store> chain;
    chain.store = &store;
    chain.terms = &terms;
    chain.settings = settings;
    // A digraph has no closure proposal, and a constraint network would leave ties out of the
    // list its two-path draws start from: such chains take the tie/no-tie proposal.
    if (settings.proposal == Proposal::closure &&
        (Store::kind != NetworkKind::graph || settings.mask != nullptr))
        chain.settings.proposal = Proposal::tie_no_tie;
    chain.rng = &rng;
    chain.draw_node = NodeDraw::of(store.node_count);
    const auto count = static_cast<size_t>(statistic_count);
    // Each vector written at every step ends a cache line (8 doubles) before whatever is
    // allocated next: chains side by side would otherwise write to one line from two cores.
    for (std::vector<double>* v : {&chain.statistics, &chain.change_vector, &chain.removal_changes,
                                   &chain.addition_changes}) {
        v->reserve(count + 8);
        v->assign(count, 0.0);
    }
    prepare_workspace(chain.workspace, terms);
    compute_totals(store, terms, chain.workspace, chain.statistics);
    list_ties(chain);
    return chain;
}

// Recounts the statistics from the store (after the store was changed from outside the chain).
template <class Store>
void recount(Chain<Store>& chain) {
    compute_totals(*chain.store, *chain.terms, chain.workspace, chain.statistics);
    list_ties(chain);
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

// The model statistics of a network, one per slot.
template <class Store>
std::vector<double> statistics_of(const Store& store, const std::vector<Term<Store>>& terms,
                                  int32_t count) {
    std::vector<double> statistics(static_cast<size_t>(count), 0.0);
    Workspace workspace;
    prepare_workspace(workspace, terms);
    compute_totals(store, terms, workspace, statistics);
    return statistics;
}

// The counts a chain's store keeps: what its terms need, and what saves them work where that
// pays. The toggle and the count-keeping moves refuse most proposals, so a count that spares
// every proposal a walk is worth its upkeep on the few accepted; the proposals that draw from
// the tie list accept most of their own (measured at 1,000 nodes under arc, reciprocity, AT-T and
// A2P-T: the toggle 18 % slower without AT-T's helping counts, the tie/no-tie proposal faster).
template <class Store>
Bookkeeping chain_keeps(const std::vector<Term<Store>>& terms, Proposal proposal) {
    const Bookkeeping needs = needs_of(terms);
    return lists_ties(proposal) ? needs : needs | helps_of(terms);
}

// What every chain of a task starts from: the observed network (a simulation's random start),
// the model's terms and the sampler's settings, with the constraint they point at.
template <class Store>
struct ChainSetup {
    Store observed;
    std::vector<Term<Store>> terms;
    std::unique_ptr<DyadMask> mask;
    MissingDyads missing;  // of the observed network; the sampler's settings point at it
    SamplerSettings sampler;
    // The counts a chain's store keeps: the terms' needs, or everything when the task reads its
    // samples' counts (descriptive files). The observed network keeps everything.
    Bookkeeping keeps = Bookkeeping::all;

    // A copy of the observed network for a chain, keeping only what the chain reads.
    Store chain_store() const {
        Store store = observed;
        keep_only(store, keeps);
        return store;
    }

    // A chain of `count` statistics on `store` (the observed network or a copy of it).
    Chain<Store> chain_on(Store& store, int32_t count, Rng& rng) const {
        return make_chain(store, terms, count, sampler, rng);
    }
};

}  // namespace vexa
