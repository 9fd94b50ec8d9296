// The report of goodness of fit over parameter sets: exact text on hand-made sets and draws.

#include "report/bayesian_report.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/test_support.h"

namespace vexa {
namespace {

using testing::capture;

TEST(BayesianReport, HeadingTableAndBounds) {
    const std::vector<ParameterLabel> labels{
        {.name = "edge", .position = 0},
        {.name = "AS", .position = 1, .alternating = true, .lambda = 2.0f, .integral = false}};
    // Sets (-1, 0.5) and (-2, 1.5): means -1.5 and 1, standard deviations 1/sqrt(2).
    Moments spread;
    spread.stddev = 0.70710678;
    std::vector<Moments> summary{spread, spread};
    summary[0].mean = -1.5;
    summary[1].mean = 1.0;
    // Four draws. Edge 18 20 22 24 against 20: mean 21, sd 2.582, t -0.387; 2 of 4 at or below,
    // so p = 1. AS 30.5 31.5 33.5 36.5 against 37: every draw below, p = 0. The measure
    // 1 2 1 2 against 1: 2 at or below, p = 1.
    GofSample sample;
    sample.statistics = {{18, 20, 22, 24}, {30.5, 31.5, 33.5, 36.5}};
    sample.measures = {{1.0, 2.0, 1.0, 2.0}};
    const std::string text = capture([&](FILE* out) {
        write_bayesian_heading(out, labels, summary, 4, 5000.0);
        write_bayesian_comparisons(out, NetworkKind::graph, 3000.0, 20000.0, labels, {20.0, 37.0},
                                   {"Skew degree dist"}, {1.0}, sample);
        write_bayesian_bounds(out, 1, 0);
    });
    EXPECT_EQ(text,
              "\n\nBAYESIAN GOODNESS OF FIT\n\n"
              "Parameter Values over the sets used:\neffects\tmean\tstddev\n"
              "edge\t-1.50000\t0.70711\nAS(2.00)\t1.00000\t0.70711\n"
              "Proposed 4 parameter sets.\nSamples were picked up with burnin 5000\n"
              "Accepted 3000 proposed graphs.\n"
              "observation, posterior predictive mean (standard deviation), t-statistic, p-value\n"
              "t-statistics = (observation - sample mean)/standard deviation\n"
              "p-value = 2 x min(share of samples >= observation, share of samples <= "
              "observation)\n\n"
              "effects\tobserved\tmean\tstddev\tt-ratio\tp-value\n"
              "edge\t20\t21.000\t2.582\t-0.387\t1.000\n"
              "AS(2.00)\t37.000\t33.000\t2.646\t1.512\t0.000\n"
              "Skew degree dist\t1.000\t1.500\t0.577\t-0.866\t1.000\n"
              "\nACCEPTANCE RATE: 0.1500\n\n"
              "Draws that ended at the empty network: 1\n"
              "Draws that ended at the complete network: 0\n");
}

}  // namespace
}  // namespace vexa
