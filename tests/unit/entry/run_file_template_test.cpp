#include "entry/run_file_template.h"

#include <gtest/gtest.h>

#include <sstream>

#include "base/errors.h"
#include "entry/run_file.h"
#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using namespace vexa::testing;

constexpr AttributeKind kinds[] = {AttributeKind::binary, AttributeKind::continuous,
                                   AttributeKind::categorical, AttributeKind::covariate};

// A 5-node network with attribute files of every kind (two binary attributes) and a covariate.
void write_inputs(const std::string& dir) {
    write_text(dir + "/net.txt", "0 1 0 0 1\n1 0 1 0 0\n0 1 0 1 0\n0 0 1 0 1\n1 0 0 1 0\n");
    write_text(dir + "/ties.txt", "*Vertices 5\n*Edges\n1 2\n");
    write_text(dir + "/binary.txt", "rich old\n1 0\n0 1\n1 1\n0 0\nNA 1\n");
    write_text(dir + "/continuous.txt", "wealth\n1.5\n2\n3\n4\n5\n");
    write_text(dir + "/categorical.txt", "group\nA\nB\nA\nC\nB\n");
    std::string covariate = "distance\n";
    for (int i = 0; i < 5; ++i) covariate += "0 1 2 3 4\n";
    write_text(dir + "/covariate.txt", covariate);
}

TemplateRequest request_for(NetworkKind kind, Task task) {
    TemplateRequest r;
    r.task = task;
    r.kind = kind;
    r.network_file = "net.txt";
    r.attribute_files = {{AttributeKind::binary, "binary.txt"},
                         {AttributeKind::continuous, "continuous.txt"},
                         {AttributeKind::categorical, "categorical.txt"}};
    r.covariate_file = "covariate.txt";
    return r;
}

// Every effect a run file of the kind takes, walked from the catalogues: alternating ones with
// lambda 3, attribute ones for each attribute the files above name.
std::vector<EffectChoice> every_effect(NetworkKind kind) {
    std::vector<EffectChoice> all;
    const CatalogueView& structural = structural_catalogue(kind);
    for (const int32_t r : structural.run_file_order) {
        const EffectDescription& row = structural.rows[static_cast<size_t>(r)];
        all.push_back({row.labels.update_name, 0.0, row.alternating() ? 3.0f : 0.0f});
    }
    const std::vector<std::string> names[] = {{"rich", "old"}, {"wealth"}, {"group"}, {"distance"}};
    for (const AttributeKind which : kinds) {
        for (const std::string& name : names[static_cast<size_t>(which)]) {
            for (const EffectDescription& row : attribute_catalogue(kind, which).rows)
                all.push_back({name + "_" + row.labels.update_name, 0.0, 0.0f});
        }
    }
    return all;
}

void expect_same_model(const Model& read, const Model& planned, const std::string& where) {
    ASSERT_EQ(read.structural.size(), planned.structural.size());
    for (size_t r = 0; r < read.structural.size(); ++r) {
        EXPECT_EQ(read.structural[r].slot, planned.structural[r].slot) << where << " row " << r;
        EXPECT_EQ(read.structural[r].value, planned.structural[r].value) << where;
        if (planned.structural[r].slot != -1) {
            EXPECT_EQ(read.structural[r].lambda, planned.structural[r].lambda) << where;
        }
    }
    for (const AttributeKind which : kinds) {
        const AttributeSection& a = read.section(which);
        const AttributeSection& b = planned.section(which);
        EXPECT_EQ(a.names, b.names) << where;
        EXPECT_EQ(a.included, b.included) << where;
        EXPECT_EQ(a.slot, b.slot) << where;
    }
    EXPECT_EQ(read.parameter_count(), planned.parameter_count()) << where;
}

TEST(RunFileTemplate, EveryEffectOfEveryTaskAndKindReadsBackToThatModel) {
    const std::string dir = scratch_directory("template_every_effect");
    write_inputs(dir);
    WorkingDirectory here(dir);
    for (const NetworkKind kind : {NetworkKind::graph, NetworkKind::digraph}) {
        for (const Task task : {Task::simulation, Task::estimation, Task::goodness_of_fit,
                                Task::bayesian_goodness_of_fit}) {
            const std::string where =
                std::string(task_name(task)) + (kind == NetworkKind::graph ? " graph" : " digraph");
            TemplateRequest request = request_for(kind, task);
            request.effects = every_effect(kind);
            const TemplatePlan plan = plan_template(request);
            const std::string text =
                capture([&](FILE* out) { write_run_file_template(out, plan); });
            write_text("run.txt", text);
            RunFile read;
            // A template's labels are the ones the reader expects: it says nothing.
            const std::string said =
                capture([&](FILE* out) { read = read_run_file("run.txt", out); });
            EXPECT_EQ(said.find("warning"), std::string::npos) << where << said;
            EXPECT_EQ(read.settings.task, task) << where;
            EXPECT_EQ(read.settings.network_kind, kind) << where;
            EXPECT_EQ(read.settings.node_count, 5) << where;
            EXPECT_EQ(read.settings.network_name, "net") << where;
            expect_same_model(read.model, plan.model, where);
            // Every entry the reader takes is included: nothing is missing from the walk.
            int entries = static_cast<int>(structural_catalogue(kind).run_file_order.size());
            const int attributes[] = {2, 1, 1, 1};
            for (const AttributeKind which : kinds)
                entries += attributes[static_cast<size_t>(which)] *
                           static_cast<int>(attribute_catalogue(kind, which).rows.size());
            EXPECT_EQ(read.model.parameter_count(), entries) << where;
        }
    }
}

// The names `vexa effects` lists, section by section (the first word of each indented line).
std::vector<std::vector<std::string>> listed(NetworkKind kind) {
    std::istringstream text(capture([&](FILE* out) { write_effect_list(out, kind); }));
    std::vector<std::vector<std::string>> sections;
    for (std::string line; std::getline(text, line);) {
        if (line.rfind("  ", 0) == 0) {
            std::istringstream words(line);
            std::string name;
            words >> name;
            sections.back().push_back(name);
        } else if (line.find("effects") != std::string::npos && line.rfind("Effects", 0) != 0) {
            sections.emplace_back();
        }
    }
    return sections;
}

TEST(RunFileTemplate, TheEffectListIsExactlyWhatARunFileTakes) {
    for (const NetworkKind kind : {NetworkKind::graph, NetworkKind::digraph}) {
        const auto sections = listed(kind);
        ASSERT_EQ(sections.size(), 5u);
        // Walked from the reader's own order: the run-file entries, no more and no fewer.
        std::vector<std::string> structural;
        for (const int32_t r : structural_catalogue(kind).run_file_order)
            structural.emplace_back(
                structural_catalogue(kind).rows[static_cast<size_t>(r)].labels.update_name);
        EXPECT_EQ(sections[0], structural);
        for (const AttributeKind which : kinds) {
            std::vector<std::string> names;
            for (const int32_t r : attribute_catalogue(kind, which).run_file_order)
                names.push_back(std::string("NAME_") + attribute_catalogue(kind, which)
                                                           .rows[static_cast<size_t>(r)]
                                                           .labels.update_name);
            EXPECT_EQ(sections[static_cast<size_t>(which) + 1], names);
        }
    }
}

TEST(RunFileTemplate, SizesNamesAndRefusals) {
    const std::string dir = scratch_directory("template_refusals");
    write_inputs(dir);
    WorkingDirectory here(dir);
    EXPECT_EQ(count_network_nodes("net.txt"), 5);
    EXPECT_EQ(count_network_nodes("ties.txt"), 5);

    const auto effects = parse_effect_list("arc,reciprocity,AT-T=2.5");
    ASSERT_EQ(effects.size(), 3u);
    EXPECT_EQ(effects[2].name, "AT-T");
    EXPECT_EQ(effects[2].lambda, 2.5f);
    EXPECT_THROW(parse_effect_list("arc,,AT-T"), SettingError);
    EXPECT_THROW(parse_effect_list("AT-T=x"), SettingError);

    TemplateRequest request = request_for(NetworkKind::digraph, Task::estimation);
    request.effects = parse_effect_list("arc,recipocity");
    try {
        plan_template(request);
        ADD_FAILURE() << "an unknown effect was taken";
    } catch (const SettingError& e) {
        EXPECT_NE(std::string(e.what()).find("(the closest is 'reciprocity')"), std::string::npos)
            << e.what();
    }
    request.effects = parse_effect_list("arc=2");  // arc takes no lambda
    EXPECT_THROW(plan_template(request), SettingError);
    request.effects = {};
    request.network_file = "";
    EXPECT_THROW(plan_template(request), SettingError);  // an estimation needs its network
    request.task = Task::simulation;
    request.node_count = 7;
    EXPECT_THROW(plan_template(request), InputFileError);  // attribute files of 5 nodes
    request.attribute_files.clear();
    request.covariate_file.clear();
    EXPECT_EQ(plan_template(request).request.name, "network");
}

}  // namespace
}  // namespace vexa
