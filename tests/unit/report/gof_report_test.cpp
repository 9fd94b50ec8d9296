// The goodness-of-fit report, its sample table and its form over parameter sets: exact text on
// hand-made samples.

#include "report/gof_report.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "report/bayesian_report.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::capture;

TEST(GofReport, HeadingAndComparisonsForBothKinds) {
    // Four samples. Edge 18 20 22 24: mean 21, variance 20 / 3, so t = -1 / 2.582 for 20.
    // AS 30.5 31.5 33.5 36.5: mean 33, variance 21 / 3 = 7; 33.5625 prints as 33.562 (a tie,
    // rounded to even). Measures 1 2 1 2 and 0.2 0.2 0.3 0.3: each observed value lies twice the
    // half-spread above the mean, t = 2 / sqrt(4/3) = 1.732.
    const std::vector<ParameterLabel> labels{
        {.name = "edge", .position = 0},
        {.name = "AS", .position = 1, .alternating = true, .lambda = 2.0f, .integral = false}};
    GofSample sample;
    sample.statistics = {{18, 20, 22, 24}, {30.5, 31.5, 33.5, 36.5}};
    sample.measures = {{1.0, 2.0, 1.0, 2.0}, {0.2, 0.2, 0.3, 0.3}};
    const auto report = [&](NetworkKind kind) {
        return capture([&](FILE* out) {
            write_gof_heading(out, kind, labels, {-1.6094379, 0.0}, {300.0, 75.0});
            write_gof_comparisons(out, kind, 57.0, 300.0, labels, {20.0, 33.5625},
                                  {"Std Dev degree dist", "Global Clustering"}, {2.5, 0.35},
                                  sample);
        });
    };
    const std::string head =
        "\n\n GOODNESS OF FIT\n\nParameter Values:\nedge\t-1.60944\nAS(2.00)\t0.00000\n";
    const std::string rows =
        "t-statistics = (observation - sample mean)/standard deviation\n\n"
        "effects\tobserved\tmean\tstddev\tt-ratio\n"
        "edge\t20\t21.000\t2.582\t-0.387\n"
        "AS(2.00)\t33.562\t33.000\t2.646\t0.213\n"
        "Std Dev degree dist\t2.500\t1.500\t0.577\t1.732\n"
        "Global Clustering\t0.350\t0.250\t0.058\t1.732\n"
        "\nACCEPTANCE RATE: 0.1900\n\n";
    // The graph report's first word is misspelt and stays so.
    EXPECT_EQ(report(NetworkKind::graph),
              head +
                  "Proposed 300 graphs.\nSamples were picked up at 1 per 75 graphs.\n"
                  "Accepted 57 proposed graphs.\n"
                  "obeservation, sample mean (standard error), t-statistic for observed "
                  "network\n" +
                  rows);
    EXPECT_EQ(report(NetworkKind::digraph),
              head +
                  "Proposed 300 digraphs.\nSamples were picked up at 1 per 75 digraphs.\n"
                  "Accepted 57 proposed digraphs.\n"
                  "observation, sample mean (standard error), t-statistic\n" +
                  rows);
}

TEST(GofReport, QuartileBlocks) {
    // Five samples (G25, G50, G75); sorted G25 1 1 1 2 2, G50 2 2 2 3 3, G75 3 3 4 4 5. With
    // N = 5 the median is entry floor(0.5 x 6) = 3 and the range entry 4 minus entry 1.
    // Observed 1, 3, 4: G25 none below, two above; G50 three below; G75 two below, one above.
    GofSample sample;
    sample.quartiles = {{1, 2, 3}, {2, 2, 4}, {1, 3, 4}, {1, 2, 5}, {2, 3, 3}};
    EXPECT_EQ(capture([&](FILE* out) {
                  write_gof_quartiles(out, {1, 3, 4}, sample);
              }),
              "SAMPLE GEODESIC DISTRIBUTION\n"
              "Note: geodesic = shortest path between two nodes.\n"
              "The geodesic distribution is not based on semi-paths.\n\n"
              "FIRST QUARTILES\nMedian of sample G25s: 2\nInterquartile range: 1\n"
              "Observed first quartile geodesic: 1\n"
              "in model samples, 0.00% of graphs have lower G25.\n"
              "in model samples, 40.00% of graphs have higher G25.\n\n"
              "SECOND QUARTILES\nMedian of sample G50s: 3\nInterquartile range: 1\n"
              "Observed median geodesic: 3\n"
              "in model samples, 60.00% of graphs have lower G50.\n"
              "in model samples, 0.00% of graphs have higher G50.\n\n"
              "THIRD QUARTILES\nMedian of sample G75s: 4\nInterquartile range: 2\n"
              "Observed first quartile geodesic: 4\n"
              "in model samples, 40.00% of graphs have lower G75.\n"
              "in model samples, 20.00% of graphs have higher G75.\n\n");
}

TEST(GofReport, MahalanobisLinesAndTheSampleTable) {
    Mahalanobis distance;
    distance.available = true;
    distance.sample_forms = {1.5, 0.5};
    distance.observed_form = 1.6;
    distance.observed_distance = std::sqrt(1.6);
    distance.closer_percent = 50.0;
    const auto lines = [&](NetworkKind kind) {
        return capture([&](FILE* out) { write_gof_mahalanobis(out, kind, distance); });
    };
    EXPECT_EQ(
        lines(NetworkKind::graph),
        "Mahalanobis distance =1.264911\n"
        "50% simulated samples have smaller Mahalanobis distances than the observed network\n");
    EXPECT_EQ(
        lines(NetworkKind::digraph),
        "Mahalanobis distance =1.264911 (1.600000)\n"
        "50% simulated samples have smaller Mahalanobis distances than the observed network.\n");
    distance.available = false;
    EXPECT_EQ(lines(NetworkKind::graph),
              "Mahalanobis distance not available: the sampled statistics are collinear (their "
              "covariance matrix is singular)\n");

    GofSample sample;
    sample.numbers = {400.0, 800.0};
    sample.statistics = {{20.0, 22.0}, {33.5625, 30.25}};
    const std::vector<ParameterLabel> columns{{.name = "edge", .position = 0},
                                              {.name = "as", .position = 1, .integral = false}};
    EXPECT_EQ(capture([&](FILE* out) { write_gof_sample_table(out, columns, sample, distance); }),
              "id\tedge\tas\tmahalanobis\n"
              "400\t20.000000\t33.562500\t1.500000\t\n"
              "800\t22.000000\t30.250000\t0.500000\t\n");
}

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
