// A dyad-independent model has a closed-form maximum likelihood estimate: edge + same
// category on the school network, estimated through the entry and compared with the answer
// counted from the files. Statistical and a few seconds long: in the slow suite, out of the
// sanitized run.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::GraphRunFile;
using testing::last_summary;
using testing::read_text;
using testing::run_vexa;
using testing::SummaryRow;

TEST(GraphEstimation, SameCategoryModelHasItsClosedForm) {
    // Edge + same category is dyad-independent: the estimates are the log-odds of a tie between
    // categories and the difference of the log-odds within and between, counted from the
    // files themselves (the school network, grades 7 to 12).
    const std::string dir = testing::scratch_directory("estimation_same_category");
    const std::vector<double> exact = testing::school_homophily_estimates();
    GraphRunFile file = testing::on_school_network(dir);
    file.effects = {{"edge", {0.0, 0.0}}};
    file.factor = 40;
    file.runs = 10;
    run_vexa(dir, file, 2);
    const std::vector<SummaryRow> summary =
        last_summary(read_text(dir + "/out/estimation_net.txt"));
    ASSERT_EQ(summary.size(), 2u);
    EXPECT_EQ(summary[1].label, "Grade_matching");
    EXPECT_LT(std::fabs(summary[0].t), 0.1);
    // A converged estimate sits within a fraction of its standard error of the answer.
    EXPECT_NEAR(summary[0].estimate, exact[0], 0.3 * summary[0].se);
    EXPECT_NEAR(summary[1].estimate, exact[1], 0.3 * summary[1].se);
}

}  // namespace
}  // namespace vexa
