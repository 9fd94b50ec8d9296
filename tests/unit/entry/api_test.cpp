#include "entry/api.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "entry/run_driver.h"
#include "entry/run_file.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using namespace vexa::testing;

// The request that describes the same model as a run file: every included effect by name,
// listed in reverse so that the request's order cannot decide the slots.
TaskRequest request_like(const RunFile& file) {
    TaskRequest request;
    request.settings = file.settings;
    const Model& model = file.model;
    const CatalogueView& structural = structural_catalogue(model.kind);
    for (size_t r = 0; r < model.structural.size(); ++r) {
        const EffectSetting& effect = model.structural[r];
        if (effect.slot < 0) continue;
        const bool alternating = structural.rows[r].alternating();
        request.effects.push_back({structural.rows[r].labels.update_name, effect.value,
                                   alternating ? effect.lambda : 0.0f});
    }
    for (int k = 0; k < attribute_kind_count; ++k) {
        const auto kind = static_cast<AttributeKind>(k);
        const AttributeSection& section = model.section(kind);
        if (!section.given) continue;
        const CatalogueView& catalogue = attribute_catalogue(model.kind, kind);
        for (size_t a = 0; a < section.names.size(); ++a) {
            if (kind == AttributeKind::covariate) {
                request.covariate_given = true;
                request.covariate_name = section.names[a];
                request.covariate = section.data[a];
            } else {
                request.attributes.push_back(
                    {section.names[a], kind, section.data[a], section.missing[a]});
            }
            for (size_t e = 0; e < section.included.size(); ++e) {
                if (section.included[e][a] != 1) continue;
                request.effects.push_back(
                    {section.names[a] + "_" + catalogue.rows[e].labels.update_name,
                     section.value[e][a], 0.0f});
            }
        }
    }
    std::reverse(request.effects.begin(), request.effects.end());
    return request;
}

// A bundled golden case's run file, read from its own directory as the engine would.
RunFile read_case(const std::string& name) {
    struct InDirectory {
        std::filesystem::path here = std::filesystem::current_path();
        explicit InDirectory(const std::string& dir) { std::filesystem::current_path(dir); }
        ~InDirectory() { std::filesystem::current_path(here); }
    } in(std::string(VEXA_TEST_DATA_DIR) + "/../golden/cases/" + name);
    return read_run_file("run.txt", nullptr);
}

TEST(Api, RequestBuildsTheModelTheRunFileDescribes) {
    for (const char* name :
         {"est_every_effect", "est_faux_at", "sim_attributes", "gof_attributes",
          "digraph_sim_all_effects", "digraph_sim_attributes", "digraph_gof_attributes"}) {
        SCOPED_TRACE(name);
        const RunFile file = read_case(name);
        const Model built = request_model(request_like(file));
        const Model& read = file.model;
        ASSERT_EQ(built.parameter_count(), read.parameter_count());
        for (size_t r = 0; r < read.structural.size(); ++r) {
            EXPECT_EQ(built.structural[r].slot, read.structural[r].slot) << r;
            if (read.structural[r].slot < 0) continue;
            EXPECT_EQ(built.structural[r].value, read.structural[r].value) << r;
            EXPECT_EQ(effective_lambda(built, r), effective_lambda(read, r)) << r;
        }
        for (int k = 0; k < attribute_kind_count; ++k) {
            const AttributeSection& a = built.attributes[static_cast<size_t>(k)];
            const AttributeSection& b = read.attributes[static_cast<size_t>(k)];
            EXPECT_EQ(a.names, b.names);
            EXPECT_EQ(a.data, b.data);
            EXPECT_EQ(a.included_count, b.included_count);
            if (b.count == 0) continue;
            EXPECT_EQ(a.included, b.included);
            EXPECT_EQ(a.slot, b.slot);
            for (size_t e = 0; e < b.included.size(); ++e) {
                for (size_t k2 = 0; k2 < b.included[e].size(); ++k2) {
                    if (b.included[e][k2] == 1) {
                        EXPECT_EQ(a.value[e][k2], b.value[e][k2]);
                    }
                }
            }
        }
    }
}

// The bundled alternating estimation of the marriage network, run from its file and from a
// request with the network as a matrix: the same seed must give the same report.
TEST(Api, RequestAndRunFileEstimateAlike) {
    const std::string dir = scratch_directory("api_same_estimate");
    std::string text = read_text(example_path("flomarriage_alternating.txt"));
    const auto replace = [&](const std::string& from, const std::string& to) {
        const size_t at = text.find(from);
        ASSERT_NE(at, std::string::npos) << from;
        text.replace(at, from.size(), to);
    };
    replace("\nout\n", "\n" + dir + "/file\n");
    replace("\nflomarriage.txt\n", "\n" + example_path("flomarriage.txt") + "\n");
    std::filesystem::create_directories(dir + "/file");
    std::filesystem::create_directories(dir + "/request");
    write_text(dir + "/run.txt", text);

    RunOptions options;
    options.fixed_seed = true;
    options.seed = 7;
    options.console = std::tmpfile();
    run_driver(dir + "/run.txt", options);
    std::fclose(options.console);

    RunFile file = read_run_file(dir + "/run.txt", nullptr);
    TaskRequest request = request_like(file);
    request.settings.output_directory = dir + "/request";
    request.options.fixed_seed = true;
    request.options.seed = 7;
    const int n = file.settings.node_count;
    request.adjacency.assign(static_cast<size_t>(n * n), 0.0);
    {
        const std::string matrix = read_text(example_path("flomarriage.txt"));
        size_t cell = 0;
        for (const char c : matrix) {
            if (c == '0' || c == '1') request.adjacency[cell++] = c == '1' ? 1.0 : 0.0;
        }
        ASSERT_EQ(cell, static_cast<size_t>(n * n));
    }
    const TaskResult result = run_request(request);
    ASSERT_EQ(result.error, "");
    const std::string report = "/estimation_flomarriage_alternating.txt";
    const std::string expected = read_text(dir + "/file" + report);
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(read_text(dir + "/request" + report), expected);
    ASSERT_FALSE(result.results.runs.empty());
    EXPECT_EQ(result.results.runs.size(), result.results.checks.size());
    const EstimationRun& last = result.results.runs.back();
    EXPECT_EQ(result.results.converged, result.results.checks.back().verdict == Verdict::converged);
    if (result.results.converged) {
        EXPECT_EQ(result.results.estimates, last.estimates);
    }
}

int binomial2(int n) { return n * (n - 1) / 2; }

// A simulation keeps its networks on request, and the statistics it reports for each are
// those of that network recounted from the matrix; goodness-of-fit profiles account for
// every node and every pair.
TEST(Api, SampledNetworksAndProfilesAddUp) {
    const std::string dir = scratch_directory("api_samples");
    for (const int kind : {1, 2}) {
        SCOPED_TRACE(kind);
        TaskRequest request;
        RunSettings& s = request.settings;
        s.network_name = "sample";
        s.output_directory = dir;
        s.network_kind = kind;
        s.node_count = 9;
        s.initial_density = 0.3f;
        s.burn_in = 100;
        s.iterations = 2000;
        s.sample_count = 20;
        s.task = 1;
        request.effects = {{kind == 1 ? "edge" : "arc", -0.5, 0.0f}};
        request.keep_networks = true;
        request.options.fixed_seed = true;
        request.options.seed = 3;
        const TaskResult simulated = run_request(request);
        ASSERT_EQ(simulated.error, "");
        const Embedding& e = simulated.results;
        ASSERT_EQ(e.networks.size(), 20u);
        ASSERT_EQ(e.sample_statistics.size(), 20u);
        for (size_t k = 0; k < e.networks.size(); ++k) {
            double ties = 0;
            for (int i = 0; i < 9; ++i) {
                for (int j = kind == 1 ? i + 1 : 0; j < 9; ++j)
                    ties += e.networks[k][static_cast<size_t>(i * 9 + j)];
            }
            EXPECT_EQ(e.sample_statistics[k][0], ties) << k;
        }

        request.settings.task = 3;
        request.adjacency.assign(e.networks[0].begin(), e.networks[0].end());
        const TaskResult fitted = run_request(request);
        ASSERT_EQ(fitted.error, "");
        const Embedding& g = fitted.results;
        ASSERT_TRUE(g.gof_done);
        ASSERT_EQ(g.sample_profiles.size(), 20u);
        const int64_t pairs = kind == 1 ? binomial2(9) : 9 * 8;
        for (const NetworkProfile& p : g.sample_profiles) {
            int64_t nodes = 0, paired = 0;
            for (const int32_t c : p.degree) nodes += c;
            for (size_t d = 1; d < p.geodesics.size(); ++d) paired += p.geodesics[d];
            EXPECT_EQ(nodes, 9);
            EXPECT_EQ(paired, pairs);
            double triples = 0;
            for (const double t : p.triads) triples += t;
            EXPECT_EQ(triples, kind == 2 ? 84.0 : 0.0);
        }
        EXPECT_EQ(g.observed_statistics[0], e.sample_statistics[0][0]);
    }
}

TEST(Api, BadRequestsEndWithOneLine) {
    TaskRequest request;
    request.settings.network_name = "bad";
    request.settings.output_directory = scratch_directory("api_bad");
    request.settings.task = 2;
    request.settings.network_kind = 1;
    request.settings.node_count = 3;
    request.adjacency.assign(9, 0.0);
    request.effects = {{"edge", 0.0, 0.0f}, {"bogus", 0.0, 0.0f}};
    EXPECT_NE(run_request(request).error.find("no effect 'bogus'"), std::string::npos);
    request.effects = {{"edge", 0.0, 2.0f}};
    EXPECT_NE(run_request(request).error.find("it takes no lambda"), std::string::npos);
    request.effects = {{"edge", 0.0, 0.0f}, {"edge", 1.0, 0.0f}};
    EXPECT_NE(run_request(request).error.find("given twice"), std::string::npos);
    request.effects = {{"edge", 0.0, 0.0f}, {"sex_activity", 0.0, 0.0f}};
    request.attributes = {{"sex", AttributeKind::binary, {0, 1, 2}, {}}};
    EXPECT_NE(run_request(request).error.find("node 3: expected 0 or 1"), std::string::npos);
    request.attributes.clear();
    request.effects = {{"edge", 0.0, 0.0f}};
    request.adjacency.assign(4, 0.0);
    EXPECT_NE(run_request(request).error.find("4 values for 3 x 3"), std::string::npos);
    const FileRunResult missing = run_file_request("no/such/run.txt", RunOptions{}, Progress{});
    EXPECT_EQ(missing.error, "vexa: cannot open run file 'no/such/run.txt'");
}

}  // namespace
}  // namespace vexa
