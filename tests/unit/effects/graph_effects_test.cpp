// Hand-worked checks of the graph effects for what a recount cannot see: the combiner's
// rules, the weight tables, the lambda defaults, edge cases of the alternating effects, the
// 2ET ordering fault, clique counting beyond one word, and published values of two classic
// networks.

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "effects/graph_catalogue.h"
#include "effects/model.h"
#include "network/graph.h"
#include "support/brute_force.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using Edges = std::vector<std::pair<int, int>>;

Graph graph_of(int n, const Edges& edges, int statistic_count = 1, int clique_depth = 0) {
    Graph g = create(n, statistic_count, clique_depth);
    for (const auto& [a, b] : edges) {
        add_edge(g, a, b);
        update_shared_partners(g, a, b, 1);
    }
    return g;
}

// A model with the given effects at slots 0, 1, ... in catalogue order.
std::vector<Term> terms_of(const std::vector<std::pair<GraphEffect, float>>& effects) {
    Model model = empty_model(NetworkKind::graph);
    int32_t slot = 0;
    for (const auto& [effect, lambda] : effects) {
        model.structural[static_cast<size_t>(effect)].slot = slot++;
        model.structural[static_cast<size_t>(effect)].lambda = lambda;
    }
    return graph_terms(model);
}

double total(Graph& g, GraphEffect effect, float lambda = 0.0f) {
    compute_totals(g, terms_of({{effect, lambda}}));
    return g.statistics[0];
}

TEST(GraphEffects, HandCountedConfigurations) {
    struct Case {
        const char* name;
        int n;
        Edges edges;
        std::vector<std::pair<GraphEffect, double>> values;
    };
    using E = GraphEffect;
    const std::vector<Case> cases = {
        // K4: four triangles, each pair sharing an edge; three 4-cycles; 4! / 2 simple 3-paths.
        {"K4", 4, {{0, 1}, {0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 3}},
         {{E::star2, 12}, {E::star3, 4}, {E::triangle, 4}, {E::clique4, 1}, {E::triangle2, 6}, {E::bow_tie, 0},
          {E::path3, 24}, {E::p3, 12}, {E::cycle4, 3}, {E::q31, 0}, {E::q10, 0}, {E::et1, 12}, {E::et2, 0},
          {E::et0, 0}, {E::two3star, 10}, {E::one2triangle, 9}}},
        // Bow tie: triangles 0-1-2 and 0-3-4 meet at node 0 only.
        //   1   3
        //   |\ /|
        //   | 0 |
        //   |/ \|
        //   2   4
        {"bow tie", 5, {{0, 1}, {0, 2}, {1, 2}, {0, 3}, {0, 4}, {3, 4}},
         {{E::bow_tie, 1}, {E::triangle2, 0}, {E::et1, 4}, {E::et2, 2}, {E::cycle4, 0}, {E::one2et, 3}}},
        // Triangle 0-1-2 with a pendant tie 0-3 and an isolate 4.
        {"triangle with a pendant", 5, {{0, 1}, {0, 2}, {1, 2}, {0, 3}},
         {{E::et0, 1}, {E::etnt, 1}, {E::et1, 1}, {E::isolates, 1}, {E::q10, 2}, {E::path3, 5}, {E::p3, 2}}},
        // The square 0-1-2-3: two untied pairs, each joined by two two-paths.
        {"square", 4, {{0, 1}, {1, 2}, {2, 3}, {3, 0}},
         {{E::cycle4, 1}, {E::q10, 4}, {E::q20, 2}, {E::q30, 0}, {E::path3, 4}, {E::p3, 4}}},
        // K5: every tied pair has three common neighbours.
        {"K5", 5, {{0, 1}, {0, 2}, {0, 3}, {0, 4}, {1, 2}, {1, 3}, {1, 4}, {2, 3}, {2, 4}, {3, 4}},
         {{E::q31, 10}, {E::clique5, 1}, {E::clique4, 5}, {E::star4, 5}}},
    };
    for (const Case& c : cases) {
        Graph g = graph_of(c.n, c.edges, 1, 8);
        const testing::BruteCounts counts = testing::brute_force_counts(testing::adjacency_of(g));
        for (const auto& [effect, value] : c.values) {
            EXPECT_EQ(total(g, effect), value) << c.name << ": " << graph_row(effect).report_name;
            EXPECT_EQ(testing::brute_force_value(counts, effect, 0.0), value)
                << c.name << " (recount): " << graph_row(effect).report_name;
        }
    }
}

// A 2ET change that mixes ordered and unordered pairs of further ties is no increase of any
// count: on five nodes the ties 01, 02, 12, 03, 04 summed its changes to 1 in that order and
// to 2 in the order 01, 02, 03, 04, 12. The graph (triangle 0-1-2 with two further ties at 0)
// holds exactly one such configuration.
TEST(GraphEffects, TwoEdgeTriangleChangesDoNotDependOnOrder) {
    const std::vector<Term> terms = terms_of({{GraphEffect::et2, 0.0f}});
    const double parameter = 1.0;
    for (const Edges& order : {Edges{{0, 1}, {0, 2}, {1, 2}, {0, 3}, {0, 4}}, Edges{{0, 1}, {0, 2}, {0, 3}, {0, 4}, {1, 2}}}) {
        Graph g = create(5, 1, 0);
        double sum = 0.0;
        for (const auto& [a, b] : order) {
            double change = 0.0;
            change_statistics(g, terms, &parameter, &change, a, b, 1);
            sum += change;
            add_edge(g, a, b);
            update_shared_partners(g, a, b, 1);
        }
        EXPECT_EQ(sum, 1.0);
        compute_totals(g, terms);
        EXPECT_EQ(g.statistics[0], 1.0);
    }
}

TEST(GraphEffects, CombinerRules) {
    // A parameter of exactly 0 keeps a non-finite change out of the sum; the change is still written.
    Graph g = graph_of(4, {{0, 1}});
    std::vector<Term> terms = terms_of({{GraphEffect::edge, 0.0f}, {GraphEffect::as, 2.0f}});
    terms[1].weights.fill(std::numeric_limits<float>::quiet_NaN());
    double changes[2] = {0.0, 0.0};
    const double parameters[2] = {-1.5, 0.0};
    EXPECT_EQ(change_statistics(g, terms, parameters, changes, 1, 2, 1), -1.5);
    EXPECT_EQ(changes[0], 1.0);
    EXPECT_TRUE(std::isnan(changes[1]));

    // 0ET and ETNT write 0 and add nothing, whatever their parameter.
    const std::vector<Term> unweighted = terms_of({{GraphEffect::et0, 0.0f}, {GraphEffect::etnt, 0.0f}});
    const double big[2] = {7.0, 9.0};
    changes[0] = changes[1] = 5.0;
    EXPECT_EQ(change_statistics(g, unweighted, big, changes, 1, 2, 1), 0.0);
    EXPECT_EQ(changes[0], 0.0);
    EXPECT_EQ(changes[1], 0.0);

    // With every effect excluded there are no terms and the sum is 0.
    EXPECT_TRUE(graph_terms(empty_model(NetworkKind::graph)).empty());
    EXPECT_EQ(change_statistics(g, {}, nullptr, nullptr, 1, 2, 1), 0.0);
}

TEST(GraphEffects, WholeModelWritesEverySlot) {
    // Every row at once, slots in reverse catalogue order: each change lands at its own slot
    // and matches the row evaluated alone; the sum weighs all but 0ET and ETNT.
    Model model = empty_model(NetworkKind::graph);
    for (int k = 0; k < graph_effect_count; ++k) {
        model.structural[static_cast<size_t>(k)].slot = graph_effect_count - 1 - k;
    }
    const std::vector<Term> terms = graph_terms(model);
    ASSERT_EQ(terms.size(), static_cast<size_t>(graph_effect_count));
    for (const Term& term : terms) ASSERT_TRUE(term.change != nullptr && term.total != nullptr);
    const testing::AdjacencyMatrix matrix = testing::random_matrix(14, 0.5, 3);
    Graph g = testing::graph_from(matrix, graph_effect_count, 8);
    std::vector<double> parameters(static_cast<size_t>(graph_effect_count));
    for (size_t k = 0; k < parameters.size(); ++k) parameters[k] = 0.25 * static_cast<double>(k) - 3.0;
    std::vector<double> changes(parameters.size(), 0.0);
    for (const auto& [i, j] : Edges{{0, 1}, {2, 9}, {4, 13}}) {
        const int added = has_edge(g, i, j) ? 0 : 1;
        if (added == 0) remove_edge(g, i, j);
        const double sum = change_statistics(g, terms, parameters.data(), changes.data(), i, j, added);
        double expected = 0.0;
        for (const Term& term : terms) {
            const double one = 1.0;
            double change = 0.0;
            Term at_zero = term;
            at_zero.slot = 0;
            change_statistics(g, {at_zero}, &one, &change, i, j, added);
            EXPECT_EQ(changes[static_cast<size_t>(term.slot)], change) << graph_row(term.effect).report_name;
            if (term.effect != GraphEffect::et0 && term.effect != GraphEffect::etnt) {
                expected += parameters[static_cast<size_t>(term.slot)] * change;
            }
        }
        EXPECT_NEAR(sum, expected, 1e-9 * std::max(1.0, std::fabs(expected)));
        if (added == 0) add_edge(g, i, j);
    }
}

TEST(GraphEffects, WeightTablesAndLambdaDefaults) {
    // A lambda of 0 means the row's default: 2 for AS, AT, A2P, AC, AET; 1 for AS2 and AT2.
    Model model = empty_model(NetworkKind::graph);
    int32_t slot = 0;
    for (const GraphEffect e : {GraphEffect::as, GraphEffect::as2, GraphEffect::at, GraphEffect::at2, GraphEffect::a2p,
                                GraphEffect::ac, GraphEffect::aet}) {
        model.structural[static_cast<size_t>(e)].slot = slot++;
    }
    model.structural[static_cast<size_t>(GraphEffect::at)].lambda = 3.5f;
    const std::vector<Term> terms = graph_terms(model);
    const std::vector<float> expected = {2.0f, 1.0f, 3.5f, 1.0f, 2.0f, 2.0f, 2.0f};
    ASSERT_EQ(terms.size(), expected.size());
    for (size_t k = 0; k < terms.size(); ++k) EXPECT_EQ(terms[k].lambda, expected[k]) << k;

    // At lambda 2 the weights are powers of a half, exact in single precision.
    const Term& as = terms[0];
    EXPECT_EQ(weight(as, -1), 0.0f);
    EXPECT_EQ(weight(as, 0), 1.0f);
    EXPECT_EQ(weight(as, 3), 0.125f);
    EXPECT_EQ(weight(as, 100), std::ldexp(1.0f, -100));
    // At lambda 1 every weight beyond 0 is 0.
    EXPECT_EQ(weight(terms[1], 0), 1.0f);
    EXPECT_EQ(weight(terms[1], 1), 0.0f);
    // The table is capped at 100: (1 - 1/3.5)^150 would be far smaller than the entry at 100.
    EXPECT_EQ(weight(terms[2], 150), weight(terms[2], 100));
    EXPECT_GT(weight(terms[2], 100), 0.0f);

    EXPECT_EQ(effect_label("AS", true, 2.0f), "AS(2.00)");
    EXPECT_EQ(effect_label("2-star", false, 0.0f), "2-star");
}

TEST(GraphEffects, AlternatingStarEdgeCases) {
    // Node 0 is the centre of a star with 150 leaves; 151 and 152 are isolated.
    Edges star;
    for (int leaf = 1; leaf <= 150; ++leaf) star.emplace_back(0, leaf);
    Graph g = graph_of(153, star);
    const double one = 1.0;
    double change = 0.0;
    const auto as_change = [&](float lambda, int i, int j) {
        change_statistics(g, terms_of({{GraphEffect::as, lambda}}), &one, &change, i, j, 1);
        return change;
    };
    // Lambda 2, both endpoints isolated: 2 (2 - 1 - 1) = 0.
    EXPECT_EQ(as_change(2.0f, 151, 152), 0.0);
    // Lambda 1, one isolated and one connected endpoint: 1.
    EXPECT_EQ(as_change(1.0f, 151, 1), 1.0);
    EXPECT_EQ(as_change(1.0f, 151, 152), 0.0);
    // Below 1 the effect is switched off.
    EXPECT_EQ(as_change(0.5f, 151, 0), 0.0);
    // Degree 150 reads the weight at 100: lambda (2 - w(100) - w(0)).
    const std::vector<Term> at100 = terms_of({{GraphEffect::as, 100.0f}});
    change_statistics(g, at100, &one, &change, 0, 151, 1);
    EXPECT_DOUBLE_EQ(change, 100.0 * (1.0 - static_cast<double>(at100[0].weights[100])));
}

TEST(GraphEffects, CliquesBeyondOneWord) {
    // Nodes 0 and 1 share 70 common neighbours 2..71, more than one word of candidates. Among
    // them: the 4-clique 2-3-4-5 and the triangle 10-11-12; 0 and 1 are tied only in the second graph.
    Edges edges;
    for (int k = 2; k < 72; ++k) {
        edges.emplace_back(0, k);
        edges.emplace_back(1, k);
    }
    for (const auto& e : Edges{{2, 3}, {2, 4}, {2, 5}, {3, 4}, {3, 5}, {4, 5}, {10, 11}, {10, 12}, {11, 12}}) {
        edges.push_back(e);
    }
    Graph g = graph_of(72, edges, 1, 8);
    fill_clique_changes(g, 0, 1);
    // Adding 0-1: 70 triangles, 9 new 4-cliques (edges among the 70), 5 5-cliques (4 + 1
    // triangles), one 6-clique, nothing larger.
    const std::vector<double> expected = {0, 1, 70, 9, 5, 1, 0, 0};
    EXPECT_EQ(g.clique_changes, expected);

    edges.emplace_back(0, 1);
    Graph closed = graph_of(72, edges, 1, 8);
    count_cliques(closed);
    const testing::BruteCounts counts = testing::brute_force_counts(testing::adjacency_of(closed));
    for (int k = 1; k <= 8; ++k) {
        EXPECT_EQ(closed.clique_counts[static_cast<size_t>(k - 1)], static_cast<double>(counts.cliques[static_cast<size_t>(k)]))
            << k << "-cliques";
    }
}

TEST(GraphEffects, RefusesStoresWithoutTheCliquesAnEffectReads) {
    Graph g = graph_of(5, {{0, 1}}, 1, 4);
    try {
        compute_totals(g, terms_of({{GraphEffect::ac, 2.0f}}));
        FAIL() << "AC on a store keeping cliques up to 4";
    } catch (const SettingError& e) {
        EXPECT_EQ(std::string(e.what()).rfind("vexa: the effect AC(2.00) needs cliques of up to 8", 0), 0u) << e.what();
    }
    Graph none = graph_of(5, {{0, 1}}, 0, 0);
    EXPECT_THROW(compute_totals(none, terms_of({{GraphEffect::edge, 0.0f}})), SettingError);  // no statistic slot
}

// Values of the two undirected classic networks published with the test data.
TEST(GraphEffects, KnownStatisticsOfClassicNetworks) {
    std::ifstream in(testing::data_path("known_statistics.tsv"));
    ASSERT_TRUE(in.good());
    std::string line;
    std::getline(in, line);  // header
    int checked = 0;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string network, effect, lambda_text, value_text;
        std::getline(fields, network, '\t');
        std::getline(fields, effect, '\t');
        std::getline(fields, lambda_text, '\t');
        std::getline(fields, value_text, '\t');
        int n = 0;
        if (network == "flomarriage") n = 16;
        if (network == "faux.mesa.high") n = 205;
        if (n == 0) continue;
        const GraphEffectRow* row = nullptr;
        for (const GraphEffectRow& r : graph_catalogue()) {
            if (effect == r.report_name) row = &r;
        }
        ASSERT_NE(row, nullptr) << effect;
        const float lambda = lambda_text == "NA" ? 0.0f : std::stof(lambda_text);
        const double value = std::stod(value_text);
        Graph g = read_graph(testing::data_path(network + ".txt"), n, 1, 0);
        EXPECT_NEAR(total(g, row->id, lambda), value, 1e-5 * std::max(1.0, std::fabs(value)))
            << network << " " << effect << " " << lambda_text;
        ++checked;
    }
    EXPECT_EQ(checked, 38);
}

}  // namespace
}  // namespace vexa
