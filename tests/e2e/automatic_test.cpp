// The automatic mode on models whose maximum likelihood estimate has a closed form: it starts
// there (the pseudo-likelihood of a model of independent dyads is its likelihood), converges
// in its first run, and ends within a small part of a standard error of the exact value.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "network/digraph.h"
#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

struct Fit {
    std::string printed;
    std::vector<testing::SummaryRow> summary;
    int status = -1;
};

Fit fit_automatically(const std::string& name, const testing::GraphRunFile& file,
                      const std::string& dir, uint32_t seed) {
    Fit fit;
    fit.printed = testing::run_vexa(dir, file, seed, false, &fit.status, true);
    fit.summary = testing::last_summary(testing::read_text(dir + "/out/estimation_net.txt"));
    (void)name;
    return fit;
}

// Each fit converges in its first run, with every estimate within `tolerance` standard
// errors of its exact value.
void expect_exact(const Fit& fit, const std::vector<double>& exact, double tolerance) {
    EXPECT_EQ(fit.status, 0) << fit.printed;
    EXPECT_NE(fit.printed.find("starting from the pseudo-likelihood estimate"), std::string::npos)
        << fit.printed;
    EXPECT_NE(fit.printed.find("vexa: run 1 converged"), std::string::npos) << fit.printed;
    ASSERT_EQ(fit.summary.size(), exact.size()) << fit.printed;
    for (size_t k = 0; k < exact.size(); ++k) {
        const testing::SummaryRow& row = fit.summary[k];
        EXPECT_LT(std::fabs(row.estimate - exact[k]), tolerance * row.se)
            << row.label << " " << row.estimate << " exact " << exact[k] << " se " << row.se;
    }
}

TEST(Automatic, ClosedFormsAreReachedInTheFirstRun) {
    // Edge alone on flomarriage: 20 ties of 120 dyads.
    for (const uint32_t seed : {1u, 2u, 3u}) {
        const std::string dir = testing::scratch_directory("automatic_edge");
        testing::GraphRunFile file = testing::on_network(dir, "flomarriage.txt");
        file.effects = {{"edge", {0, 0}}};
        expect_exact(fit_automatically("edge", file, dir, seed), {std::log(20.0 / 100.0)}, 0.1);
    }
    // Arc and reciprocity on samplike: with M mutual, A asymmetric and N null dyads the
    // estimates are log(A / 2N) and log(4MN / A^2).
    const Digraph observed = read_digraph(testing::data_path("samplike.txt"), 18);
    double M = 0, A = 0, N = 0;
    for (int i = 0; i < 18; ++i) {
        for (int j = i + 1; j < 18; ++j) {
            const int ties = observed.has_arc(i, j) + observed.has_arc(j, i);
            (ties == 2 ? M : ties == 1 ? A : N) += 1.0;
        }
    }
    for (const uint32_t seed : {1u, 2u, 3u}) {
        const std::string dir = testing::scratch_directory("automatic_reciprocity");
        testing::GraphRunFile file =
            testing::on_network(dir, "samplike.txt", NetworkKind::digraph, 18);
        file.effects = {{"arc", {0, 0}}, {"reciprocity", {0, 0}}};
        expect_exact(fit_automatically("reciprocity", file, dir, seed),
                     {std::log(A / (2.0 * N)), std::log(4.0 * M * N / (A * A))}, 0.1);
    }
}

}  // namespace
}  // namespace vexa
