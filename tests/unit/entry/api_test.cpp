#include "entry/api.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <numeric>

#include "entry/run_driver.h"
#include "entry/run_file.h"
#include "model/parameter_vector.h"
#include "support/run_files.h"
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
    for (size_t r = 0; r < model.structural.size(); ++r) {
        const EffectSetting& effect = model.structural[r];
        const EffectDescription& row = structural_catalogue(model.kind).rows[r];
        if (effect.slot >= 0)
            request.effects.push_back(
                {row.labels.update_name, effect.value, row.alternating() ? effect.lambda : 0.0f});
    }
    for (int k = 0; k < attribute_kind_count; ++k) {
        const auto kind = static_cast<AttributeKind>(k);
        const AttributeSection& section = model.section(kind);
        for (size_t a = 0; section.given && a < section.names.size(); ++a) {
            if (kind != AttributeKind::covariate) {
                request.attributes.push_back(
                    {section.names[a], kind, section.data[a], section.missing[a]});
            } else {
                request.covariate_given = true;
                request.covariate_name = section.names[a];
                request.covariate = section.data[a];
            }
            for (size_t e = 0; e < section.included.size(); ++e)
                if (section.included[e][a] == 1)
                    request.effects.push_back(
                        {section.names[a] + "_" +
                             attribute_catalogue(model.kind, kind).rows[e].labels.update_name,
                         section.value[e][a], 0.0f});
        }
    }
    std::reverse(request.effects.begin(), request.effects.end());
    return request;
}

TEST(Api, RequestBuildsTheModelTheRunFileDescribes) {
    for (const char* name :
         {"est_every_effect", "est_faux_at", "sim_attributes", "gof_attributes",
          "digraph_sim_all_effects", "digraph_sim_attributes", "digraph_gof_attributes"}) {
        SCOPED_TRACE(name);
        // A bundled golden case's run file, read from its own directory as the engine would.
        const RunFile file = [&] {
            const WorkingDirectory in(data_path("../golden/cases/") + name);
            return read_run_file("run.txt", nullptr);
        }();
        const Model built = request_model(request_like(file));
        const Model& read = file.model;
        EXPECT_EQ(pack(built), pack(read));
        for (size_t r = 0; r < read.structural.size(); ++r) {
            EXPECT_EQ(built.structural[r].slot, read.structural[r].slot) << r;
            if (read.structural[r].slot >= 0) {
                EXPECT_EQ(effective_lambda(built, r), effective_lambda(read, r)) << r;
            }
        }
        for (size_t k = 0; k < read.attributes.size(); ++k) {
            const AttributeSection &a = built.attributes[k], &b = read.attributes[k];
            EXPECT_EQ(a.names, b.names);
            EXPECT_EQ(a.data, b.data);
            EXPECT_EQ(a.included_count, b.included_count);
            if (b.count == 0) continue;
            EXPECT_EQ(a.included, b.included);
            EXPECT_EQ(a.slot, b.slot);
        }
    }
}

// The bundled alternating estimation of the marriage network, run from its file and from a
// request with the network as a matrix: the same seed must give the same report.
TEST(Api, RequestAndRunFileEstimateAlike) {
    const std::string dir = scratch_directory("api_same_estimate");
    std::string text = read_text(example_path("flomarriage_alternating.txt"));
    for (const auto& [from, to] : {std::pair<std::string, std::string>{"\nout\n", dir + "/file"},
                                   {"\nflomarriage.txt\n", example_path("flomarriage.txt")}}) {
        ASSERT_NE(text.find(from), std::string::npos) << from;
        text.replace(text.find(from), from.size(), "\n" + to + "\n");
    }
    std::filesystem::create_directories(dir + "/file");
    std::filesystem::create_directories(dir + "/request");
    write_text(dir + "/run.txt", text);
    RunOptions options;
    options.fixed_seed = true;
    options.seed = 7;
    capture([&](FILE* console) {
        options.console = console;
        run_driver(dir + "/run.txt", options);
    });

    TaskRequest request = request_like(read_run_file(dir + "/run.txt", nullptr));
    request.settings.output_directory = dir + "/request";
    request.options.fixed_seed = true;
    request.options.seed = 7;
    for (const char c : read_text(example_path("flomarriage.txt")))
        if (c == '0' || c == '1') request.adjacency.push_back(c == '1' ? 1.0 : 0.0);
    ASSERT_EQ(request.adjacency.size(), 256u);
    const TaskResult result = run_request(request);
    ASSERT_EQ(result.error, "");
    const std::string report = "/estimation_flomarriage_alternating.txt";
    const std::string expected = read_text(dir + "/file" + report);
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(read_text(dir + "/request" + report), expected);
    const Embedding& e = result.results;
    ASSERT_FALSE(e.runs.empty());
    EXPECT_EQ(e.runs.size(), e.checks.size());
    EXPECT_EQ(e.converged, e.checks.back().verdict == Verdict::converged);
    if (e.converged) {
        EXPECT_EQ(e.estimates, e.runs.back().estimates);
    }
}

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

        request.settings.task = 3;  // goodness of fit at the first sample
        request.adjacency.assign(e.networks[0].begin(), e.networks[0].end());
        const TaskResult fitted = run_request(request);
        ASSERT_EQ(fitted.error, "");
        const Embedding& g = fitted.results;
        ASSERT_TRUE(g.gof_done);
        ASSERT_EQ(g.sample_profiles.size(), 20u);
        const int64_t pairs = kind == 1 ? 36 : 72;
        for (const NetworkProfile& p : g.sample_profiles) {
            ASSERT_GE(p.geodesics.size(), 2u);
            EXPECT_EQ(std::accumulate(p.degree.begin(), p.degree.end(), int64_t{0}), 9);
            EXPECT_EQ(std::accumulate(p.geodesics.begin() + 1, p.geodesics.end(), int64_t{0}),
                      pairs);
            EXPECT_EQ(std::accumulate(p.triads.begin(), p.triads.end(), 0.0), kind == 2 ? 84 : 0);
        }
        EXPECT_EQ(g.observed_statistics[0], e.sample_statistics[0][0]);
    }
}

TEST(Api, BadRequestsEndWithOneLine) {
    TaskRequest base;
    base.settings.network_name = "bad";
    base.settings.output_directory = scratch_directory("api_bad");
    base.settings.task = 2;
    base.settings.network_kind = 1;
    base.settings.node_count = 3;
    base.adjacency.assign(9, 0.0);
    const AttributeColumn sex{"sex", AttributeKind::binary, {0, 1, 2}, {}};
    const struct {
        std::vector<EffectChoice> effects;
        std::vector<AttributeColumn> attributes;
        size_t cells;
        const char* says;
    } cases[] = {
        {{{"edge", 0.0, 0.0f}, {"bogus", 0.0, 0.0f}}, {}, 9, "no effect 'bogus'"},
        {{{"edge", 0.0, 2.0f}}, {}, 9, "it takes no lambda"},
        {{{"edge", 0.0, 0.0f}, {"edge", 1.0, 0.0f}}, {}, 9, "given twice"},
        {{{"edge", 0.0, 0.0f}, {"sex_activity", 0.0, 0.0f}}, {sex}, 9, "node 3: expected 0 or 1"},
        {{{"edge", 0.0, 0.0f}}, {}, 4, "4 values for 3 x 3"},
    };
    for (const auto& c : cases) {
        TaskRequest request = base;
        request.effects = c.effects;
        request.attributes = c.attributes;
        request.adjacency.assign(c.cells, 0.0);
        EXPECT_NE(run_request(request).error.find(c.says), std::string::npos) << c.says;
    }
    EXPECT_EQ(run_file_request("no/such/run.txt", RunOptions{}, Progress{}).error,
              "vexa: cannot open run file 'no/such/run.txt'");
}

}  // namespace
}  // namespace vexa
