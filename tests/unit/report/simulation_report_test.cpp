// The simulation report, the parameter file, the sample statistics table, the accept file and
// the statistics report: exact text for both network kinds.

#include "report/simulation_report.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "effects/graph/graph_catalogue.h"
#include "model/model.h"
#include "model/terms.h"
#include "report/statistics_report.h"
#include "support/graphs.h"
#include "support/kinds.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::capture;

TEST(SimulationReport, HeadingParametersAndClosingLineForBothKinds) {
    const std::vector<ParameterLabel> labels{
        {.name = "edge", .position = 0},
        {.name = "AS", .position = 1, .alternating = true, .lambda = 2.0f},
        {.name = "wealth_activity", .position = 2, .structural = false}};
    const std::vector<double> parameters{-1.0, 0.2, 0.123456};
    const SamplingPlan plan{300.0, 100.0};
    const std::string lines = "edge\t-1.00000\nAS(2.00)\t0.20000\nwealth_activity\t0.12346\n";
    EXPECT_EQ(capture([&](FILE* out) { write_parameter_lines(out, labels, parameters); }), lines);
    const auto heading = [&](NetworkKind kind) {
        return capture([&](FILE* out) {
            write_simulation_heading(out, kind, 12, labels, parameters, plan);
            write_accepted_total(out, kind, 57.0);
        });
    };
    EXPECT_EQ(heading(NetworkKind::graph),
              "Simulation started for graph with 12 vertices\nParameter Values:\n" + lines +
                  "Proposed 300 graphs.\nSamples are picked up at 1 per 100 graphs.\n"
                  "Accepted 57 proposed graphs.");
    EXPECT_EQ(heading(NetworkKind::digraph),
              "Simulation result for digraph with 12 of vertices.\nParameter Values of:\n" + lines +
                  "Proposed 300 digraphs.\nSamples are picked up at 1 per 100 digraphs.\n"
                  "Accepted 57 proposed digraphs.");
}

TEST(SimulationReport, SampleStatisticsAndAcceptFiles) {
    // Columns by position: a count, a weighted statistic and a count read from slot 0.
    const std::vector<ParameterLabel> columns{{.name = "edge", .position = 1},
                                              {.name = "as", .position = 2, .integral = false},
                                              {.name = "star3", .position = 0}};
    const std::vector<double> statistics{40.0, 17.0, 26.0 / 3.0};
    EXPECT_EQ(capture([&](FILE* out) {
                  write_sample_statistics_header(out, columns);
                  write_sample_statistics_row(out, 100.0, statistics, columns);
                  write_sample_statistics_row(out, 2000000.0, statistics, columns);
              }),
              "id\tedge\tas\tstar3\t\n100\t17\t8.67\t40\t\n2000000\t17\t8.67\t40\t\n");
    // Proposal and rate right-aligned in eight characters.
    EXPECT_EQ(capture([](FILE* out) {
                  write_accept_heading(out, NetworkKind::graph);
                  write_accept_row(out, 100.0, 0.37);
                  write_accept_row(out, 12345678.0, 1.0);
                  write_accept_heading(out, NetworkKind::digraph);
              }),
              "Acceptance Rate (non-Digraph)\n     100\t  0.3700\n12345678\t  1.0000\n"
              "Acceptance Rate(Digraph)\n");
}

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
