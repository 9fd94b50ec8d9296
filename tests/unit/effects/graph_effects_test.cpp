// Hand-worked checks of the graph effects for what a recount on small random graphs cannot see,
// and published values of two classic networks.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "effects/combiner.h"
#include "effects/graph/graph_catalogue.h"
#include "model/terms.h"
#include "network/graph.h"
#include "support/brute_force.h"
#include "support/kinds.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using Edges = std::vector<std::pair<int, int>>;
using E = GraphEffect;

void tie(Graph& g, int a, int b) {
    add_edge(g, a, b);
    update_shared_partners(g, a, b, 1);
}

// A model with the given effects at slots 0, 1, ... in the order given.
std::vector<Term<Graph>> terms_of(const std::vector<std::pair<GraphEffect, float>>& effects) {
    Model model = empty_model(NetworkKind::graph);
    int32_t slot = 0;
    for (const auto& [effect, lambda] : effects)
        model.structural[static_cast<size_t>(effect)] = {0.0, slot++, lambda};
    model.structural_included = slot;
    return make_terms<Graph>(model);
}

double total(const Graph& g, GraphEffect effect, float lambda = 0.0f) {
    return testing::totals_of(g, terms_of({{effect, lambda}}), 1)[0];
}

double added_change(const Graph& g, GraphEffect effect, float lambda, int i, int j) {
    const std::vector<Term<Graph>> terms = terms_of({{effect, lambda}});
    Workspace workspace;
    prepare_workspace(workspace, terms);
    double one = 1.0, out = 0.0;
    change_statistics(g, terms, workspace, &one, &out, i, j, 1);
    return out;
}

// Each count is checked as a total and, built up in the order listed, as a sum of changes.
TEST(GraphEffects, HandCountedConfigurationsTotalsAndBuildUps) {
    struct Case {
        const char* name;
        int n;
        Edges edges;
        std::vector<std::pair<GraphEffect, double>> values;
    };
    const std::vector<Case> cases = {
        // K4: four triangles, each pair sharing an edge; three 4-cycles; 4! / 2 simple 3-paths.
        {"K4",
         4,
         {{0, 1}, {0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 3}},
         {{E::star2, 12},
          {E::star3, 4},
          {E::triangle, 4},
          {E::clique4, 1},
          {E::triangle2, 6},
          {E::bow_tie, 0},
          {E::path3, 24},
          {E::p3, 12},
          {E::cycle4, 3},
          {E::q31, 0},
          {E::q10, 0},
          {E::et1, 12},
          {E::et2, 0},
          {E::et0, 0},
          {E::two3star, 10},
          {E::one2triangle, 9}}},
        // Bow tie: triangles 0-1-2 and 0-3-4 meet at node 0 only.
        {"bow tie",
         5,
         {{0, 1}, {0, 2}, {1, 2}, {0, 3}, {0, 4}, {3, 4}},
         {{E::bow_tie, 1},
          {E::triangle2, 0},
          {E::et1, 4},
          {E::et2, 2},
          {E::cycle4, 0},
          {E::one2et, 3}}},
        // Triangle 0-1-2 with a pendant tie 0-3 and an isolate 4.
        {"triangle with a pendant",
         5,
         {{0, 1}, {0, 2}, {1, 2}, {0, 3}},
         {{E::et0, 1},
          {E::etnt, 1},
          {E::et1, 1},
          {E::isolates, 1},
          {E::q10, 2},
          {E::path3, 5},
          {E::p3, 2}}},
        // The square 0-1-2-3: two untied pairs, each joined by two two-paths.
        {"square",
         4,
         {{0, 1}, {1, 2}, {2, 3}, {3, 0}},
         {{E::cycle4, 1}, {E::q10, 4}, {E::q20, 2}, {E::q30, 0}, {E::path3, 4}, {E::p3, 4}}},
        // K5: every tied pair has three common neighbours.
        {"K5",
         5,
         {{0, 1}, {0, 2}, {0, 3}, {0, 4}, {1, 2}, {1, 3}, {1, 4}, {2, 3}, {2, 4}, {3, 4}},
         {{E::q31, 10}, {E::clique5, 1}, {E::clique4, 5}, {E::star4, 5}}},
        // Triangle 0-1-2 with two further ties at 0: one 2ET, whatever the order of the build-up.
        // A change mixing ordered and unordered pairs of further ties sums to 1 in the first
        // order and to 2 in the second.
        {"2ET, triangle first", 5, {{0, 1}, {0, 2}, {1, 2}, {0, 3}, {0, 4}}, {{E::et2, 1}}},
        {"2ET, triangle last", 5, {{0, 1}, {0, 2}, {0, 3}, {0, 4}, {1, 2}}, {{E::et2, 1}}},
    };
    for (const Case& c : cases) {
        for (const auto& [effect, value] : c.values) {
            Graph g = create_graph(c.n);
            double sum = total(g, effect);  // the empty graph's value
            for (const auto& [a, b] : c.edges) {
                sum += added_change(g, effect, 0.0f, a, b);
                tie(g, a, b);
            }
            EXPECT_EQ(total(g, effect), value)
                << c.name << ": " << graph_about(effect).labels.report_name;
            // 0ET and ETNT have no change statistic.
            if (effect != E::et0 && effect != E::etnt) {
                EXPECT_EQ(sum, value) << c.name << " build-up";
            }
        }
    }
}

// Path 0-1-2; adding 0-2 closes a triangle: edge +1, 2-star +2 (d0 + d2), triangle +1. Slots out
// of catalogue order; 0ET writes 0 and adds nothing whatever its parameter; a parameter of exactly
// 0 keeps a non-finite change (AS with a spoilt table) out of the sum, though it is still written.
TEST(GraphEffects, CombinerWritesEverySlotAndWeighsNonzeroParameters) {
    Graph g = create_graph(4);
    tie(g, 0, 1);
    tie(g, 1, 2);
    std::vector<Term<Graph>> terms =
        terms_of({{E::triangle, 0}, {E::et0, 0}, {E::edge, 0}, {E::as, 2}, {E::star2, 0}});
    terms[4].weights.fill(std::nanf(""));  // AS: terms follow the catalogue
    const double parameters[5] = {10, 7, 1, 0, 100};
    double changes[5] = {5, 5, 5, 5, 5};
    Workspace workspace;
    EXPECT_EQ(change_statistics(g, terms, workspace, parameters, changes, 0, 2, 1), 10 + 1 + 200);
    EXPECT_EQ((std::vector<double>{changes[0], changes[1], changes[2], changes[4]}),
              (std::vector<double>{1, 0, 1, 2}));
    EXPECT_TRUE(std::isnan(changes[3]));
    EXPECT_EQ(
        change_statistics(g, std::vector<Term<Graph>>{}, workspace, nullptr, nullptr, 0, 2, 1),
        0.0);
}

TEST(GraphEffects, LambdaDefaultsAndAlternatingStarEdgeCases) {
    // A lambda of 0 means the row's default: 2 for AS, AT, A2P, AC, AET; 1 for AS2 and AT2.
    for (const auto& [effect, given, expected] :
         std::vector<std::tuple<E, float, float>>{{E::as, 0, 2},
                                                  {E::as2, 0, 1},
                                                  {E::at, 3.5f, 3.5f},
                                                  {E::at2, 0, 1},
                                                  {E::a2p, 0, 2},
                                                  {E::ac, 0, 2},
                                                  {E::aet, 0, 2}}) {
        Model model = empty_model(NetworkKind::graph);
        model.structural[static_cast<size_t>(effect)] = {0.0, 0, given};
        model.structural_included = 1;
        EXPECT_EQ(make_terms<Graph>(model)[0].lambda, expected)
            << graph_about(effect).labels.report_name;
    }

    // AS changes. Node 0 is the centre of a star with 150 leaves; 151 and 152 are isolated.
    Graph g = create_graph(153);
    for (int leaf = 1; leaf <= 150; ++leaf) tie(g, 0, leaf);
    EXPECT_EQ(added_change(g, E::as, 2.0f, 151, 152),
              0.0);                                        // 2 (2 - w(0) - w(0)) with two isolates
    EXPECT_EQ(added_change(g, E::as, 1.0f, 151, 1), 1.0);  // lambda 1: one endpoint was isolated
    EXPECT_EQ(added_change(g, E::as, 1.0f, 151, 152), 0.0);
    EXPECT_EQ(added_change(g, E::as, 0.5f, 151, 1),
              0.0);  // switched off below 1, not 1/2 (2 - 1 + 1)
    // Degree 150 reads the weight at 100: lambda (2 - w(100) - w(0)), not 100 (1 - 0.99^150)
    // = 77.9.
    EXPECT_NEAR(added_change(g, E::as, 100.0f, 0, 151), 100.0 * (1.0 - std::pow(0.99, 100)), 1e-5);
}

TEST(GraphEffects, CliquesBeyondOneWord) {
    // Nodes 0 and 1 share 70 common neighbours 2..71, more than one word of candidates; among them
    // the 4-clique 2-3-4-5 and the triangle 10-11-12.
    Graph g = create_graph(72);
    const Edges among{{2, 3}, {2, 4}, {2, 5}, {3, 4}, {3, 5}, {4, 5}, {10, 11}, {10, 12}, {11, 12}};
    for (const auto& [a, b] : among) tie(g, a, b);
    for (int k = 2; k < 72; ++k) tie(g, 0, k), tie(g, 1, k);
    Workspace workspace;
    prepare_workspace(workspace, terms_of({{E::ac, 2.0f}}));  // cliques of up to 8 nodes
    fill_clique_changes(g, workspace, 0, 1);
    // Adding 0-1: 70 triangles, 9 new 4-cliques (edges among the 70), 5 5-cliques (4 + 1
    // triangles), one 6-clique, nothing larger.
    EXPECT_EQ(workspace.clique_changes, (std::vector<double>{0, 1, 70, 9, 5, 1, 0, 0}));
    tie(g, 0, 1);
    count_cliques(g, workspace);
    const testing::BruteCounts counts = testing::brute_force_counts(testing::adjacency_of(g));
    for (size_t k = 1; k <= 8; ++k)
        EXPECT_EQ(workspace.clique_counts[k - 1], double(counts.cliques[k])) << k << "-cliques";
}

// Values of the two undirected classic networks published with the test data.
TEST(GraphEffects, KnownStatisticsOfClassicNetworks) {
    std::istringstream in(testing::read_text(testing::data_path("known_statistics.tsv")));
    std::string line, network, effect, lambda, value;
    std::getline(in, line);  // header
    int checked = 0;
    const auto& rows = structural_catalogue(NetworkKind::graph).rows;
    while (std::getline(in, line)) {
        std::istringstream(line) >> network >> effect >> lambda >>
            value;  // digraph rows are skipped
        const int n = network == "flomarriage" ? 16 : network == "faux.mesa.high" ? 205 : 0;
        if (n == 0) continue;
        const auto row = std::find_if(rows.begin(), rows.end(), [&](const auto& r) {
            return effect == r.labels.report_name;
        });
        ASSERT_NE(row, rows.end()) << line;
        Graph g = read_graph(testing::data_path(network + ".txt"), n);
        const float lambda_value = lambda == "NA" ? 0.0f : std::stof(lambda);
        const auto id = static_cast<GraphEffect>(row - rows.begin());
        EXPECT_NEAR(total(g, id, lambda_value), std::stod(value), 1e-5 * std::stod(value)) << line;
        ++checked;
    }
    EXPECT_EQ(checked, 38);
}

}  // namespace
}  // namespace vexa
