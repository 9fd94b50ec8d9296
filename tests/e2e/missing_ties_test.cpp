// Networks with missing dyads: how they are marked in the files, and estimates that match the
// closed forms of the observed dyads alone (under missing at random the likelihood of
// independent dyads factors, and the missing ones drop out).

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

// Marks the dyads of every `every`-th unordered pair as missing ("NA" in both cells of a
// graph, both arcs of a digraph's dyad), counting the observed dyads and their states: ties of
// a graph; mutual, asymmetric and null dyads of a digraph.
struct Thinned {
    std::string text;
    int observed = 0, ties = 0, mutual = 0, asymmetric = 0, null = 0;
};

Thinned thin_out(const std::string& matrix, int n, int every) {
    std::istringstream in(matrix);
    std::vector<std::string> cells(static_cast<size_t>(n * n));
    for (std::string& cell : cells) in >> cell;
    Thinned t;
    int pair = 0;
    for (int i = 0; i < n; ++i) {
        for (int j = i + 1; j < n; ++j) {
            std::string& up = cells[static_cast<size_t>(i * n + j)];
            std::string& down = cells[static_cast<size_t>(j * n + i)];
            if (++pair % every == 0) {
                up = (pair / every) % 2 == 0 ? "NA" : ".";
                down = "NA";
                continue;
            }
            ++t.observed;
            t.ties += up == "1";
            const int arcs = (up == "1") + (down == "1");
            (arcs == 2 ? t.mutual : arcs == 1 ? t.asymmetric : t.null) += 1;
        }
    }
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) t.text += cells[static_cast<size_t>(i * n + j)] + " ";
        t.text += "\n";
    }
    return t;
}

double estimate_of(const std::string& dir, size_t k, double* se = nullptr) {
    const auto summary = testing::last_summary(testing::read_text(dir + "/out/estimation_net.txt"));
    if (se != nullptr) *se = summary.at(k).se;
    return summary.at(k).estimate;
}

// A run file on flomarriage with every fifth pair missing (24 of 120), and the thinned counts.
testing::GraphRunFile on_thinned_flomarriage(const std::string& dir, Thinned& thinned) {
    testing::GraphRunFile file = testing::on_network(dir, "flomarriage.txt");
    thinned = thin_out(testing::read_text(dir + "/flomarriage.txt"), 16, 5);
    testing::write_text(dir + "/thinned.txt", thinned.text);
    file.network_file = "thinned.txt";
    return file;
}

TEST(MissingTies, EdgeAloneEstimatesTheLogOddsOfTheObservedDyads) {
    const std::string dir = testing::scratch_directory("missing_edge");
    Thinned thinned;
    testing::GraphRunFile file = on_thinned_flomarriage(dir, thinned);
    file.effects = {{"edge", {0, 0}}};
    const double p = static_cast<double>(thinned.ties) / thinned.observed;
    const double exact = std::log(p / (1.0 - p));
    const double exact_se = 1.0 / std::sqrt(thinned.observed * p * (1.0 - p));

    // The automatic mode starts from the logistic regression of the observed dyads, which is
    // the estimate itself; phase 3 measures the information of the observed dyads alone.
    int status = -1;
    const std::string printed = testing::run_vexa(dir, file, 1, false, &status, true);
    EXPECT_NE(printed.find("24 of 120 dyads are missing"), std::string::npos) << printed;
    double se = 0.0;
    EXPECT_NEAR(estimate_of(dir, 0, &se), exact, 1e-6) << printed;
    EXPECT_NEAR(se, exact_se, 0.1 * exact_se);
    EXPECT_EQ(status, 0) << printed;

    // The same from the sparse store, and with the tie/no-tie proposal (the given chain draws
    // its missing dyads whichever proposal the run's chain takes).
    for (const int sampler : {0, 3}) {
        RunOptions options;
        options.fixed_seed = true;
        options.seed = 2;
        options.automatic = true;
        options.store = StoreChoice::sparse;
        options.sampler_code = sampler;
        testing::run_vexa_with(dir, file, options);
        EXPECT_NEAR(estimate_of(dir, 0, &se), exact, 1e-6) << sampler;
        EXPECT_NEAR(se, exact_se, 0.1 * exact_se) << sampler;
    }

    // Stochastic approximation from the run file's start lands within a fifth of a standard
    // error in every seed.
    for (uint32_t seed = 1; seed <= (testing::checking_build ? 1u : 4u); ++seed) {
        file.factor = 4;
        testing::run_vexa(dir, file, seed);
        EXPECT_NEAR(estimate_of(dir, 0), exact, 0.2 * exact_se) << "seed " << seed;
    }
}

TEST(MissingTies, ArcAndReciprocityMatchTheObservedDyadStates) {
    const std::string dir = testing::scratch_directory("missing_reciprocity");
    testing::GraphRunFile file = testing::on_network(dir, "samplike.txt", NetworkKind::digraph, 18);
    const Thinned thinned = thin_out(testing::read_text(dir + "/samplike.txt"), 18, 4);
    testing::write_text(dir + "/thinned.txt", thinned.text);
    file.network_file = "thinned.txt";
    file.effects = {{"arc", {0, 0}}, {"reciprocity", {0, 0}}};
    file.factor = 4;
    // With M mutual, A asymmetric and N null dyads observed: exp(arc) = A / 2N and
    // exp(2 arc + reciprocity) = M / N.
    const double M = thinned.mutual, A = thinned.asymmetric, N = thinned.null;
    const std::vector<double> exact = {std::log(A / (2.0 * N)), std::log(4.0 * M * N / (A * A))};
    // The checking build looks for memory faults, which the edge-alone fits already walk
    // through: it skips these fits of a phase 2 and eight phase-3 chains.
    for (uint32_t seed = 1; seed <= (testing::checking_build ? 0u : 3u); ++seed) {
        const std::string printed = testing::run_vexa(dir, file, seed, false, nullptr, true);
        for (size_t k = 0; k < 2; ++k) {
            double se = 0.0;
            const double estimate = estimate_of(dir, k, &se);
            EXPECT_NEAR(estimate, exact[k], 0.25 * se) << "seed " << seed << ", " << k << printed;
        }
    }
}

// Goodness of fit under edge alone: the missing dyads are independent ties of probability
// p = logistic(edge), so the observed side's edge count is the observed ties plus about p times
// the missing dyads (the mean of 200 binomial draws), and the report says it is a mean.
TEST(MissingTies, GoodnessOfFitComparesWithTheExpectationGivenTheObservedDyads) {
    const std::string dir = testing::scratch_directory("missing_gof");
    Thinned thinned;
    testing::GraphRunFile file = on_thinned_flomarriage(dir, thinned);
    file.task = 3;
    const double edge = -1.0, p = 1.0 / (1.0 + std::exp(-edge));
    file.effects = {{"edge", {edge, 0.0}}};
    file.iterations = 20000;
    file.samples = 100;
    const std::string printed = testing::run_vexa(dir, file, 1);
    const std::string report = testing::read_text(dir + "/out/gof_net.txt");
    EXPECT_NE(report.find("has 24 missing dyads: its values below are the means of 200"),
              std::string::npos)
        << printed << report;
    const size_t at = report.find("\nedge\t", report.find("observed\tmean"));
    ASSERT_NE(at, std::string::npos) << report;
    const double observed = std::stod(report.substr(at + 6));
    const double spread = std::sqrt(24.0 * p * (1.0 - p) / 200.0);
    EXPECT_NEAR(observed, thinned.ties + 24.0 * p, 4.0 * spread + 0.01) << report;
}

// Missing grades beside missing ties: edge + Grade same-category is a model of independent
// ties, so the automatic mode's start is the estimate, the two log-odds of the observed dyads
// (a node of unknown grade matching nobody).
TEST(MissingTies, MissingAttributeValuesKeepWorkingBesideThem) {
    // Phase 3 on 205 nodes with every step recounted takes minutes in the checking build, whose
    // memory checks the smaller fits above already make.
    if (testing::checking_build) GTEST_SKIP() << "a statistical check of the release build";
    const std::string dir = testing::scratch_directory("missing_attributes");
    testing::GraphRunFile file = testing::on_school_network(dir);
    file.effects = {{"edge", {0, 0}}};
    const Thinned thinned = thin_out(testing::read_text(dir + "/faux.mesa.high.txt"), 205, 5);
    testing::write_text(dir + "/thinned.txt", thinned.text);
    std::istringstream lines(testing::read_text(dir + "/faux.mesa.high_attributes.txt"));
    std::string attributes, line;
    for (int row = 0; std::getline(lines, line); ++row)
        attributes += (row % 10 == 3 ? "NA" + line.substr(line.find(' ')) : line) + "\n";
    testing::write_text(dir + "/faux.mesa.high_attributes.txt", attributes);
    file.network_file = "thinned.txt";
    const std::string printed = testing::run_vexa(dir, file, 1, false, nullptr, true);
    const std::vector<double> exact = testing::homophily_estimates(thinned.text, attributes);
    for (size_t k = 0; k < exact.size(); ++k)
        EXPECT_NEAR(estimate_of(dir, k), exact[k], 1e-6) << k << printed;
}

TEST(MissingTies, TieListsMarkMissingPairsAndImpossibleSettingsAreRefused) {
    const std::string dir = testing::scratch_directory("missing_list");
    testing::GraphRunFile file = testing::on_network(dir, "flomarriage.txt");
    file.effects = {{"edge", {0, 0}}};
    // Six ties, three pairs missing (one of them also listed as a tie: missing wins).
    testing::write_text(dir + "/list.txt",
                        "*Vertices 16\n*Edges\n1 2\n2 3\n3 4\n4 5\n5 6\n6 7\n*Missing\n8 9\n10 "
                        "11\n2 1\n*Edges\n12 13 NA\n");
    file.network_file = "list.txt";
    const std::string printed = testing::run_vexa(dir, file, 1, false, nullptr, true);
    EXPECT_NE(printed.find("4 of 120 dyads are missing"), std::string::npos) << printed;
    EXPECT_NEAR(estimate_of(dir, 0), std::log(5.0 / 111.0), 1e-6) << printed;

    // Every dyad missing: nothing was observed.
    std::string all;
    for (int i = 0; i < 16; ++i) {
        for (int j = 0; j < 16; ++j) all += i == j ? "0 " : "NA ";
        all += "\n";
    }
    testing::write_text(dir + "/all.txt", all);
    file.network_file = "all.txt";
    int status = -1;
    std::string refused = testing::run_vexa(dir, file, 1, false, &status);
    EXPECT_NE(refused.find("network file 'all.txt': every dyad is missing"), std::string::npos)
        << refused;
    EXPECT_EQ(status, 1);

    // The swap keeps the number of ties, which missing dyads leave unknown.
    file.network_file = "list.txt";
    file.sampler_variant = 1;
    refused = testing::run_vexa(dir, file, 1, false, &status);
    EXPECT_NE(refused.find("keeps the number of ties fixed"), std::string::npos) << refused;
    // Equilibrium expectation has no given chain.
    file.sampler_variant = 0;
    RunOptions options;
    options.fixed_seed = true;
    options.method = EstimationMethod::equilibrium_expectation;
    refused = testing::run_vexa_with(dir, file, options, &status);
    EXPECT_NE(refused.find("equilibrium expectation does not take"), std::string::npos) << refused;
}

}  // namespace
}  // namespace vexa
