// The samplers of both network kinds: the acceptance rule at its edges; a rejected move leaves
// the store and the statistics exactly as they were; long chains of every proposal keep their
// statistics equal to a recount, keep what their moves preserve and never touch the heap; the
// degree caps and the mask are honoured; proposals that could never be found are refused.

#include "sampler/feasibility.h"
#include "sampler/runs.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <new>
#include <vector>

#include "base/errors.h"
#include "model/model.h"
#include "model/terms.h"
#include "support/kinds.h"

// A sampler step must not touch the heap: this program's operator new counts its calls. Not
// in the sanitizer build, whose runtime owns the allocator and whose per-step recount
// allocates on purpose.
#if defined(__SANITIZE_ADDRESS__) || defined(VEXA_CHECK_BOOKKEEPING)
#define VEXA_COUNT_ALLOCATIONS 0
#else
#define VEXA_COUNT_ALLOCATIONS 1
namespace {
std::atomic<long> allocation_count{0};
}
// The replacements below hand out malloc's memory, so free is the matching release; the
// compiler cannot see that pairing once the chain's code is inlined here.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void* operator new(std::size_t size) {
    allocation_count.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
#endif

namespace vexa {
namespace {

using testing::same_store;

const char* row_name(NetworkKind kind, int row) {
    return structural_catalogue(kind).rows[static_cast<size_t>(row)].labels.report_name;
}

TEST(Sampler, AcceptanceRuleAtItsEdges) {
    // An addition is accepted when the 30-bit uniform lies below its probability: one whose
    // probability equals the draw exactly is refused, a hair more is accepted.
    const std::vector<Term<Graph>> terms =
        make_terms<Graph>(testing::model_of(NetworkKind::graph, {int(GraphEffect::edge)}));
    Rng probe;  // replays the step's draws: the dyad, then the uniform number
    probe.seed(99);
    const int first = probe.node(10);
    while (probe.node(10) == first) {
    }
    const double u = probe.acceptance_uniform();
    double theta = std::log(u);
    while (std::exp(theta) < u) theta = std::nextafter(theta, 1.0);
    while (std::exp(theta) > u) theta = std::nextafter(theta, -1.0);
    ASSERT_EQ(std::exp(theta), u) << "no parameter reproduces the draw exactly";
    double above = theta;
    while (std::exp(above) <= u) above = std::nextafter(above, 1.0);
    Rng rng;
    for (const auto& [parameter, accepted] : {std::pair{theta, 0}, std::pair{above, 1}}) {
        Graph g = create_graph(10);
        Chain<Graph> chain = make_chain(g, terms, 1, SamplerSettings{}, rng);
        rng.seed(99);
        EXPECT_EQ(toggle_step(chain, &parameter), accepted);
        EXPECT_EQ(g.edge_count, accepted);
        EXPECT_EQ(chain.statistics[0], accepted);
    }
}

// Runs `steps` steps of each proposal from the same start; on every rejected step the store,
// the statistics and the tie list must be exactly as before it.
template <class Store>
void expect_rejections_change_nothing(
    const std::vector<int>& rows, int n, int ties,
    const std::vector<std::pair<Proposal, std::vector<double>>>& runs) {
    const std::vector<Term<Store>> terms = make_terms<Store>(testing::model_of(Store::kind, rows));
    for (const auto& [proposal, theta] : runs) {
        SCOPED_TRACE(std::string(Store::kind == NetworkKind::graph ? "graph" : "digraph") + ", " +
                     proposal_name(proposal, Store::kind));
        Store store = testing::random_store<Store>(n, ties, 5);
        Rng rng;
        rng.seed(17);
        Chain<Store> chain = make_chain(store, terms, static_cast<int32_t>(rows.size()),
                                        SamplerSettings{.proposal = proposal}, rng);
        int rejected = 0;
        for (int s = 0; s < 400; ++s) {
            const Store before = store;
            const std::vector<double> statistics = chain.statistics;
            const size_t listed = chain.ties.size();
            if (step(chain, theta.data()) == 0) {
                ++rejected;
                ASSERT_TRUE(same_store(before, store) && statistics == chain.statistics &&
                            listed == chain.ties.size())
                    << "step " << s;
            }
        }
        EXPECT_GT(rejected, 50);
        EXPECT_EQ(check_bookkeeping(store), "");
    }
}

TEST(Sampler, RejectedStepsLeaveTheStoreAndStatisticsExactlyAsTheyWere) {
    // Parameters strongly favouring ties reject nearly every removal; count-preserving moves
    // against triangles (transitive triads) reject most moves.
    using G = GraphEffect;
    const std::vector<double> ties{8, 0, 0, 0, 0}, no_triangles{0, 0, -9, 0, 0};
    expect_rejections_change_nothing<Graph>(
        {int(G::edge), int(G::star2), int(G::triangle), int(G::at), int(G::a2p)}, 25, 60,
        {{Proposal::toggle, ties}, {Proposal::swap, no_triangles}, {Proposal::tie_no_tie, ties}});
    expect_rejections_change_nothing<Digraph>({int(DigraphEffect::arc), int(DigraphEffect::t9)}, 15,
                                              60,
                                              {{Proposal::toggle, {8, 0}},
                                               {Proposal::swap, {0, -8}},
                                               {Proposal::receiver_move, {0, -8}},
                                               {Proposal::tie_no_tie, {8, 0}}});
}

struct LongChain {
    Proposal proposal;
    int n, ties;
    double first, others;  // the parameter of the first effect; the rest alternate +-others
    int steps, accepted;   // steps to run, fewest accepted
};

// Every effect the chain carries, from a random start: the statistics carried along equal a
// recount at the end, nothing is allocated on the way, and each move keeps what it preserves.
template <class Store>
void run_long_chain(const LongChain& c, uint32_t seed) {
    SCOPED_TRACE(std::string(Store::kind == NetworkKind::graph ? "graph" : "digraph") + ", " +
                 proposal_name(c.proposal, Store::kind));
    const CatalogueView& catalogue = structural_catalogue(Store::kind);
    std::vector<int> rows;
    for (int r = 0; r < static_cast<int>(catalogue.rows.size()); ++r) {
        if (catalogue.rows[static_cast<size_t>(r)].carried) rows.push_back(r);
    }
    Model model = testing::model_of(Store::kind, rows);
    if constexpr (Store::kind == NetworkKind::graph)
        model.structural[static_cast<size_t>(GraphEffect::as)].lambda = 1.5f;
    const std::vector<Term<Store>> terms = make_terms<Store>(model);
    const auto p = static_cast<int32_t>(rows.size());
    std::vector<double> theta(rows.size());
    for (size_t k = 0; k < theta.size(); ++k) theta[k] = k % 2 == 0 ? -c.others : c.others;
    theta[0] = c.first;
    Store store = testing::random_store<Store>(c.n, c.ties, seed);
    const Store start = store;
    Rng rng;
    rng.seed(seed + 10);
    Chain<Store> chain = make_chain(store, terms, p, SamplerSettings{.proposal = c.proposal}, rng);
    check_proposals_possible(store, chain.settings);
    int accepted = 0;
#if VEXA_COUNT_ALLOCATIONS
    const long allocations = allocation_count.load();
#endif
    for (int s = 0; s < c.steps; ++s) accepted += step(chain, theta.data());
#if VEXA_COUNT_ALLOCATIONS
    // The tie list grows by doubling while the chain reaches new numbers of ties.
    EXPECT_LE(allocation_count.load() - allocations, c.proposal == Proposal::tie_no_tie ? 2 : 0);
#endif
    EXPECT_GT(accepted, c.accepted) << tie_count(store) << " ties";
    EXPECT_EQ(check_bookkeeping(store), "");
    const std::vector<double> fresh = testing::totals_of(store, terms, rows.size());
    for (const Term<Store>& term : terms) {
        const size_t k = static_cast<size_t>(term.slot);
        EXPECT_NEAR(chain.statistics[k], fresh[k], 1e-6 * (1.0 + std::fabs(fresh[k])))
            << row_name(Store::kind, term.row);
    }
    EXPECT_TRUE(c.proposal != Proposal::swap || tie_count(store) == tie_count(start))
        << "the swap kept no count";
    if constexpr (Store::kind == NetworkKind::digraph) {
        EXPECT_TRUE(c.proposal != Proposal::receiver_move ||
                    store.out_degree_values == start.out_degree_values)
            << "the receiver move changed an out-degree";
    }
    if (c.proposal == Proposal::tie_no_tie) {
        // As many listed as there are ties, and the index finds every one: the list is the ties.
        size_t found = 0;
        for (int i = 0; i < c.n; ++i) {
            for (int j = 0; j < c.n; ++j) {
                if (i != j && has_tie(store, i, j) &&
                    (Store::kind == NetworkKind::digraph || i < j))
                    found += chain.ties.contains(dyad_key<Store>(i, j)) ? 1 : 0;
            }
        }
        EXPECT_TRUE(found == chain.ties.size() && found == size_t(tie_count(store)))
            << "the tie list and the network disagree";
    }
}

TEST(Sampler, LongChainsKeepEveryStatisticEqualToARecountAndNeverAllocate) {
    // The graph toggles weigh the edge alone and fill a sparse start to a density of 0.62, so
    // that degrees outgrow the room the store first gave their neighbour lists; small parameters
    // of alternating sign keep the other moves going.
    run_long_chain<Graph>({Proposal::toggle, 40, 40, 0.5, 0.0, 20000, 1000}, 1);
    run_long_chain<Graph>({Proposal::swap, 40, 240, 0.0, 0.002, 20000, 1000}, 2);
    run_long_chain<Graph>({Proposal::tie_no_tie, 40, 240, 0.0, 0.002, 20000, 1000}, 3);
    for (const Proposal proposal :
         {Proposal::toggle, Proposal::swap, Proposal::receiver_move, Proposal::tie_no_tie}) {
        run_long_chain<Digraph>({proposal, 25, 90, 0.2, 0.003, 6000, 300},
                                4 + static_cast<uint32_t>(proposal));
    }
}

// Only the dyads the mask allows ever change, under every proposal; the ties outside it stay.
template <class Store>
void expect_mask_honoured(const std::vector<std::pair<int, int>>& allowed,
                          const std::vector<std::pair<int, int>>& fixed,
                          const std::vector<Proposal>& proposals) {
    DyadMask mask = make_dyad_mask(8, Store::kind);
    for (const auto& [i, j] : allowed) allow_dyad(mask, Store::kind, i, j);
    Store start = testing::random_store<Store>(8, 0, 1);
    for (const auto& [i, j] : fixed) testing::toggle(start, i, j);
    testing::toggle(start, allowed[0].first, allowed[0].second);  // one tie for the swaps to move
    const std::vector<Term<Store>> none;
    Rng rng;
    rng.seed(4);
    for (const Proposal proposal : proposals) {
        Store store = start;
        const SamplerSettings settings{.proposal = proposal, .mask = &mask};
        check_proposals_possible(store, settings);
        Chain<Store> chain = make_chain(store, none, 0, settings, rng);
        int changed = 0;
        for (int s = 0; s < 500; ++s) changed += step(chain, nullptr);
        EXPECT_GT(changed, 100) << proposal_name(proposal, Store::kind);
        for (int i = 0; i < 8; ++i) {
            for (int j = 0; j < 8; ++j) {
                if (i == j || mask.allows(i, j)) continue;
                EXPECT_EQ(has_tie(store, i, j), has_tie(start, i, j))
                    << proposal_name(proposal, Store::kind) << ": " << i << "," << j;
            }
        }
    }
}

TEST(Sampler, DegreeCapsAndTheMaskAreHonoured) {
    Rng rng;
    rng.seed(4);
    // Every proposal accepted: with the cap at 3 no tie is added at a node of degree 3, but
    // removals go on.
    const std::vector<Term<Graph>> none;
    Graph capped = create_graph(12);
    Chain<Graph> cap = make_chain(capped, none, 0, SamplerSettings{.max_degree = 3}, rng);
    int removals = 0;
    for (int s = 0; s < 3000; ++s) {
        const int before = capped.edge_count;
        toggle_step(cap, nullptr);
        removals += capped.edge_count < before ? 1 : 0;
        for (const int32_t d : capped.degree) ASSERT_LE(d, 3);
    }
    EXPECT_GT(removals, 100);
    EXPECT_GT(capped.degree_histogram[3], 0);
    // A digraph's out-degree cap of 3 stops arcs from a node at 3, the in-degree cap of 4 arcs
    // to one at 4.
    const std::vector<Term<Digraph>> no_arcs;
    Digraph capped_arcs = create_digraph(12);
    Chain<Digraph> caps = make_chain(capped_arcs, no_arcs, 0,
                                     SamplerSettings{.max_degree = 3, .max_in_degree = 4}, rng);
    for (int s = 0; s < 4000; ++s) {
        step(caps, nullptr);
        for (int v = 0; v < 12; ++v)
            ASSERT_TRUE(capped_arcs.out_degree(v) <= 3 && capped_arcs.in_degree(v) <= 4);
    }
    EXPECT_GT(capped_arcs.out_degree_histogram[3], 0);
    EXPECT_GT(capped_arcs.in_degree_histogram[4], 0);

    // The graph mask allows the 4-cycle 0-1-2-3; the digraph mask 0->1, 0->2 and 1->2 (not
    // their reverses), so that sender 0 may move its arc.
    expect_mask_honoured<Graph>({{0, 1}, {1, 2}, {2, 3}, {3, 0}}, {{5, 6}},
                                {Proposal::toggle, Proposal::swap, Proposal::tie_no_tie});
    expect_mask_honoured<Digraph>(
        {{0, 1}, {0, 2}, {1, 2}}, {{5, 6}, {0, 3}},
        {Proposal::toggle, Proposal::swap, Proposal::receiver_move, Proposal::tie_no_tie});
}

TEST(Sampler, StepCountsAndImpossibleProposals) {
    const std::vector<Term<Graph>> none;
    Rng rng;
    // run_sampler with 2.5 steps runs three: with every proposal accepted on a large empty
    // graph, three toggles leave three ties (this seed draws three different dyads).
    Graph large = create_graph(200);
    Chain<Graph> all = make_chain(large, none, 0, SamplerSettings{}, rng);
    SeedSource seeds{.fixed = true, .base = 21};
    run_sampler(all, nullptr, 2.5, seeds);
    run_sampler(all, nullptr, 0.0, seeds);
    run_sampler(all, nullptr, -4.0, seeds);
    EXPECT_EQ(large.edge_count, 3);
    // Fewer than two ties: the count-preserving step declines at once.
    Graph one = testing::KindFixture<Graph>::build(testing::random_matrix(5, 0.0, 1));
    testing::toggle(one, 0, 1);
    EXPECT_NO_THROW(check_proposals_possible(one, SamplerSettings{.proposal = Proposal::swap}));
    Chain<Graph> swaps = make_chain(one, none, 0, SamplerSettings{.proposal = Proposal::swap}, rng);
    EXPECT_EQ(swap_step(swaps, nullptr), 0);

    // Refused before the chain runs: no node pair, a mask without allowed dyads, a
    // count-preserving move on a complete network or inside a mask whose dyads are all ties,
    // a receiver move where no node sends two arcs.
    const Graph complete = testing::KindFixture<Graph>::build(testing::random_matrix(5, 1.0, 1));
    const Digraph complete_arcs =
        testing::KindFixture<Digraph>::build(testing::random_arc_matrix(4, 1.0, 1.0, 1));
    DyadMask empty = make_dyad_mask(5, NetworkKind::graph), tied = empty;
    allow_dyad(tied, NetworkKind::graph, 0, 1);
    allow_dyad(tied, NetworkKind::graph, 2, 3);
    const DyadMask no_arcs = make_dyad_mask(4, NetworkKind::digraph);
    Digraph cycle = create_digraph(6);  // every node sends one arc: none has two to move
    for (int v = 0; v < 6; ++v) testing::toggle(cycle, v, (v + 1) % 6);
    EXPECT_THROW(check_proposals_possible(create_graph(1), {}), SettingError);
    EXPECT_THROW(check_proposals_possible(complete, {.mask = &empty}), SettingError);
    EXPECT_THROW(check_proposals_possible(complete, {.proposal = Proposal::swap}), SettingError);
    EXPECT_THROW(check_proposals_possible(complete, {.proposal = Proposal::swap, .mask = &tied}),
                 SettingError);
    EXPECT_THROW(check_proposals_possible(complete_arcs, {.mask = &no_arcs}), SettingError);
    EXPECT_THROW(check_proposals_possible(complete_arcs, {.proposal = Proposal::swap}),
                 SettingError);
    EXPECT_THROW(check_proposals_possible(complete_arcs, {.proposal = Proposal::receiver_move}),
                 SettingError);
    EXPECT_THROW(check_proposals_possible(cycle, {.proposal = Proposal::receiver_move}),
                 SettingError);
    testing::toggle(cycle, 0, 3);
    EXPECT_NO_THROW(check_proposals_possible(cycle, {.proposal = Proposal::receiver_move}));
    EXPECT_NO_THROW(check_proposals_possible(complete, {}));
    EXPECT_NO_THROW(check_proposals_possible(complete_arcs, {}));
}

}  // namespace
}  // namespace vexa
