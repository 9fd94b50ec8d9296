// Hand-worked checks of the structural effects of both network kinds: configurations counted
// by hand, what a recount on small random networks cannot see, and the published values of the
// bundled classic networks.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "effects/combiner.h"
#include "effects/digraph/digraph_catalogue.h"
#include "effects/graph/graph_catalogue.h"
#include "model/terms.h"
#include "support/kinds.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using E = GraphEffect;
using D = DigraphEffect;
using Ties = std::vector<std::pair<int, int>>;
using testing::toggle;

template <class Store>
Store store_of(int n, const Ties& ties) {
    typename testing::KindFixture<Store>::Matrix m(n);
    for (const auto& [i, j] : ties) m.set(i, j, true);
    return testing::KindFixture<Store>::build(m);
}

template <class Store>
double total(const Store& store, int row, float lambda = 0.0f) {
    const Model model = testing::single_effect_model(Store::kind, row, lambda);
    return testing::totals_of(store, make_terms<Store>(model), 1)[0];
}

// A graph model with the given effects at slots 0, 1, ... in the order given.
std::vector<Term<Graph>> terms_of(const std::vector<std::pair<GraphEffect, float>>& effects) {
    Model model = empty_model(NetworkKind::graph);
    int32_t slot = 0;
    for (const auto& [effect, lambda] : effects)
        model.structural[static_cast<size_t>(effect)] = {0.0, slot++, lambda};
    model.structural_included = slot;
    return make_terms<Graph>(model);
}

double added_change(const Graph& g, GraphEffect effect, float lambda, int i, int j) {
    const std::vector<Term<Graph>> terms = terms_of({{effect, lambda}});
    Workspace workspace;
    prepare_workspace(workspace, terms);
    double one = 1.0, out = 0.0;
    change_statistics(g, terms, workspace, &one, &out, i, j, 1);
    return out;
}

template <class Store, class Effect>
void expect_counts(const char* name, int n, const Ties& ties,
                   const std::vector<std::pair<Effect, double>>& values) {
    const Store store = store_of<Store>(n, ties);
    for (const auto& [effect, value] : values) {
        EXPECT_EQ(total(store, static_cast<int>(effect)), value)
            << name << ": "
            << structural_catalogue(Store::kind)
                   .rows[static_cast<size_t>(effect)]
                   .labels.report_name;
    }
}

// Configurations the published values of the classic networks leave out, counted by hand: the
// recounts the property suite trusts are checked here.
// clang-format off
TEST(Effects, HandCountedConfigurationsWithoutPublishedValues) {
    // K4: four triangles, each pair sharing an edge; 4! / 2 simple 3-paths.
    expect_counts<Graph, E>("K4", 4, {{0, 1}, {0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 3}},
        {{E::clique4, 1}, {E::triangle2, 6}, {E::bow_tie, 0}, {E::p3, 12}, {E::q31, 0},
         {E::q10, 0}, {E::et1, 12}, {E::et2, 0}, {E::et0, 0}, {E::two3star, 10},
         {E::one2triangle, 9}});
    // Bow tie: triangles 0-1-2 and 0-3-4 meet at node 0 only.
    expect_counts<Graph, E>("bow tie", 5, {{0, 1}, {0, 2}, {1, 2}, {0, 3}, {0, 4}, {3, 4}},
        {{E::bow_tie, 1}, {E::triangle2, 0}, {E::et1, 4}, {E::et2, 2}, {E::one2et, 3}});
    // Triangle 0-1-2 with a pendant tie 0-3 and an isolate 4.
    expect_counts<Graph, E>("triangle with a pendant", 5, {{0, 1}, {0, 2}, {1, 2}, {0, 3}},
        {{E::et0, 1}, {E::etnt, 1}, {E::et1, 1}, {E::q10, 2}, {E::p3, 2}});
    // The square 0-1-2-3: two untied pairs, each joined by two two-paths.
    expect_counts<Graph, E>("square", 4, {{0, 1}, {1, 2}, {2, 3}, {3, 0}},
        {{E::q10, 4}, {E::q20, 2}, {E::q30, 0}, {E::p3, 4}});
    // K5: every tied pair has three common neighbours.
    expect_counts<Graph, E>("K5", 5,
        {{0, 1}, {0, 2}, {0, 3}, {0, 4}, {1, 2}, {1, 3}, {1, 4}, {2, 3}, {2, 4}, {3, 4}},
        {{E::q31, 10}, {E::clique5, 1}, {E::clique4, 5}});
    // Complete triad: one T1; each of the six orderings a transitive triple.
    // T2 to T8 count configurations, not induced triads: 6, 6, 3, 3, 3, 6, 6.
    expect_counts<Digraph, D>("complete triad", 3, {{0, 1}, {1, 0}, {0, 2}, {2, 0}, {1, 2}, {2, 1}},
        {{D::t1, 1}, {D::t2, 6}, {D::t3, 6}, {D::t4, 3}, {D::t5, 3}, {D::t6, 3}, {D::t7, 6},
         {D::t8, 6}});
    // 0 <-> 1 and node 2 sending to both ends: one T4 (120D), two T7 (k->a, a in the dyad).
    expect_counts<Digraph, D>("mutual dyad with a common sender", 3, {{0, 1}, {1, 0}, {2, 0}, {2, 1}},
        {{D::t4, 1}, {D::t7, 2}, {D::t1, 0}, {D::t2, 0}, {D::t3, 0}, {D::t5, 0}, {D::t6, 0},
         {D::t8, 0}});
}
// clang-format on

// Path 0-1-2; adding 0-2 closes a triangle: edge +1, 2-star +2 (d0 + d2), triangle +1. Slots out
// of catalogue order; 0ET writes 0 and adds nothing whatever its parameter; a parameter of exactly
// 0 keeps a non-finite change (AS with a spoilt table) out of the sum, though it is still written.
TEST(Effects, CombinerWritesEverySlotAndWeighsNonzeroParameters) {
    const Graph g = store_of<Graph>(4, {{0, 1}, {1, 2}});
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

TEST(Effects, LambdaDefaultsAndAlternatingStarEdgeCases) {
    // A lambda of 0 in the run file means the row's default; any other is kept.
    for (const NetworkKind kind : {NetworkKind::graph, NetworkKind::digraph}) {
        const CatalogueView& catalogue = structural_catalogue(kind);
        for (int row = 0; row < static_cast<int>(catalogue.rows.size()); ++row) {
            const EffectDescription& about = catalogue.rows[static_cast<size_t>(row)];
            if (!about.alternating()) continue;
            for (const float given : {0.0f, 3.5f}) {
                const Model model = testing::single_effect_model(kind, row, given);
                const float lambda = kind == NetworkKind::graph
                                         ? make_terms<Graph>(model)[0].lambda
                                         : make_terms<Digraph>(model)[0].lambda;
                EXPECT_EQ(lambda, given == 0.0f ? about.lambda_default : given)
                    << about.labels.report_name;
            }
        }
    }

    // Node 0 is the centre of a star with 150 leaves; 151 is isolated.
    Graph g = create_graph(152);
    for (int leaf = 1; leaf <= 150; ++leaf) toggle(g, 0, leaf);
    // Degree 150 reads the weight at 100: lambda (2 - w(100) - w(0)), not 100 (1 - 0.99^150).
    EXPECT_NEAR(added_change(g, E::as, 100.0f, 0, 151), 100.0 * (1.0 - std::pow(0.99, 100)), 1e-5);
}

TEST(Effects, CliquesBeyondOneWord) {
    // Nodes 0 and 1 share 70 common neighbours 2..71, more than one word of candidates; among them
    // the 4-clique 2-3-4-5 and the triangle 10-11-12.
    Graph g = create_graph(72);
    const Ties among{{2, 3}, {2, 4}, {2, 5}, {3, 4}, {3, 5}, {4, 5}, {10, 11}, {10, 12}, {11, 12}};
    for (const auto& [a, b] : among) toggle(g, a, b);
    for (int k = 2; k < 72; ++k) toggle(g, 0, k), toggle(g, 1, k);
    Workspace workspace;
    prepare_workspace(workspace, terms_of({{E::ac, 2.0f}}));  // cliques of up to 8 nodes
    fill_clique_changes(g, workspace, 0, 1);
    // Adding 0-1: 70 triangles, 9 new 4-cliques (edges among the 70), 5 5-cliques (4 + 1
    // triangles), one 6-clique, nothing larger.
    EXPECT_EQ(workspace.clique_changes, (std::vector<double>{0, 1, 70, 9, 5, 1, 0, 0}));
    toggle(g, 0, 1);
    count_cliques(g, workspace);
    const testing::BruteCounts counts =
        testing::brute_force_counts(testing::KindFixture<Graph>::adjacency(g));
    for (size_t k = 1; k <= 8; ++k)
        EXPECT_EQ(workspace.clique_counts[k - 1], double(counts.cliques[k])) << k << "-cliques";
}

// Every value of the classic networks published with the test data: two graphs, one digraph
// (its triad census is the census tests' business).
TEST(Effects, KnownStatisticsOfClassicNetworks) {
    // clang-format off
    const std::map<std::string, D> digraph_rows = {
        {"arc", D::arc}, {"reciprocity", D::reciprocity}, {"in-2-star", D::in_star2},
        {"out-2-star", D::out_star2}, {"in-3-star", D::in_star3}, {"out-3-star", D::out_star3},
        {"in-4-star", D::in_star4}, {"out-4-star", D::out_star4},
        {"mixed 2-star (path2)", D::mixed_star2}, {"T9(030T)", D::t9}, {"T10(030C)", D::t10},
        {"Isolates", D::isolates}, {"Sink", D::sink}, {"Source", D::source}, {"AinS", D::ain_s},
        {"AoutS", D::aout_s}, {"AT-T", D::at_t}, {"AT-C", D::at_c}, {"AT-D", D::at_d},
        {"AT-U", D::at_u}, {"AT-TD", D::at_td}, {"AT-TU", D::at_tu}, {"AT-DU", D::at_du},
        {"A2P-T", D::a2p_t}, {"A2P-D", D::a2p_d}, {"A2P-U", D::a2p_u}};
    // clang-format on
    const std::map<std::string, Graph> graphs = {
        {"flomarriage", read_graph(testing::data_path("flomarriage.txt"), 16)},
        {"faux.mesa.high", read_graph(testing::data_path("faux.mesa.high.txt"), 205)}};
    const Digraph samplike = read_digraph(testing::data_path("samplike.txt"), 18);
    const auto& graph_rows = structural_catalogue(NetworkKind::graph).rows;
    std::istringstream lines(testing::read_text(testing::data_path("known_statistics.tsv")));
    std::string line;
    std::getline(lines, line);  // header
    int checked = 0;
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string network, effect, lambda_text, value_text;
        for (std::string* field : {&network, &effect, &lambda_text, &value_text})
            std::getline(fields, *field, '\t');
        if (effect.rfind("triad census", 0) == 0) continue;
        const float lambda = lambda_text == "NA" ? 0.0f : std::stof(lambda_text);
        double value = 0.0;
        if (network == "samplike") {
            ASSERT_TRUE(digraph_rows.count(effect)) << line;
            value = total(samplike, static_cast<int>(digraph_rows.at(effect)), lambda);
        } else {
            const auto row = std::find_if(graph_rows.begin(), graph_rows.end(), [&](const auto& r) {
                return effect == r.labels.report_name;
            });
            ASSERT_TRUE(row != graph_rows.end() && graphs.count(network)) << line;
            value = total(graphs.at(network), static_cast<int>(row - graph_rows.begin()), lambda);
        }
        const double expected = std::stod(value_text);
        if (lambda == 0.0f) {
            EXPECT_EQ(value, expected) << line;
        } else {
            EXPECT_NEAR(value, expected, 1e-5 * expected) << line;
        }
        ++checked;
    }
    EXPECT_EQ(checked, 76);
}

}  // namespace
}  // namespace vexa
