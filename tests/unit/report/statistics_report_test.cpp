#include "report/statistics_report.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "effects/model.h"

namespace vexa {
namespace {

TEST(StatisticsReport, CountsWholeWeightedWithFiveDecimalsLambdaInTheLabel) {
    // A star: centre 0 with leaves 1, 2, 3. Three edges, three 2-stars, one 3-star, so
    // 2_3star = 3 - 1/2; AS at lambda 3 is 9 (w(3) - 1 + 1) = 9 (2/3)^3 = 8/3 (the leaves add 0).
    Graph g = create(4, 4, 0);
    for (const int leaf : {1, 2, 3}) {
        add_edge(g, 0, leaf);
        update_shared_partners(g, 0, leaf, 1);
    }
    Model model = empty_model(NetworkKind::graph);
    // Run-file order differs from catalogue order; the report follows the catalogue.
    model.structural[static_cast<size_t>(GraphEffect::as)].slot = 0;
    model.structural[static_cast<size_t>(GraphEffect::as)].lambda = 3.0f;
    model.structural[static_cast<size_t>(GraphEffect::edge)].slot = 1;
    model.structural[static_cast<size_t>(GraphEffect::two3star)].slot = 2;
    model.structural[static_cast<size_t>(GraphEffect::star2)].slot = 3;
    const std::vector<Term> terms = graph_terms(model);
    compute_totals(g, terms);

    char* buffer = nullptr;
    size_t size = 0;
    FILE* out = open_memstream(&buffer, &size);
    ASSERT_NE(out, nullptr);
    write_graph_statistics(out, g, terms);
    std::fclose(out);
    const std::string text(buffer, size);
    std::free(buffer);
    EXPECT_EQ(text,
              "\n***This graph contains:****\n"
              "edge\t3\n"
              "2-star\t3\n"
              "2_3star\t2.50000\n"
              "AS(3.00)\t2.66667\n");
}

}  // namespace
}  // namespace vexa
