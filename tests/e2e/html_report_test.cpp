// The HTML report of whole runs: the distributions the page draws are collected from every
// sample, whichever chain drew it, and from the observed network. Every network of n nodes
// has n nodes by degree and n(n-1)/2 pairs by distance (a digraph n(n-1) ordered pairs), so
// the observed counts and the sample's mean counts must sum to those.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::GraphRunFile;
using testing::read_text;

// The sum of attribute `name` over the groups of one distribution on the page.
double sum_over(const std::string& page, const std::string& kind, const std::string& name,
                int& categories) {
    double sum = 0.0;
    categories = 0;
    const std::string anchor = "data-kind=\"" + kind + "\"";
    for (size_t at = page.find(anchor); at != std::string::npos; at = page.find(anchor, at + 1)) {
        const size_t key = page.find(name + "=\"", at);
        if (key == std::string::npos || key > page.find('>', at)) continue;
        sum += std::stod(page.substr(key + name.size() + 2));
        ++categories;
    }
    return sum;
}

TEST(HtmlReportRuns, DistributionsCountEveryNodeAndPairOfEverySample) {
    for (const NetworkKind kind : {NetworkKind::graph, NetworkKind::digraph}) {
        const bool directed = kind == NetworkKind::digraph;
        const std::string dir =
            testing::scratch_directory(directed ? "html_digraph" : "html_graph");
        GraphRunFile file = testing::on_network(dir, directed ? "samplike.txt" : "flomarriage.txt",
                                                kind, directed ? 18 : 16);
        file.task = 3;
        file.effects = {{directed ? "arc" : "edge", {-1.5, 0.0}}};
        file.burn_in = 1000;
        file.iterations = 20000;
        file.samples = 40;
        RunOptions options;
        options.fixed_seed = true;
        options.seed = 3;
        options.chains = 2;  // samples from two chains, on threads of their own
        options.html = true;
        int status = -1;
        const std::string console = testing::run_vexa_with(dir, file, options, &status);
        ASSERT_EQ(status, 0) << console;
        const std::string page = read_text(dir + "/out/report_net.html");
        const double n = directed ? 18.0 : 16.0;
        const double pairs = directed ? n * (n - 1) : n * (n - 1) / 2;
        int categories = 0;
        const std::vector<std::string> degrees =
            directed ? std::vector<std::string>{"out-degree", "in-degree"}
                     : std::vector<std::string>{"degree"};
        for (const std::string& degree : degrees) {
            EXPECT_DOUBLE_EQ(sum_over(page, degree, "data-observed", categories), n) << degree;
            EXPECT_NEAR(sum_over(page, degree, "data-mean", categories), n, 1e-9) << degree;
            EXPECT_GT(categories, 1);
            // Every category counts each of the forty samples, from both chains.
            EXPECT_DOUBLE_EQ(sum_over(page, degree, "data-count", categories), 40.0 * categories);
        }
        EXPECT_DOUBLE_EQ(sum_over(page, "geodesic", "data-observed", categories), pairs);
        EXPECT_NEAR(sum_over(page, "geodesic", "data-mean", categories), pairs, 1e-9);
        EXPECT_EQ(page.find("data-kind=\"triad\"") != std::string::npos, directed);
        // Forty samples, each counted once.
        EXPECT_NE(page.find("40 sampled networks"), std::string::npos);
        EXPECT_NE(console.find("the HTML report is in"), std::string::npos);

        // Without the option no page is written.
        std::filesystem::remove(dir + "/out/report_net.html");
        options.html = false;
        testing::run_vexa_with(dir, file, options, &status);
        EXPECT_FALSE(std::filesystem::exists(dir + "/out/report_net.html"));
    }
}

}  // namespace
}  // namespace vexa
