// The change-statistics and log-odds files against a hand-worked network.
#include "report/logodds.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "effects/graph/graph_catalogue.h"
#include "model/model.h"
#include "model/terms.h"
#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

TEST(LogOdds, EveryPairCarriesItsChangesAndTheWeightedSumOfThem) {
    //  0 - 1       a triangle 0 1 2 with a pendant 3 on node 2, node 4 isolated
    //   \ /
    //    2 - 3     4
    Model model = empty_model(NetworkKind::graph);
    for (const GraphEffect effect :
         {GraphEffect::edge, GraphEffect::star2, GraphEffect::triangle}) {
        model.structural[static_cast<size_t>(effect)].slot = model.structural_included++;
    }
    const std::vector<Term<Graph>> terms = make_terms<Graph>(model);
    Graph g = create_graph(5);
    for (const auto& [i, j] : {std::pair{0, 1}, {0, 2}, {1, 2}, {2, 3}}) {
        add_edge(g, i, j);
        update_shared_partners(g, i, j, 1);
    }
    const Graph before = g;
    const std::vector<double> theta{-2.0, 0.25, 1.5};
    std::string logodds;
    const std::string changes = testing::capture([&](FILE* change_out) {
        logodds = testing::capture([&](FILE* logodds_out) {
            write_change_statistics_and_logodds(g, terms, theta,
                                                parameter_labels(model, LabelStyle::column),
                                                change_out, logodds_out);
        });
    });
    EXPECT_TRUE(g.adjacency == before.adjacency && g.shared_partners == before.shared_partners &&
                g.degree == before.degree && g.triangles == before.triangles);

    // Per pair (i, j), counted by hand on the network without the tie: the tie itself, the
    // 2-stars it adds (d_i + d_j) and the triangles it closes (common neighbours).
    struct Pair {
        int i, j, tie, stars, triangles;
    };
    const std::vector<Pair> expected = {
        {1, 2, 1, 2, 1}, {1, 3, 1, 3, 1}, {1, 4, 0, 3, 1}, {1, 5, 0, 2, 0}, {2, 3, 1, 3, 1},
        {2, 4, 0, 3, 1}, {2, 5, 0, 2, 0}, {3, 4, 1, 2, 0}, {3, 5, 0, 3, 0}, {4, 5, 0, 1, 0}};
    const std::vector<std::string> change_lines = testing::lines_of(changes);
    const std::vector<std::string> logodds_lines = testing::lines_of(logodds);
    ASSERT_EQ(change_lines.size(), 1 + expected.size());
    ASSERT_EQ(logodds_lines.size(), 1 + expected.size());
    EXPECT_EQ(change_lines[0], "i\tj\ttie\tedge\tstar2\ttri\t");
    EXPECT_EQ(logodds_lines[0], "i\tj\ttie\tlogodds\tprobability");
    for (size_t k = 0; k < expected.size(); ++k) {
        const Pair& p = expected[k];
        char line[128];
        std::snprintf(line, sizeof line, "%d\t%d\t%d\t1\t%d\t%d\t", p.i, p.j, p.tie, p.stars,
                      p.triangles);
        EXPECT_EQ(change_lines[k + 1], line);
        const double sum = theta[0] + theta[1] * p.stars + theta[2] * p.triangles;
        std::snprintf(line, sizeof line, "%d\t%d\t%d\t%f\t%f", p.i, p.j, p.tie, sum,
                      1.0 / (1.0 + std::exp(-sum)));
        EXPECT_EQ(logodds_lines[k + 1], line);
    }
}

}  // namespace
}  // namespace vexa
