// The statistics report on a hand-counted star, with slots in another order than the
// catalogue's; the simulation files' layout is in the golden outputs.

#include "report/statistics_report.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "effects/graph/graph_catalogue.h"
#include "model/model.h"
#include "model/terms.h"
#include "support/graphs.h"
#include "support/kinds.h"
#include "support/test_support.h"

namespace vexa {
namespace {

TEST(StatisticsReport, CountsWholeWeightedWithFiveDecimalsLambdaInTheLabel) {
    // A star: centre 0 with leaves 1, 2, 3. Three edges, three 2-stars, one 3-star, so
    // 2_3star = 3 - 1/2; AS at lambda 3 is 9 (w(3) - 1 + 1) = 9 (2/3)^3 = 8/3 (the leaves add 0).
    const Graph g = testing::graph_of(4, {{0, 1}, {0, 2}, {0, 3}});
    // Slots in another order than the catalogue's; the report follows the catalogue.
    Model model = empty_model(NetworkKind::graph);
    model.structural[static_cast<size_t>(GraphEffect::as)] = {0.0, 0, 3.0f};
    model.structural[static_cast<size_t>(GraphEffect::edge)].slot = 1;
    model.structural[static_cast<size_t>(GraphEffect::two3star)].slot = 2;
    model.structural[static_cast<size_t>(GraphEffect::star2)].slot = 3;
    model.structural_included = 4;
    const std::vector<double> statistics = testing::totals_of(g, make_terms<Graph>(model), 4);
    const auto labels = parameter_labels(model, LabelStyle::report, LabelOrder::catalogue);
    EXPECT_EQ(
        testing::capture([&](FILE* out) { write_statistics_report(out, labels, statistics); }),
        "\n***This graph contains:****\nedge\t3\n2-star\t3\n2_3star\t2.50000\nAS(3.00)\t2.66667\n");
}

}  // namespace
}  // namespace vexa
