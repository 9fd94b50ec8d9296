// Hand-worked checks of the digraph effects for what a recount on random digraphs cannot see,
// and the published values of the bundled directed network.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "effects/combiner.h"
#include "effects/digraph/digraph_catalogue.h"
#include "network/digraph.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using Arcs = std::vector<std::pair<int, int>>;
using E = DigraphEffect;

Digraph digraph_of(int n, const Arcs& arcs) {
    Digraph d = create_digraph(n);
    for (const auto& [i, j] : arcs) {
        add_arc(d, i, j);
        update_two_paths(d, i, j, 1);
    }
    return d;
}

double total(const Digraph& d, DigraphEffect effect, float lambda = 0.0f) {
    const Term<Digraph> term = digraph_term(effect, 0, lambda);
    return term.total(d, term, Workspace{});
}

double added_change(const Digraph& d, DigraphEffect effect, int i, int j) {
    const Term<Digraph> term = digraph_term(effect, 0);
    return term.change(d, term, Workspace{}, i, j, 1);
}

TEST(DigraphEffects, HandCountedConfigurations) {
    struct Case {
        const char* name;
        int n;
        Arcs arcs;
        std::vector<std::pair<DigraphEffect, double>> values;
    };
    // clang-format off
    const std::vector<Case> cases = {
        // Complete triad: one T1; each of the six orderings a transitive triple; two 3-cycles.
        // T2 to T8 count configurations, not induced triads: 6, 6, 3, 3, 3, 6, 6.
        {"complete triad", 3, {{0, 1}, {1, 0}, {0, 2}, {2, 0}, {1, 2}, {2, 1}},
         {{E::t1, 1}, {E::t2, 6}, {E::t3, 6}, {E::t4, 3}, {E::t5, 3}, {E::t6, 3}, {E::t7, 6},
          {E::t8, 6}, {E::t9, 6}, {E::t10, 2}, {E::reciprocity, 3}, {E::mixed_star2, 6}}},
        // 0 <-> 1 and node 2 sending to both ends: one T4 (120D), two T7 (k->a, a in the dyad).
        {"mutual dyad with a common sender", 3, {{0, 1}, {1, 0}, {2, 0}, {2, 1}},
         {{E::t4, 1}, {E::t7, 2}, {E::t1, 0}, {E::t2, 0}, {E::t3, 0}, {E::t5, 0}, {E::t6, 0},
          {E::t8, 0}, {E::t9, 2}, {E::t10, 0}, {E::out_star2, 1}, {E::in_star2, 2}, {E::source, 1}}},
        // A mutual dyad alone: two arcs, one mutual dyad, no mixed 2-star (x->v->x is no path).
        {"mutual dyad", 3, {{0, 1}, {1, 0}},
         {{E::arc, 2}, {E::reciprocity, 1}, {E::mixed_star2, 0}, {E::isolates, 1}, {E::sink, 0}}},
        // 1 -> 0 <- 2, 3 isolated: in-degree 2 at node 0 is one in-2-star and no in-3-star.
        {"in-star", 4, {{1, 0}, {2, 0}},
         {{E::in_star2, 1}, {E::in_star3, 0}, {E::sink, 1}, {E::source, 2}, {E::isolates, 1}}},
        {"out-star", 5, {{0, 1}, {0, 2}, {0, 3}, {0, 4}},
         {{E::out_star2, 6}, {E::out_star3, 4}, {E::out_star4, 1}, {E::sink, 4}, {E::source, 1}}},
    };
    // clang-format on
    for (const Case& c : cases) {
        const Digraph d = digraph_of(c.n, c.arcs);
        for (const auto& [effect, value] : c.values) {
            EXPECT_EQ(total(d, effect), value)
                << c.name << ": "
                << structural_rows<Digraph>()[static_cast<size_t>(effect)].about.labels.report_name;
        }
    }
    // The change of an order-k star at a node of degree k - 2 is 0: 2 -> 0 at in-degree 1.
    const Digraph in_star = digraph_of(4, {{1, 0}});
    EXPECT_EQ(added_change(in_star, E::in_star3, 2, 0), 0.0);
    EXPECT_EQ(added_change(in_star, E::in_star2, 2, 0), 1.0);
    // A lambda of 0 in the run file takes the row's default, 2.
    EXPECT_EQ(digraph_term(E::a2p_t, 0, 0.0f).lambda, 2.0f);
}

// The bundled samplike network (18 nodes): every value its row of known_statistics.tsv lists.
TEST(DigraphEffects, SamplikeMatchesItsPublishedStatistics) {
    const Digraph d = read_digraph(testing::data_path("samplike.txt"), 18);
    const std::map<std::string, DigraphEffect> effect_named = {
        {"arc", E::arc},
        {"reciprocity", E::reciprocity},
        {"in-2-star", E::in_star2},
        {"out-2-star", E::out_star2},
        {"in-3-star", E::in_star3},
        {"out-3-star", E::out_star3},
        {"in-4-star", E::in_star4},
        {"out-4-star", E::out_star4},
        {"mixed 2-star (path2)", E::mixed_star2},
        {"T9(030T)", E::t9},
        {"T10(030C)", E::t10},
        {"Isolates", E::isolates},
        {"Sink", E::sink},
        {"Source", E::source},
        {"AinS", E::ain_s},
        {"AoutS", E::aout_s},
        {"AT-T", E::at_t},
        {"AT-C", E::at_c},
        {"AT-D", E::at_d},
        {"AT-U", E::at_u},
        {"AT-TD", E::at_td},
        {"AT-TU", E::at_tu},
        {"AT-DU", E::at_du},
        {"A2P-T", E::a2p_t},
        {"A2P-D", E::a2p_d},
        {"A2P-U", E::a2p_u}};
    std::istringstream lines(testing::read_text(testing::data_path("known_statistics.tsv")));
    std::string line;
    int checked = 0;
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string network, effect, lambda_text, value_text;
        std::getline(fields, network, '\t');
        std::getline(fields, effect, '\t');
        std::getline(fields, lambda_text, '\t');
        std::getline(fields, value_text, '\t');
        if (network != "samplike" || effect.rfind("triad census", 0) == 0) continue;
        ASSERT_TRUE(effect_named.count(effect)) << "no row for " << effect;
        const float lambda = lambda_text == "NA" ? 0.0f : std::stof(lambda_text);
        const double expected = std::stod(value_text);
        const double value = total(d, effect_named.at(effect), lambda);
        if (lambda == 0.0f) {
            EXPECT_EQ(value, expected) << effect;
        } else {
            EXPECT_NEAR(value, expected, 1e-5 * expected) << effect << " at lambda " << lambda;
        }
        ++checked;
    }
    EXPECT_EQ(checked, 38);
}

}  // namespace
}  // namespace vexa
