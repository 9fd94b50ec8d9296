#include "sampler/steps.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <new>
#include <vector>

#include "base/errors.h"
#include "effects/graph/graph_catalogue.h"
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

// A model of the given effects with slots in the order given.
Model model_of(std::initializer_list<GraphEffect> effects) {
    std::vector<int> rows;
    for (const GraphEffect effect : effects) rows.push_back(static_cast<int>(effect));
    return testing::model_of(NetworkKind::graph, rows);
}

SamplerSettings settings_of(int variant, int max_degree = 9999, const DyadMask* mask = nullptr) {
    SamplerSettings settings;
    settings.variant = variant;
    settings.max_degree = max_degree;
    settings.mask = mask;
    return settings;
}

DyadMask mask_of(int n, std::initializer_list<std::pair<int, int>> dyads) {
    DyadMask mask = make_dyad_mask(n, NetworkKind::graph);
    for (const auto& [i, j] : dyads) allow_dyad(mask, NetworkKind::graph, i, j);
    return mask;
}

Graph random_store(int n, int edges, uint32_t seed) {
    Rng rng;
    SeedSource seeds;
    seeds.fixed = true;
    seeds.base = seed;
    return random_graph(n, edges, rng, seeds);
}

bool same_store(const Graph& a, const Graph& b) {
    return a.adjacency == b.adjacency && a.shared_partners == b.shared_partners &&
           a.degree == b.degree && a.degree_histogram == b.degree_histogram &&
           a.shared_partner_histogram == b.shared_partner_histogram && a.triangles == b.triangles &&
           a.triangle_histogram == b.triangle_histogram && a.edge_count == b.edge_count;
}

TEST(GraphSampler, AcceptanceRuleAtItsEdges) {
    // No effect: every weighted change is 0, p = 1 and every proposal is accepted.
    {
        const std::vector<Term<Graph>> none;
        Graph g = create_graph(20);
        Rng rng;
        rng.seed(3);
        Chain<Graph> chain = make_chain(g, none, 0, settings_of(0), rng);
        for (int s = 0; s < 500; ++s) ASSERT_EQ(toggle_step(chain, nullptr), 1);
        EXPECT_EQ(check_bookkeeping(g), "");
    }
    // An addition whose probability equals the uniform draw exactly is accepted; a hair less is
    // not.
    const Model model = model_of({GraphEffect::edge});
    const std::vector<Term<Graph>> terms = make_terms<Graph>(model);
    Rng probe;  // replays the step's draws: the dyad, then the uniform number
    probe.seed(99);
    const int first = probe.node(10);
    while (probe.node(10) == first) {
    }
    const double u = probe.unit();
    double theta = std::log(u);
    while (std::exp(theta) < u) theta = std::nextafter(theta, 1.0);
    while (std::exp(theta) > u) theta = std::nextafter(theta, -1.0);
    ASSERT_EQ(std::exp(theta), u) << "no parameter reproduces the draw exactly";
    double below = theta;
    while (std::exp(below) >= u) below = std::nextafter(below, -1.0);
    for (const auto& [parameter, accepted] : {std::pair{theta, 1}, std::pair{below, 0}}) {
        Graph g = create_graph(10);
        Rng rng;
        Chain<Graph> chain = make_chain(g, terms, 1, settings_of(0), rng);
        rng.seed(99);
        EXPECT_EQ(toggle_step(chain, &parameter), accepted);
        EXPECT_EQ(g.edge_count, accepted);
        EXPECT_EQ(chain.statistics[0], accepted);
    }
}

TEST(GraphSampler, RejectedStepsLeaveTheStoreAndStatisticsExactlyAsTheyWere) {
    const Model model = model_of({GraphEffect::edge, GraphEffect::star2, GraphEffect::triangle,
                                  GraphEffect::at, GraphEffect::a2p});
    const std::vector<Term<Graph>> terms = make_terms<Graph>(model);
    Graph g = random_store(25, 60, 5);
    // Strongly favouring ties: removals are all but certain to be rejected; additions accepted.
    const std::vector<double> parameters{8.0, 0.0, 0.0, 0.0, 0.0};
    Rng rng;
    Chain<Graph> chain = make_chain(g, terms, 5, settings_of(0), rng);
    rng.seed(17);
    int rejected = 0;
    for (int s = 0; s < 400; ++s) {
        const Graph before = g;
        const std::vector<double> statistics = chain.statistics;
        if (toggle_step(chain, parameters.data()) == 0) {
            ++rejected;
            ASSERT_TRUE(same_store(before, g) && statistics == chain.statistics) << "step " << s;
        }
    }
    EXPECT_GT(rejected, 50);
    // The edge-preserving step: a strongly negative triangle parameter rejects most moves.
    const std::vector<double> against{0.0, 0.0, -9.0, 0.0, 0.0};
    chain.settings.variant = 1;
    rejected = 0;
    for (int s = 0; s < 400; ++s) {
        const Graph before = g;
        const std::vector<double> statistics = chain.statistics;
        if (swap_step(chain, against.data()) == 0) {
            ++rejected;
            ASSERT_TRUE(same_store(before, g) && statistics == chain.statistics) << "swap " << s;
        } else {
            ASSERT_EQ(g.edge_count, before.edge_count);
        }
    }
    EXPECT_GT(rejected, 0);
}

TEST(GraphSampler, LongChainsKeepEveryStatisticEqualToARecountAndNeverAllocate) {
    // Every effect the chain carries (0ET and ETNT are recounted where read, not carried).
    Model model = empty_model(NetworkKind::graph);
    for (int r = 0; r < graph_effect_count; ++r) {
        const auto effect = static_cast<GraphEffect>(r);
        if (effect == GraphEffect::et0 || effect == GraphEffect::etnt) continue;
        model.structural[static_cast<size_t>(r)].slot = model.structural_included++;
        model.structural[static_cast<size_t>(r)].lambda = graph_about(effect).lambda_default;
    }
    model.structural[static_cast<size_t>(GraphEffect::as)].lambda = 1.5f;
    const std::vector<Term<Graph>> terms = make_terms<Graph>(model);
    const int p = model.structural_included;
    // The toggles weigh the edge alone and fill a sparse start to a density of 0.62, so that
    // degrees outgrow the room the store first gave their neighbour lists. Small parameters of
    // alternating sign keep the swaps moving.
    for (const bool fixed_edges : {false, true}) {
        std::vector<double> parameters(static_cast<size_t>(p), 0.0);
        for (size_t k = 0; k < parameters.size() && fixed_edges; ++k)
            parameters[k] = k % 2 == 0 ? -0.002 : 0.002;
        parameters[0] = fixed_edges ? 0.0 : 0.5;
        Graph g = random_store(40, fixed_edges ? 240 : 40, fixed_edges ? 2u : 1u);
        Rng rng;
        Chain<Graph> chain = make_chain(g, terms, p, settings_of(fixed_edges ? 1 : 0), rng);
        rng.seed(fixed_edges ? 12 : 11);
        int accepted = 0;
#if VEXA_COUNT_ALLOCATIONS
        const long allocations = allocation_count.load();
#endif
        for (int s = 0; s < 20000; ++s) accepted += step(chain, parameters.data());
#if VEXA_COUNT_ALLOCATIONS
        EXPECT_EQ(allocation_count.load() - allocations, 0) << (fixed_edges ? "swaps" : "toggles");
#endif
        EXPECT_GT(accepted, 1000) << (fixed_edges ? "swaps" : "toggles") << ", " << g.edge_count
                                  << " ties";
        EXPECT_EQ(check_bookkeeping(g), "");
        const std::vector<double> fresh = testing::totals_of(g, terms, static_cast<size_t>(p));
        for (const Term<Graph>& term : terms) {
            const size_t k = static_cast<size_t>(term.slot);
            EXPECT_NEAR(chain.statistics[k], fresh[k], 1e-6 * (1.0 + std::fabs(fresh[k])))
                << graph_about(static_cast<GraphEffect>(term.row)).labels.report_name
                << (fixed_edges ? " (swaps)" : " (toggles)");
        }
    }
}

// A store holding the listed ties.
Graph graph_of(int n, std::initializer_list<std::pair<int, int>> ties) {
    Graph g = create_graph(n);
    for (const auto& [i, j] : ties) {
        add_edge(g, i, j);
        update_shared_partners(g, i, j, 1);
    }
    return g;
}

TEST(GraphSampler, DegreeCapMaskStepCountAndImpossibleProposals) {
    const std::vector<Term<Graph>> none;
    Rng rng;
    rng.seed(4);
    // With the cap at 3 no addition is accepted at a node of degree 3, but removals still are.
    Graph capped = create_graph(12);
    Chain<Graph> cap = make_chain(capped, none, 0, settings_of(0, 3), rng);
    int removals = 0;
    for (int s = 0; s < 3000; ++s) {
        const int before = capped.edge_count;
        toggle_step(cap, nullptr);
        removals += capped.edge_count < before ? 1 : 0;
        for (const int32_t d : capped.degree) ASSERT_LE(d, 3);
    }
    EXPECT_GT(removals, 100);
    EXPECT_GT(capped.degree_histogram[3], 0);
    // Only dyads the mask allows (the 4-cycle 0-1-2-3) ever change; 5-6 stays.
    const DyadMask mask = mask_of(8, {{0, 1}, {1, 2}, {2, 3}, {3, 0}});
    Graph g = graph_of(8, {{5, 6}});
    for (const int variant : {0, 1}) {
        Chain<Graph> chain = make_chain(g, none, 0, settings_of(variant, 9999, &mask), rng);
        for (int s = 0; s < 500; ++s) step(chain, nullptr);
        for (int i = 0; i < 8; ++i) {
            for (int j = i + 1; j < 8; ++j) {
                EXPECT_TRUE(mask.allows(i, j) || has_edge(g, i, j) == (i == 5 && j == 6)) << i << j;
            }
        }
    }
    // run_sampler with 2.5 steps runs three: with every proposal accepted on a large empty
    // graph, three toggles leave three ties (this seed draws three different dyads).
    Graph large = create_graph(200);
    Chain<Graph> all = make_chain(large, none, 0, settings_of(0), rng);
    SeedSource seeds;
    seeds.fixed = true;
    seeds.base = 21;
    run_sampler(all, nullptr, 2.5, seeds);
    run_sampler(all, nullptr, 0.0, seeds);
    run_sampler(all, nullptr, -4.0, seeds);
    EXPECT_EQ(large.edge_count, 3);

    // Proposals that could never be found are refused before the chain runs: no node pair, a
    // mask without allowed dyads, an edge-preserving chain on a complete graph or inside a
    // mask whose dyads are all ties.
    const Graph complete = graph_of(
        5, {{0, 1}, {0, 2}, {0, 3}, {0, 4}, {1, 2}, {1, 3}, {1, 4}, {2, 3}, {2, 4}, {3, 4}});
    const DyadMask empty_mask = mask_of(5, {});
    const DyadMask tied_mask = mask_of(5, {{0, 1}, {2, 3}});
    EXPECT_THROW(check_proposals_possible(complete, settings_of(0, 9999, &empty_mask)),
                 SettingError);
    EXPECT_THROW(check_proposals_possible(create_graph(1), settings_of(0)), SettingError);
    EXPECT_THROW(check_proposals_possible(complete, settings_of(1)), SettingError);
    EXPECT_THROW(check_proposals_possible(complete, settings_of(1, 9999, &tied_mask)),
                 SettingError);
    EXPECT_NO_THROW(check_proposals_possible(complete, settings_of(0)));
    // Fewer than two ties: the edge-preserving step declines at once.
    Graph one = graph_of(5, {{0, 1}});
    EXPECT_NO_THROW(check_proposals_possible(one, settings_of(1)));
    Chain<Graph> swaps = make_chain(one, none, 0, settings_of(1), rng);
    EXPECT_EQ(swap_step(swaps, nullptr), 0);
}

}  // namespace
}  // namespace vexa
