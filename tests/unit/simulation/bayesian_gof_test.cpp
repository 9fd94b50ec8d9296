// Goodness of fit over parameter sets: the sets file reader, the posterior predictive p-value
// on hand-worked samples, the summary of the sets, and where a draw ends.

#include "simulation/bayesian_gof.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "base/errors.h"
#include "network/digraph.h"
#include "support/graphs.h"
#include "support/test_support.h"

namespace vexa {
namespace {

std::string error_of(const std::string& path, int p, int wanted) {
    try {
        read_parameter_sets(path, p, wanted);
    } catch (const InputFileError& error) {
        return error.what();
    }
    return "no error";
}

TEST(ParameterSets, ReadsVectorsPerLineAndNamesTheLineOfABadOne) {
    const std::string dir = testing::scratch_directory("parameter_sets");
    const std::string path = dir + "/sets.txt";
    // Tabs, blanks, a blank line and a Windows line end; the fourth vector is never read.
    testing::write_text(path, "-1.5\t0.25\n\n2e-1   -3\r\n0 1\n7 8\n");
    EXPECT_EQ(read_parameter_sets(path, 2, 3).sets,
              (std::vector<std::vector<double>>{{-1.5, 0.25}, {0.2, -3.0}, {0.0, 1.0}}));
    // Fewer vectors than wanted: those there are.
    EXPECT_EQ(read_parameter_sets(path, 2, 10).sets.size(), 4u);

    const std::string name = "parameter sets file '" + path + "'";
    testing::write_text(path, "1 2\n\n3\n4 5\n");
    EXPECT_EQ(error_of(path, 2, 5),
              "vexa: " + name + ", line 3: 1 values, but the model has 2 parameters");
    testing::write_text(path, "1 2 3\n");
    EXPECT_EQ(error_of(path, 2, 5),
              "vexa: " + name + ", line 1: 3 values, but the model has 2 parameters");
    testing::write_text(path, "1 2\n1 x2\n");
    EXPECT_EQ(error_of(path, 2, 5),
              "vexa: " + name + ", line 2, value 2: 'x2' is not a finite number");
    testing::write_text(path, "inf 2\n");
    EXPECT_EQ(error_of(path, 2, 5),
              "vexa: " + name + ", line 1, value 1: 'inf' is not a finite number");
    // A bad line past the vectors wanted is never read.
    testing::write_text(path, "1 2\nnonsense\n");
    EXPECT_EQ(read_parameter_sets(path, 2, 1).sets.size(), 1u);
    testing::write_text(path, "\n \n");
    EXPECT_EQ(error_of(path, 2, 5), "vexa: " + name + " holds no parameter set");
    EXPECT_EQ(error_of(dir + "/absent.txt", 2, 5),
              "vexa: cannot open parameter sets file '" + dir + "/absent.txt'");
}

TEST(ParameterSets, SummaryAndPosteriorPredictiveP) {
    // Sets (1, 10) and (3, 14): means 2 and 12, standard deviations sqrt(2) and sqrt(8).
    const std::vector<Moments> summary = summarise_sets({{1.0, 10.0}, {3.0, 14.0}}, 2);
    ASSERT_EQ(summary.size(), 2u);
    EXPECT_DOUBLE_EQ(summary[0].mean, 2.0);
    EXPECT_DOUBLE_EQ(summary[1].mean, 12.0);
    EXPECT_DOUBLE_EQ(summary[0].stddev, std::sqrt(2.0));
    EXPECT_DOUBLE_EQ(summary[1].stddev, std::sqrt(8.0));

    // Sample 1..5. Observed 2: 4 of 5 at or above, 2 of 5 at or below, p = 2 x 2/5. Observed 3,
    // the median: 2 x 3/5 is above 1, so 1. Beyond either end: 0. At the top: 2 x 1/5.
    const std::vector<double> sample{5, 1, 4, 2, 3};
    EXPECT_DOUBLE_EQ(posterior_predictive_p(2.0, sample), 0.8);
    EXPECT_DOUBLE_EQ(posterior_predictive_p(3.0, sample), 1.0);
    EXPECT_DOUBLE_EQ(posterior_predictive_p(0.5, sample), 0.0);
    EXPECT_DOUBLE_EQ(posterior_predictive_p(6.0, sample), 0.0);
    EXPECT_DOUBLE_EQ(posterior_predictive_p(5.0, sample), 0.4);
    // Ties count on both sides: a sample that never varies from the observed value gives 1.
    EXPECT_DOUBLE_EQ(posterior_predictive_p(7.0, {7, 7, 7}), 1.0);
    EXPECT_DOUBLE_EQ(posterior_predictive_p(7.0, {}), 1.0);
}

TEST(ParameterSets, DrawsEndAtTheEmptyOrCompleteNetworkOrBetween) {
    EXPECT_EQ(bound_of(testing::graph_of(3, {})), Bound::empty);
    EXPECT_EQ(bound_of(testing::graph_of(3, {{0, 1}, {1, 2}})), Bound::none);
    EXPECT_EQ(bound_of(testing::graph_of(3, {{0, 1}, {1, 2}, {0, 2}})), Bound::complete);
    Digraph d = create_digraph(2);
    EXPECT_EQ(bound_of(d), Bound::empty);
    add_arc(d, 0, 1);
    EXPECT_EQ(bound_of(d), Bound::none);  // one of two ordered pairs
    add_arc(d, 1, 0);
    EXPECT_EQ(bound_of(d), Bound::complete);
}

}  // namespace
}  // namespace vexa
