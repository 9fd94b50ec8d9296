// The automatic mode on models whose maximum likelihood estimate has a closed form: it starts
// there (a model of independent dyads has its likelihood maximised exactly), converges in its
// first run for nearly every seed, and ends within a twentieth of a standard error of the
// exact value.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

struct Fit {
    std::string printed;
    std::vector<testing::SummaryRow> summary;
    int status = -1;
};

Fit fit_automatically(const testing::GraphRunFile& file, const std::string& dir, uint32_t seed) {
    Fit fit;
    fit.printed = testing::run_vexa(dir, file, seed, false, &fit.status, true);
    fit.summary = testing::last_summary(testing::read_text(dir + "/out/estimation_net.txt"));
    return fit;
}

// Ten seeds: at least nine converge in their first run, and every fit ends within
// `tolerance` standard errors of the exact values.
using MakeRunFile = std::function<testing::GraphRunFile(const std::string& dir)>;

void expect_exact(const MakeRunFile& make, const std::string& case_name,
                  const std::vector<double>& exact, double tolerance = 0.05) {
    int first_run = 0;
    for (uint32_t seed = 1; seed <= 10; ++seed) {
        const std::string dir = testing::scratch_directory(case_name);
        const Fit fit = fit_automatically(make(dir), dir, seed);
        EXPECT_NE(fit.printed.find("starting from the maximum likelihood estimate, exact"),
                  std::string::npos)
            << fit.printed;
        first_run +=
            fit.status == 0 && fit.printed.find("vexa: run 1 converged") != std::string::npos;
        ASSERT_EQ(fit.summary.size(), exact.size()) << fit.printed;
        for (size_t k = 0; k < exact.size(); ++k) {
            const testing::SummaryRow& row = fit.summary[k];
            EXPECT_LT(std::fabs(row.estimate - exact[k]), tolerance * row.se)
                << case_name << " seed " << seed << ": " << row.label << " " << row.estimate
                << " exact " << exact[k] << " se " << row.se;
        }
    }
    EXPECT_GE(first_run, 9) << case_name;
}

TEST(Automatic, ClosedFormsAreReachedInTheFirstRun) {
    // Edge alone on flomarriage: 20 ties of 120 dyads.
    const MakeRunFile edge = [](const std::string& dir) {
        testing::GraphRunFile file = testing::on_network(dir, "flomarriage.txt");
        file.effects = {{"edge", {0, 0}}};
        return file;
    };
    expect_exact(edge, "automatic_edge", {std::log(20.0 / 100.0)});

    // Arc and reciprocity on samplike: with M mutual, A asymmetric and N null dyads the
    // estimates are log(A / 2N) and log(4MN / A^2).
    const MakeRunFile reciprocity = [](const std::string& dir) {
        testing::GraphRunFile file =
            testing::on_network(dir, "samplike.txt", NetworkKind::digraph, 18);
        file.effects = {{"arc", {0, 0}}, {"reciprocity", {0, 0}}};
        return file;
    };
    expect_exact(reciprocity, "automatic_reciprocity", testing::samplike_reciprocity_estimates());

    // Edge and Grade's same-category effect on the school network: the log-odds of a tie
    // between grades, and the log odds ratio of a tie within a grade.
    const MakeRunFile homophily = [](const std::string& dir) {
        testing::GraphRunFile file = testing::on_school_network(dir);
        file.effects = {{"edge", {0, 0}}};
        return file;
    };
    expect_exact(homophily, "automatic_homophily", testing::school_homophily_estimates());
}

}  // namespace
}  // namespace vexa
