// A dyad-independent model has a closed-form maximum likelihood estimate: edge + same
// category on the school network, estimated through the entry and compared with the answer
// counted from the files. Statistical and a few seconds long: in the slow suite, out of the
// sanitized run.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <sstream>
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
    // categories and the difference of the log-odds within and between, counted here from the
    // files themselves (the school network, grades 7 to 12).
    const std::string dir = testing::scratch_directory("estimation_same_category");
    for (const char* name : {"faux.mesa.high.txt", "faux.mesa.high_attributes.txt"}) {
        std::filesystem::copy_file(testing::data_path(name), dir + "/" + name,
                                   std::filesystem::copy_options::overwrite_existing);
    }
    std::istringstream matrix(read_text(dir + "/faux.mesa.high.txt"));
    std::istringstream attributes(read_text(dir + "/faux.mesa.high_attributes.txt"));
    std::string word;
    attributes >> word >> word >> word;  // Grade Race Sex
    std::vector<std::string> grade;
    for (std::string g, race, sex; attributes >> g >> race >> sex;) grade.push_back(g);
    const auto n = static_cast<int>(grade.size());
    ASSERT_EQ(n, 205);
    double pairs[2] = {0, 0}, ties[2] = {0, 0};  // between, within
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) {
            int cell = 0;
            matrix >> cell;
            if (j <= i) continue;
            const int same = grade[static_cast<size_t>(i)] == grade[static_cast<size_t>(j)];
            pairs[same] += 1;
            ties[same] += cell;
        }
    }
    auto logit = [](double tied, double all) { return std::log(tied / (all - tied)); };
    const double edge = logit(ties[0], pairs[0]);
    const double same = logit(ties[1], pairs[1]) - edge;

    GraphRunFile file;
    file.nodes = n;
    file.network_file = "faux.mesa.high.txt";
    file.effects = {{"edge", {0.0, 0.0}}};
    file.attribute_sections = testing::grade_same_category_sections();
    file.factor = 40;
    file.runs = 10;
    run_vexa(dir, file, 2);
    const std::vector<SummaryRow> summary =
        last_summary(read_text(dir + "/out/estimation_net.txt"));
    ASSERT_EQ(summary.size(), 2u);
    EXPECT_EQ(summary[1].label, "Grade_matching");
    EXPECT_LT(std::fabs(summary[0].t), 0.1);
    // A converged estimate sits within a fraction of its standard error of the answer.
    EXPECT_NEAR(summary[0].estimate, edge, 0.3 * summary[0].se);
    EXPECT_NEAR(summary[1].estimate, same, 0.3 * summary[1].se);
}

}  // namespace
}  // namespace vexa
