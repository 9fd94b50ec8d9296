// The digraph samplers: long chains of every variant under a model of every directed effect
// keep their statistics equal to a recount; the swap keeps the arc count and the receiver move
// every out-degree; caps, the mask and the proposals that can never be found; the triad census
// of every sampled digraph against a count triple by triple.

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "base/errors.h"
#include "describe/triad_census.h"
#include "effects/digraph/digraph_catalogue.h"
#include "model/terms.h"
#include "sampler/steps.h"
#include "support/digraph_brute_force.h"
#include "support/kinds.h"

namespace vexa {
namespace {

Digraph random_start(int n, int arcs, uint32_t seed) {
    Rng rng;
    SeedSource seeds{true, seed, 0};
    return random_digraph_by_count(n, arcs, rng, seeds);
}

// Every directed effect, with small parameters of alternating sign.
Model every_effect() {
    std::vector<int> rows;
    for (int r = 0; r < digraph_effect_count; ++r) rows.push_back(r);
    return testing::model_of(NetworkKind::digraph, rows);
}

SamplerSettings settings_of(int variant, int max_out = 9999, int max_in = 9999,
                            const DyadMask* mask = nullptr) {
    SamplerSettings s;
    s.variant = variant;
    s.max_degree = max_out;
    s.max_in_degree = max_in;
    s.mask = mask;
    return s;
}

TEST(DigraphChain, EveryVariantKeepsItsStatisticsAndItsInvariants) {
    const Model model = every_effect();
    const std::vector<Term<Digraph>> terms = make_terms<Digraph>(model);
    const int p = model.structural_included;
    std::vector<double> theta(static_cast<size_t>(p), 0.0);
    for (size_t k = 0; k < theta.size(); ++k) theta[k] = k % 2 == 0 ? -0.003 : 0.003;
    theta[0] = 0.2;  // the arc parameter fills the sparse start
    for (const int variant : {0, 1, 2, tie_no_tie_variant}) {
        Digraph d = random_start(25, 90, static_cast<uint32_t>(variant + 1));
        const std::vector<int32_t> out_before = d.out_degree_values;
        const int arcs_before = d.arc_count;
        Rng rng;
        rng.seed(static_cast<uint32_t>(40 + variant));
        Chain<Digraph> chain = make_chain(d, terms, p, settings_of(variant), rng);
        check_proposals_possible(d, chain.settings);
        int accepted = 0;
        for (int s = 0; s < 6000; ++s) accepted += step(chain, theta.data());
        EXPECT_GT(accepted, 300) << "variant " << variant;
        EXPECT_EQ(check_bookkeeping(d), "") << "variant " << variant;
        const std::vector<double> fresh = testing::totals_of(d, terms, static_cast<size_t>(p));
        for (const Term<Digraph>& term : terms) {
            const size_t k = static_cast<size_t>(term.slot);
            EXPECT_NEAR(chain.statistics[k], fresh[k], 1e-6 * (1.0 + std::fabs(fresh[k])))
                << digraph_about(static_cast<DigraphEffect>(term.row)).labels.report_name
                << ", variant " << variant;
        }
        if (variant == 1) {
            EXPECT_EQ(d.arc_count, arcs_before);
        }
        if (variant == 2) {
            EXPECT_EQ(d.out_degree_values, out_before);
        }
        if (variant == tie_no_tie_variant) {
            EXPECT_EQ(chain.ties.size(), static_cast<size_t>(d.arc_count));
        }
    }
}

TEST(DigraphChain, CapsMaskRejectionsAndImpossibleProposals) {
    const std::vector<Term<Digraph>> none;
    Rng rng;
    rng.seed(8);
    // Every proposal accepted: the out-degree cap of 3 stops additions at exactly 3, the
    // in-degree cap of 4 at 4, removals go on.
    Digraph capped = create_digraph(12);
    Chain<Digraph> cap = make_chain(capped, none, 0, settings_of(0, 3, 4), rng);
    for (int s = 0; s < 4000; ++s) {
        step(cap, nullptr);
        for (int v = 0; v < 12; ++v)
            ASSERT_TRUE(capped.out_degree(v) <= 3 && capped.in_degree(v) <= 4);
    }
    EXPECT_GT(capped.out_degree_histogram[3], 0);
    // Only the arcs the mask allows ever change (0->1 and 1->2, not their reverses); 5->6 stays.
    DyadMask mask = make_dyad_mask(8, NetworkKind::digraph);
    allow_dyad(mask, NetworkKind::digraph, 0, 1);
    allow_dyad(mask, NetworkKind::digraph, 1, 2);
    Digraph d = create_digraph(8);
    add_arc(d, 5, 6);
    update_two_paths(d, 5, 6, 1);
    for (const int variant : {0, tie_no_tie_variant}) {
        Chain<Digraph> chain = make_chain(d, none, 0, settings_of(variant, 9999, 9999, &mask), rng);
        for (int s = 0; s < 300; ++s) step(chain, nullptr);
        for (int i = 0; i < 8; ++i) {
            for (int j = 0; j < 8; ++j) {
                if (i != j && !mask.allows(i, j)) {
                    EXPECT_EQ(d.has_arc(i, j), i == 5 && j == 6) << i << "->" << j;
                }
            }
        }
    }
    // A rejected move leaves store and statistics as they were: strongly favouring arcs, the
    // swap and the receiver move almost never remove one for a worse place.
    const Model model =
        testing::model_of(NetworkKind::digraph, {int(DigraphEffect::arc), int(DigraphEffect::t9)});
    const std::vector<Term<Digraph>> terms = make_terms<Digraph>(model);
    const std::vector<double> against{0.0, -8.0};
    Digraph moved = random_start(15, 60, 3);
    for (const int variant : {1, 2}) {
        Chain<Digraph> chain = make_chain(moved, terms, 2, settings_of(variant), rng);
        int rejected = 0;
        for (int s = 0; s < 300; ++s) {
            const Digraph before = moved;
            const std::vector<double> statistics = chain.statistics;
            if (step(chain, against.data()) == 0) {
                ++rejected;
                ASSERT_TRUE(testing::same_store(before, moved) && statistics == chain.statistics);
            }
        }
        EXPECT_GT(rejected, 10) << variant;
    }
    // Proposals that could never be found are refused before any chain runs.
    Digraph complete = create_digraph(4);
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            if (i != j) add_arc(complete, i, j), update_two_paths(complete, i, j, 1);
        }
    }
    EXPECT_THROW(check_proposals_possible(complete, settings_of(1)), SettingError);
    EXPECT_THROW(check_proposals_possible(complete, settings_of(2)), SettingError);
    Digraph cycle = create_digraph(6);  // every node sends one arc: none has two to move
    for (int v = 0; v < 6; ++v)
        add_arc(cycle, v, (v + 1) % 6), update_two_paths(cycle, v, (v + 1) % 6, 1);
    EXPECT_THROW(check_proposals_possible(cycle, settings_of(2)), SettingError);
    add_arc(cycle, 0, 3), update_two_paths(cycle, 0, 3, 1);
    EXPECT_NO_THROW(check_proposals_possible(cycle, settings_of(2)));
    const DyadMask empty = make_dyad_mask(4, NetworkKind::digraph);
    EXPECT_THROW(check_proposals_possible(complete, settings_of(0, 9999, 9999, &empty)),
                 SettingError);
    EXPECT_NO_THROW(check_proposals_possible(complete, settings_of(0)));
}

TEST(DigraphChain, TheCensusOfEverySampledDigraphMatchesACountByTriples) {
    const Model model = testing::model_of(
        NetworkKind::digraph, {int(DigraphEffect::arc), int(DigraphEffect::reciprocity)});
    const std::vector<Term<Digraph>> terms = make_terms<Digraph>(model);
    const std::vector<double> theta{-0.4, 1.2};
    Digraph d = create_digraph(7);
    Rng rng;
    rng.seed(21);
    Chain<Digraph> chain = make_chain(d, terms, 2, settings_of(0), rng);
    for (int sample = 0; sample < 60; ++sample) {
        for (int s = 0; s < 30; ++s) step(chain, theta.data());
        const TriadCensus census = triad_census(d);
        const std::array<int64_t, 16> truth =
            testing::triad_census_by_triples(testing::KindFixture<Digraph>::adjacency(d));
        for (size_t k = 0; k < truth.size(); ++k)
            ASSERT_EQ(census.counts[k], static_cast<double>(truth[k])) << sample;
    }
}

}  // namespace
}  // namespace vexa
