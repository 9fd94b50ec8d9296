#include "sampler/graph_sampler.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <new>
#include <vector>

#include "base/errors.h"
#include "effects/graph_catalogue.h"
#include "effects/model.h"

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

// A model of the given effects with slots in catalogue order.
Model model_of(std::initializer_list<GraphEffect> effects) {
    Model model = empty_model(NetworkKind::graph);
    for (const GraphEffect effect : effects) {
        EffectSetting& setting = model.structural[static_cast<size_t>(effect)];
        setting.slot = model.structural_included++;
        setting.lambda = graph_row(effect).lambda_default;
    }
    return model;
}

Graph random_store(int n, int edges, uint32_t seed, int statistics, int depth = 0) {
    Rng rng;
    SeedSource seeds;
    seeds.fixed = true;
    seeds.base = seed;
    return random_graph(n, edges, statistics, depth, rng, seeds);
}

bool same_store(const Graph& a, const Graph& b) {
    return a.adjacency == b.adjacency && a.shared_partners == b.shared_partners && a.degree == b.degree &&
           a.degree_histogram == b.degree_histogram &&
           a.shared_partner_histogram == b.shared_partner_histogram && a.triangles == b.triangles &&
           a.triangle_histogram == b.triangle_histogram && a.statistics == b.statistics &&
           a.edge_count == b.edge_count;
}

TEST(GraphSampler, AcceptanceRuleAtItsEdges) {
    // No effect: every weighted change is 0, p = 1 and every proposal is accepted.
    {
        const std::vector<Term> none;
        Graph g = create(20, 0, 0);
        GraphSampler sampler = make_graph_sampler(none, 0, 9999, false, nullptr);
        Rng rng;
        rng.seed(3);
        for (int s = 0; s < 500; ++s) ASSERT_EQ(toggle_step(g, sampler, nullptr, rng), 1);
        EXPECT_EQ(check_bookkeeping(g), "");
    }
    // An addition whose probability equals the uniform draw exactly is accepted; a hair less is not.
    const Model model = model_of({GraphEffect::edge});
    const std::vector<Term> terms = graph_terms(model);
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
        Graph g = create(10, 1, 0);
        GraphSampler sampler = make_graph_sampler(terms, 1, 9999, false, nullptr);
        Rng rng;
        rng.seed(99);
        EXPECT_EQ(toggle_step(g, sampler, &parameter, rng), accepted);
        EXPECT_EQ(g.edge_count, accepted);
        EXPECT_EQ(g.statistics[0], accepted);
    }
}

TEST(GraphSampler, RejectedStepsLeaveTheStoreAndStatisticsExactlyAsTheyWere) {
    const Model model = model_of({GraphEffect::edge, GraphEffect::star2, GraphEffect::triangle,
                                  GraphEffect::at, GraphEffect::a2p});
    const std::vector<Term> terms = graph_terms(model);
    Graph g = random_store(25, 60, 5, 5);
    compute_totals(g, terms);
    // Strongly favouring ties: removals are all but certain to be rejected; additions accepted.
    const std::vector<double> parameters{8.0, 0.0, 0.0, 0.0, 0.0};
    GraphSampler toggles = make_graph_sampler(terms, 5, 9999, false, nullptr);
    Rng rng;
    rng.seed(17);
    int rejected = 0;
    for (int s = 0; s < 400; ++s) {
        const Graph before = g;
        if (toggle_step(g, toggles, parameters.data(), rng) == 0) {
            ++rejected;
            ASSERT_TRUE(same_store(before, g)) << "step " << s;
        }
    }
    EXPECT_GT(rejected, 50);
    // The edge-preserving step: a strongly negative triangle parameter rejects most moves.
    const std::vector<double> against{0.0, 0.0, -9.0, 0.0, 0.0};
    GraphSampler swaps = make_graph_sampler(terms, 5, 9999, true, nullptr);
    compute_totals(g, terms);
    rejected = 0;
    for (int s = 0; s < 400; ++s) {
        const Graph before = g;
        if (swap_step(g, swaps, against.data(), rng) == 0) {
            ++rejected;
            ASSERT_TRUE(same_store(before, g)) << "swap " << s;
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
        model.structural[static_cast<size_t>(r)].lambda = graph_row(effect).lambda_default;
    }
    model.structural[static_cast<size_t>(GraphEffect::as)].lambda = 1.5f;
    const std::vector<Term> terms = graph_terms(model);
    const int p = model.structural_included;
    // The toggles weigh the edge alone and fill a sparse start to a density of 0.62, so that
    // degrees outgrow the room the store first gave their neighbour lists. Small parameters of
    // alternating sign keep the swaps moving.
    for (const bool fixed_edges : {false, true}) {
        std::vector<double> parameters(static_cast<size_t>(p), 0.0);
        for (size_t k = 0; k < parameters.size() && fixed_edges; ++k) parameters[k] = k % 2 == 0 ? -0.002 : 0.002;
        parameters[0] = fixed_edges ? 0.0 : 0.5;
        Graph g = random_store(40, fixed_edges ? 240 : 40, fixed_edges ? 2u : 1u, p, 8);
        compute_totals(g, terms);
        GraphSampler sampler = make_graph_sampler(terms, p, 9999, fixed_edges, nullptr);
        Rng rng;
        rng.seed(fixed_edges ? 12 : 11);
        int accepted = 0;
#if VEXA_COUNT_ALLOCATIONS
        const long allocations = allocation_count.load();
#endif
        for (int s = 0; s < 20000; ++s) accepted += sampler_step(g, sampler, parameters.data(), rng);
#if VEXA_COUNT_ALLOCATIONS
        EXPECT_EQ(allocation_count.load() - allocations, 0) << (fixed_edges ? "swaps" : "toggles");
#endif
        EXPECT_GT(accepted, 1000) << (fixed_edges ? "swaps" : "toggles") << ", " << g.edge_count << " ties";
        EXPECT_EQ(check_bookkeeping(g), "");
        Graph fresh = g;
        compute_totals(fresh, terms);
        for (const Term& term : terms) {
            const size_t k = static_cast<size_t>(term.slot);
            EXPECT_NEAR(g.statistics[k], fresh.statistics[k], 1e-6 * (1.0 + std::fabs(fresh.statistics[k])))
                << graph_row(term.effect).report_name << (fixed_edges ? " (swaps)" : " (toggles)");
        }
    }
}

// A store holding the listed ties.
Graph graph_of(int n, std::initializer_list<std::pair<int, int>> ties) {
    Graph g = create(n, 0, 0);
    for (const auto& [i, j] : ties) {
        add_edge(g, i, j);
        update_shared_partners(g, i, j, 1);
    }
    return g;
}

TEST(GraphSampler, DegreeCapMaskStepCountAndImpossibleProposals) {
    const std::vector<Term> none;
    Rng rng;
    rng.seed(4);
    // With the cap at 3 no addition is accepted at a node of degree 3, but removals still are.
    Graph capped = create(12, 0, 0);
    GraphSampler cap = make_graph_sampler(none, 0, 3, false, nullptr);
    int removals = 0;
    for (int s = 0; s < 3000; ++s) {
        const int before = capped.edge_count;
        toggle_step(capped, cap, nullptr, rng);
        removals += capped.edge_count < before ? 1 : 0;
        for (const int32_t d : capped.degree) ASSERT_LE(d, 3);
    }
    EXPECT_GT(removals, 100);
    EXPECT_GT(capped.degree_histogram[3], 0);
    // Only dyads that are ties of the mask (the 4-cycle 0-1-2-3) ever change; 5-6 stays.
    const Graph mask = graph_of(8, {{0, 1}, {1, 2}, {2, 3}, {3, 0}});
    Graph g = graph_of(8, {{5, 6}});
    for (const bool fixed_edges : {false, true}) {
        GraphSampler sampler = make_graph_sampler(none, 0, 9999, fixed_edges, &mask);
        for (int s = 0; s < 500; ++s) sampler_step(g, sampler, nullptr, rng);
        for (int i = 0; i < 8; ++i) {
            for (int j = i + 1; j < 8; ++j) {
                EXPECT_TRUE(has_edge(mask, i, j) || has_edge(g, i, j) == (i == 5 && j == 6)) << i << j;
            }
        }
    }
    // run_sampler with 2.5 steps runs three: with every proposal accepted on a large empty
    // graph, three toggles leave three ties (this seed draws three different dyads).
    Graph large = create(200, 0, 0);
    GraphSampler all = make_graph_sampler(none, 0, 9999, false, nullptr);
    SeedSource seeds;
    seeds.fixed = true;
    seeds.base = 21;
    run_sampler(large, all, nullptr, 2.5, rng, seeds);
    run_sampler(large, all, nullptr, 0.0, rng, seeds);
    run_sampler(large, all, nullptr, -4.0, rng, seeds);
    EXPECT_EQ(large.edge_count, 3);

    // Proposals that could never be found are refused before the chain runs: no node pair, a
    // mask without ties, an edge-preserving chain on a complete graph or inside a mask of ties.
    const Graph complete = graph_of(5, {{0, 1}, {0, 2}, {0, 3}, {0, 4}, {1, 2}, {1, 3}, {1, 4}, {2, 3}, {2, 4}, {3, 4}});
    const Graph empty_mask = create(5, 0, 0);
    const Graph tied_mask = graph_of(5, {{0, 1}, {2, 3}});
    EXPECT_THROW(check_proposals_possible(complete, make_graph_sampler(none, 0, 9999, false, &empty_mask)), SettingError);
    EXPECT_THROW(check_proposals_possible(create(1, 0, 0), all), SettingError);
    EXPECT_THROW(check_proposals_possible(complete, make_graph_sampler(none, 0, 9999, true, nullptr)), SettingError);
    EXPECT_THROW(check_proposals_possible(complete, make_graph_sampler(none, 0, 9999, true, &tied_mask)), SettingError);
    EXPECT_NO_THROW(check_proposals_possible(complete, all));
    // Fewer than two ties: the edge-preserving step declines at once.
    Graph one = graph_of(5, {{0, 1}});
    GraphSampler swaps = make_graph_sampler(none, 0, 9999, true, nullptr);
    EXPECT_NO_THROW(check_proposals_possible(one, swaps));
    EXPECT_EQ(swap_step(one, swaps, nullptr, rng), 0);
}

}  // namespace
}  // namespace vexa
