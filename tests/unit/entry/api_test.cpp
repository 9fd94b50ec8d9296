// The model a request builds, held against the run file that describes it, and bad requests.
// That a request estimates like the bundled run file at the same seed, and that the networks
// and profiles it returns add up, are the R package's tests, which go through this entry.
#include "entry/api.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

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
        const TaskRequest request = request_like(file);
        const Model built = request_model(request);
        const Model& read = file.model;
        EXPECT_EQ(pack(built), pack(read));
        // Each effect's slot is where its value lands in the parameter vector: effect k
        // valued k + 1 puts k + 1 there.
        TaskRequest numbered = request;
        for (size_t k = 0; k < numbered.effects.size(); ++k)
            numbered.effects[k].value = static_cast<double>(k + 1);
        const std::vector<double> vector = pack(request_model(numbered));
        const std::vector<int32_t> slots = effect_slots(numbered, request_model(numbered));
        ASSERT_EQ(slots.size(), vector.size());
        for (size_t k = 0; k < slots.size(); ++k)
            EXPECT_EQ(vector[static_cast<size_t>(slots[k])], static_cast<double>(k + 1)) << k;
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

TEST(Api, BadRequestsEndWithOneLine) {
    TaskRequest base;
    base.settings.network_name = "bad";
    base.settings.output_directory = scratch_directory("api_bad");
    base.settings.task = Task::estimation;
    base.settings.network_kind = NetworkKind::graph;
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
        {{{"edge", 0.0, 0.0f}, {"AS", 0.0, 0.5f}}, {}, 9, "lambda 0.5 is below 1"},
    };
    for (const auto& c : cases) {
        TaskRequest request = base;
        request.effects = c.effects;
        request.attributes = c.attributes;
        request.adjacency.assign(c.cells, 0.0);
        EXPECT_NE(run_request(request).error.find(c.says), std::string::npos) << c.says;
    }
    TaskRequest constrained = base;
    constrained.effects = {{"edge", 0.0, 0.0f}};
    constrained.constraint.assign(4, 1.0);
    EXPECT_NE(run_request(constrained).error.find("the constraint has 4 values for 3 x 3"),
              std::string::npos);
    EXPECT_EQ(run_file_request("no/such/run.txt", RunOptions{}).error,
              "vexa: cannot open run file 'no/such/run.txt'");
}

// The n x n values of a matrix file, row by row.
std::vector<double> file_matrix(const std::string& path, int n) {
    std::istringstream in(read_text(path));
    std::vector<double> values(static_cast<size_t>(n) * static_cast<size_t>(n), 0.0);
    for (double& value : values) in >> value;
    return values;
}

// Each task of a request hands its records back in memory and writes nothing; the host's
// observer hears every sample the record keeps, in order, and steps that only go forward.
TEST(Api, RequestsReturnRecordsAndWriteNothing) {
    const std::string directory = scratch_directory("api_records");
    const RunFile file = [&] {
        const WorkingDirectory in(data_path("../golden/cases/est_gof_after"));
        return read_run_file("run.txt", nullptr);
    }();
    for (const Task task : {Task::estimation, Task::simulation, Task::goodness_of_fit}) {
        SCOPED_TRACE(task_name(task));
        TaskRequest request = request_like(file);
        request.settings.task = task;
        request.settings.output_directory = directory;
        request.settings.burn_in = 2000;
        request.settings.iterations = 20000;
        request.settings.sample_count = 40;
        request.settings.estimation_runs = 2;
        request.adjacency = file_matrix(data_path("flomarriage.txt"), 16);
        request.options.fixed_seed = true;
        request.options.seed = 3;
        std::vector<double> drawn;
        StepsDone last{};
        bool backwards = false;
        request.observer.sample_drawn = [&](const SampleDrawn& e) { drawn.push_back(e.number); };
        // Within a stage (an estimation run's phases count as one stretch) steps only add up.
        const auto stretch = [](Stage s) {
            return s == Stage::phase2 || s == Stage::phase3 ? Stage::phase1 : s;
        };
        request.observer.steps_done = [&](const StepsDone& e) {
            backwards =
                backwards || (stretch(e.stage) == stretch(last.stage) && e.done < last.done);
            last = e;
        };
        request.observer.run_started = [&](const RunStarted&) { last = {}; };
        const TaskResult result = run_request(request);
        ASSERT_EQ(result.error, "");
        EXPECT_FALSE(backwards);
        const TaskRecords& r = result.records;
        if (task == Task::estimation) {
            ASSERT_TRUE(r.estimation.has_value());
            EXPECT_EQ(r.estimation->runs.size(), r.estimation->checks.size());
            EXPECT_EQ(r.estimation->estimates.size(), result.labels.size());
        } else if (task == Task::simulation) {
            ASSERT_TRUE(r.simulation.has_value());
            EXPECT_EQ(drawn, r.simulation->sample_numbers);
            EXPECT_EQ(drawn.size(), 40u);
        } else {
            ASSERT_TRUE(r.gof.has_value());
            EXPECT_EQ(drawn, r.gof->sample.numbers);
            EXPECT_EQ(result.sample_profiles.size(), drawn.size());
            EXPECT_EQ(result.observed_profile.degree.size(), 16u);
        }
    }
    EXPECT_TRUE(std::filesystem::is_empty(directory)) << "a request wrote a file";
}

// A simulation given a network starts from it, and a constraint keeps every dyad it does not
// free as that network has it.
TEST(Api, SimulationStartsFromTheGivenNetworkWithinTheConstraint) {
    const int n = 16;
    TaskRequest request;
    request.settings.network_name = "held";
    request.settings.task = Task::simulation;
    request.settings.node_count = n;
    request.settings.burn_in = 1000;
    request.settings.iterations = 20000;
    request.settings.sample_count = 20;
    request.effects = {{"edge", 0.5, 0.0f}};
    request.adjacency = file_matrix(data_path("flomarriage.txt"), n);
    request.constraint.assign(static_cast<size_t>(n * n), 0.0);
    const auto cell = [n](int i, int j) { return static_cast<size_t>(i * n + j); };
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 5; ++j) request.constraint[cell(i, j)] = 1.0;
    request.keep_networks = true;
    request.options.fixed_seed = true;
    request.options.seed = 9;
    const TaskResult result = run_request(request);
    ASSERT_EQ(result.error, "");
    ASSERT_EQ(result.networks.size(), 20u);
    size_t changed = 0;
    for (const std::vector<uint8_t>& network : result.networks) {
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < n; ++j) {
                const bool tied = network[cell(i, j)] != 0;
                const bool was = request.adjacency[cell(i, j)] != 0.0;
                if (request.constraint[cell(i, j)] == 0.0) {
                    EXPECT_EQ(tied, was) << i << " " << j;
                } else {
                    changed += tied != was ? 1u : 0u;
                }
            }
        }
    }
    EXPECT_GT(changed, 0u) << "the freed dyads never moved";
}

}  // namespace
}  // namespace vexa
