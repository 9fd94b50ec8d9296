// The HTML report's embedded numbers against records built here, worked by hand: what the page
// plots must be what the records hold, and the page must fetch nothing.

#include "report/html_report.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "effects/graph/graph_catalogue.h"
#include "support/kinds.h"
#include "support/test_support.h"

namespace vexa {
namespace {

// The value of attribute `name` in the first element that carries `anchor`.
std::string attribute(const std::string& page, const std::string& anchor, const std::string& name) {
    const size_t at = page.find(anchor);
    if (at == std::string::npos) return "(no " + anchor + ")";
    const size_t end = page.find('>', at);
    const size_t key = page.find(" " + name + "=\"", at);
    if (key == std::string::npos || key > end) return "(no " + name + ")";
    const size_t from = key + name.size() + 3;
    return page.substr(from, page.find('"', from) - from);
}

double number_in(const std::string& page, const std::string& anchor, const std::string& name) {
    return std::stod(attribute(page, anchor, name));
}

void expect_nothing_fetched(const std::string& page) {
    for (const char* fetch : {"<script", "src=", "href=", "url(", "@import", "<link", "<img"})
        EXPECT_EQ(page.find(fetch), std::string::npos) << fetch;
}

TEST(HtmlReport, GoodnessOfFitNumbersAndDistributions) {
    const Model model = testing::model_of(NetworkKind::graph, {0});  // edge
    GofRecord record;
    record.observed_statistics = {6.0};
    record.sample.statistics = {{1, 2, 3, 4, 5}};
    record.sample.numbers = {1, 2, 3, 4, 5};
    record.observed_measures.values.assign(5, 0.0);
    record.sample.measures.assign(5, std::vector<double>(5, 0.0));
    // Observed: one isolate and two nodes of degree 1 (4 nodes: 1 pair at distance 1, 5 pairs
    // without a path). Samples: degrees {0: 3, 1: 0} and {0: 1, 1: 2}; one of them has a pair
    // at distance 2, which the trimmed profile keeps before the pairs without a path.
    const NetworkProfile observed = trimmed({{1, 2}, {}, {0, 1, 0, 0, 5}, {}});
    const std::vector<NetworkProfile> samples{trimmed({{3, 0}, {}, {0, 0, 0, 0, 6}, {}}),
                                              trimmed({{1, 2}, {}, {0, 1, 2, 0, 3}, {}})};
    EXPECT_EQ(observed.geodesics, (std::vector<int64_t>{0, 1, 5}));
    EXPECT_EQ(samples[0].degree, (std::vector<int32_t>{3}));
    HtmlReport report;
    report.model = &model;
    report.network_name = "small";
    report.task = "goodness of fit";
    report.gof = &record;
    report.observed_profile = &observed;
    report.sample_profiles = &samples;
    const std::string page = testing::capture([&](FILE* out) { write_html_report(out, report); });
    expect_nothing_fetched(page);

    // Mean 3, standard deviation sqrt(10 / 4), t = 3 / sqrt(2.5).
    const std::string edge = "class=\"box\" data-name=\"edge\"";
    EXPECT_DOUBLE_EQ(number_in(page, edge, "data-observed"), 6.0);
    EXPECT_DOUBLE_EQ(number_in(page, edge, "data-mean"), 3.0);
    EXPECT_NEAR(number_in(page, edge, "data-sd"), std::sqrt(2.5), 1e-9);
    EXPECT_NEAR(number_in(page, edge, "data-t"), 3.0 / std::sqrt(2.5), 1e-9);
    // |t| = 1.90 is below 2: no misfit, so the panel's frame stays grey.
    EXPECT_EQ(attribute(page, edge, "data-p"), "(no data-p)");

    const auto category = [&](const char* kind, const char* value) {
        return std::string("data-kind=\"") + kind + "\" data-category=\"" + value + "\"";
    };
    EXPECT_DOUBLE_EQ(number_in(page, category("degree", "0"), "data-mean"), 2.0);
    EXPECT_DOUBLE_EQ(number_in(page, category("degree", "0"), "data-observed"), 1.0);
    EXPECT_DOUBLE_EQ(number_in(page, category("degree", "1"), "data-mean"), 1.0);
    EXPECT_DOUBLE_EQ(number_in(page, category("degree", "1"), "data-observed"), 2.0);
    EXPECT_DOUBLE_EQ(number_in(page, category("geodesic", "1"), "data-mean"), 0.5);
    EXPECT_DOUBLE_EQ(number_in(page, category("geodesic", "2"), "data-mean"), 1.0);
    EXPECT_DOUBLE_EQ(number_in(page, category("geodesic", "2"), "data-observed"), 0.0);
    EXPECT_DOUBLE_EQ(number_in(page, category("geodesic", "no path"), "data-mean"), 4.5);
    EXPECT_DOUBLE_EQ(number_in(page, category("geodesic", "no path"), "data-observed"), 5.0);
    EXPECT_EQ(page.find(category("geodesic", "3")), std::string::npos);

    // Over parameter sets the same statistic gets its posterior predictive p-value: nothing of
    // the sample reaches 6, so p = 2 x min(0, 1) = 0, and the panel is marked.
    record.sets = ParameterSetsSummary{{Moments{}}, 5, 0, 0};
    const std::string bayes = testing::capture([&](FILE* out) { write_html_report(out, report); });
    EXPECT_DOUBLE_EQ(number_in(bayes, edge, "data-p"), 0.0);
    EXPECT_NE(bayes.find("class=\"bar\" data-name=\"edge\" data-p=\"0\""), std::string::npos);
    EXPECT_NE(bayes.find("Bayesian goodness of fit"), std::string::npos);
}

TEST(HtmlReport, EstimatesVerdictAndSignificance) {
    const Model model = testing::model_of(
        NetworkKind::graph,
        {static_cast<int>(GraphEffect::edge), static_cast<int>(GraphEffect::triangle)});
    EstimationRecord record;
    EstimationRun run;
    run.observed = {20, 3};
    run.starting = {-1.0, 0.0};
    run.after_phase1 = {-1.2, 0.1};
    run.subphases = {{0.1f, 10, {-1.5, 0.4}}, {0.05f, 20, {-1.6, 0.5}}};
    run.estimates = {-1.6, 0.5};
    run.standard_errors = {0.3, 0.3};  // edge beyond two standard errors, Triangle not
    run.t_ratios = {0.05, -0.02};
    run.phase3_draws_matrix = make_matrix(3, 2, 1.0);
    record.runs = {run};
    ConvergenceCheck check;
    check.verdict = Verdict::converged;
    check.largest_t = 0.05;
    check.overall_ratio = 0.07;
    record.checks = {check};
    record.converged = true;
    record.reported_run = 1;
    record.estimates = run.estimates;
    HtmlReport report;
    report.model = &model;
    report.task = "estimation";
    report.estimation = &record;
    std::string page = testing::capture([&](FILE* out) { write_html_report(out, report); });
    expect_nothing_fetched(page);
    const std::string edge = "data-effect=\"edge\"";
    EXPECT_DOUBLE_EQ(number_in(page, edge, "data-estimate"), -1.6);
    EXPECT_DOUBLE_EQ(number_in(page, edge, "data-se"), 0.3);
    EXPECT_DOUBLE_EQ(number_in(page, edge, "data-t"), 0.05);
    EXPECT_EQ(attribute(page, edge, "data-significant"), "1");
    EXPECT_EQ(attribute(page, "data-effect=\"Triangle\"", "data-significant"), "0");
    EXPECT_EQ(attribute(page, "class=\"verdict", "data-verdict"), "converged");
    EXPECT_NE(page.find("below 0.1 in size"), std::string::npos);
    EXPECT_NE(page.find("below 0.25"), std::string::npos);
    // The phase-2 path: start, after phase 1, two sub-phases.
    EXPECT_EQ(attribute(page, "data-name=\"edge\" data-phase=\"2\"", "data-points"), "4");
    EXPECT_EQ(attribute(page, "data-name=\"edge\" data-phase=\"3\"", "data-observed"), "20");

    // The same numbers from a run that did not converge carry no significance.
    record.converged = false;
    record.checks[0].verdict = Verdict::not_converged;
    page = testing::capture([&](FILE* out) { write_html_report(out, report); });
    EXPECT_EQ(attribute(page, edge, "data-significant"), "0");
    EXPECT_EQ(attribute(page, "class=\"verdict", "data-verdict"), "not converged");
}

}  // namespace
}  // namespace vexa
