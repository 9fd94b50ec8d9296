#include "entry/run_file_template.h"

#include <cstdlib>
#include <filesystem>
#include <utility>

#include "base/closest.h"
#include "base/errors.h"
#include "base/matrix_text.h"
#include "base/text_file.h"
#include "base/tie_list_file.h"
#include "entry/attribute_files.h"

namespace vexa {

namespace {

const char* kind_word(AttributeKind kind) {
    switch (kind) {
        case AttributeKind::binary: return "binary";
        case AttributeKind::continuous: return "continuous";
        case AttributeKind::categorical: return "categorical";
        case AttributeKind::covariate: return "covariate";
    }
    return "binary";
}

// The words of the first line that holds any, for a file's header.
std::vector<std::string> first_line_words(const std::string& text) {
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        std::vector<std::string> words =
            split_words(std::string_view(text).substr(start, end - start));
        if (!words.empty()) return words;
        start = end + 1;
    }
    return {};
}

// Every name the request may give an effect, for naming the closest to an unknown one.
std::vector<std::string> effect_names(const TaskRequest& task) {
    std::vector<std::string> names;
    const NetworkKind kind = task.settings.network_kind;
    for (const EffectDescription& row : structural_catalogue(kind).rows)
        if (row.labels.update_name != nullptr) names.emplace_back(row.labels.update_name);
    const auto add = [&](AttributeKind which, const std::string& attribute) {
        for (const EffectDescription& row : attribute_catalogue(kind, which).rows)
            names.push_back(attribute + "_" + row.labels.update_name);
    };
    for (const AttributeColumn& column : task.attributes) add(column.kind, column.name);
    if (task.covariate_given) add(AttributeKind::covariate, task.covariate_name);
    return names;
}

// The task request whose model is the template's: the attribute files read for their names,
// every value 0 (a template needs names alone).
TaskRequest model_request(const TemplateRequest& request, int32_t n) {
    TaskRequest task;
    task.settings.run_file = "vexa template";
    task.settings.network_kind = request.kind;
    task.settings.node_count = n;
    bool seen[attribute_kind_count] = {};
    for (const TemplateAttributeFile& file : request.attribute_files) {
        const auto k = static_cast<size_t>(file.kind);
        if (file.kind == AttributeKind::covariate || seen[k]) {
            throw SettingError(format_message(
                "vexa template: --attribute %s:%s: a run file takes one file each of binary, "
                "continuous and categorical attributes",
                kind_word(file.kind), file.path.c_str()));
        }
        seen[k] = true;
        const std::vector<std::string> header =
            first_line_words(read_text_file(file.path, kind_word(file.kind)));
        const AttributeData data =
            read_attribute_file(file.path, file.kind, static_cast<int32_t>(header.size()), n);
        for (const std::string& name : data.names) {
            task.attributes.push_back(
                {name, file.kind, std::vector<double>(static_cast<size_t>(n), 0.0), {}});
        }
    }
    if (!request.covariate_file.empty()) {
        const AttributeData data = read_covariate_file(request.covariate_file, n);
        task.covariate_given = true;
        task.covariate_name = data.names.at(0);
        task.covariate.assign(static_cast<size_t>(n) * static_cast<size_t>(n), 0.0);
    }
    const std::vector<std::string> known = effect_names(task);
    for (const EffectChoice& choice : request.effects) {
        bool found = false;
        for (const std::string& name : known) found = found || name == choice.name;
        if (!found) {
            throw SettingError(format_message(
                "vexa template: no effect '%s' in a %s run file (the closest is '%s'); `vexa "
                "effects --kind %s` lists them",
                choice.name.c_str(), request.kind == NetworkKind::digraph ? "digraph" : "graph",
                closest_word(choice.name, known).c_str(),
                request.kind == NetworkKind::digraph ? "digraph" : "graph"));
        }
    }
    task.effects = request.effects;
    return task;
}

std::string value_text(double value) {
    if (value == 0.0) return "0.0";
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%.17g", value);
    return buffer;
}

void row(FILE* out, const char* label, const std::string& value) {
    print(out, "%s\n%s\n\n", label, value.c_str());
}

void entry(FILE* out, const std::string& label, bool included, double value) {
    print(out, "%s\n%d\n%s\n", label.c_str(), included ? 1 : 0, value_text(value).c_str());
}

void write_structural(FILE* out, const Model& model) {
    print(out, "structural_effects\n1\n");
    const CatalogueView& catalogue = structural_catalogue(model.kind);
    for (const int32_t r : catalogue.run_file_order) {
        const EffectDescription& row_about = catalogue.rows[static_cast<size_t>(r)];
        const EffectSetting& effect = model.structural[static_cast<size_t>(r)];
        print(out, "%s\n%d\n%s", row_about.labels.update_name, effect.slot != -1 ? 1 : 0,
              value_text(effect.value).c_str());
        if (row_about.alternating()) {
            const float lambda = effect.lambda != 0.0f ? effect.lambda : row_about.lambda_default;
            print(out, " %.9g", static_cast<double>(lambda));
        }
        print(out, "\n");
    }
}

// The entries of one attribute kind (or the covariate), attribute by attribute.
void write_entries(FILE* out, const Model& model, AttributeKind kind) {
    const AttributeSection& section = model.section(kind);
    const CatalogueView& catalogue = attribute_catalogue(model.kind, kind);
    for (size_t a = 0; a < static_cast<size_t>(section.count); ++a) {
        for (const int32_t e : catalogue.run_file_order) {
            const auto k = static_cast<size_t>(e);
            entry(out, section.names[a] + "_" + catalogue.rows[k].labels.update_name,
                  section.included[k][a] != 0, section.value[k][a]);
        }
    }
}

void write_attributes(FILE* out, const TemplatePlan& plan) {
    const Model& model = plan.model;
    print(out, "attribute_effects\n%d\n", model.attributes_given ? 1 : 0);
    if (model.attributes_given) {
        for (const AttributeKind kind :
             {AttributeKind::binary, AttributeKind::continuous, AttributeKind::categorical}) {
            const char* word = kind_word(kind);
            const AttributeSection& section = model.section(kind);
            print(out, "%s_attributes\n%d\n", word, section.given ? 1 : 0);
            if (!section.given) continue;
            std::string path;
            for (const TemplateAttributeFile& file : plan.request.attribute_files)
                if (file.kind == kind) path = file.path;
            print(out, "%d\n%s_attribute_file\n%s\n\n", section.count, word, path.c_str());
            write_entries(out, model, kind);
        }
    }
    const bool covariate = model.section(AttributeKind::covariate).given;
    print(out, "covariate_effects\n%d\n", covariate ? 1 : 0);
    if (!covariate) return;
    print(out, "covariate_file\n%s\n\n", plan.request.covariate_file.c_str());
    write_entries(out, model, AttributeKind::covariate);
}

// The rows after the constraint: estimation settings, or the output flags and the sample.
void write_task_settings(FILE* out, Task task) {
    if (task == Task::estimation) {
        row(out, "subphase_count", "5");
        row(out, "start_a_value", "0.1");
        row(out, "multiplication_factor", "2");
        row(out, "phase3_steps", "500");
        row(out, "estimation_runs", "5");
        row(out, "gof_after_estimation", "0");
        return;
    }
    const char* flags[] = {"pajek_output",
                           "degree_distribution_output",
                           "geodesic_output",
                           "cluster_giant_output",
                           "triangle_distribution_output",
                           "twopath_distribution_output",
                           "et0nt_distribution_output"};
    for (const char* flag : flags) {
        const bool on = flag == flags[1] || flag == flags[2];
        row(out, flag, on ? "1" : "0");
    }
    row(out, "burn_in", "10000");
    if (task == Task::bayesian_goodness_of_fit) {
        row(out, "sample_count", "100");
        return;
    }
    row(out, "iterations", task == Task::simulation ? "100000" : "1000000");
    row(out, "sample_count", task == Task::simulation ? "100" : "1000");
}

}  // namespace

std::vector<EffectChoice> parse_effect_list(const std::string& text) {
    std::vector<EffectChoice> effects;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find(',', start);
        if (end == std::string::npos) end = text.size();
        const std::string item = text.substr(start, end - start);
        const size_t equals = item.find('=');
        EffectChoice choice;
        choice.name = item.substr(0, equals);
        if (choice.name.empty() || choice.name.find_first_of(" \t") != std::string::npos) {
            throw SettingError(
                format_message("vexa template: --effects '%s': '%s' is not an effect's name",
                               text.c_str(), item.c_str()));
        }
        if (equals != std::string::npos) {
            double lambda = 0.0;
            if (!parse_double(item.substr(equals + 1), lambda) || !(lambda >= 1.0)) {
                throw SettingError(format_message(
                    "vexa template: --effects: '%s' gives a lambda, which must be a number of "
                    "at least 1",
                    item.c_str()));
            }
            choice.lambda = static_cast<float>(lambda);
        }
        effects.push_back(choice);
        start = end + 1;
    }
    return effects;
}

int32_t count_network_nodes(const std::string& path) {
    const std::string text = read_text_file(path, "network");
    if (is_tie_list_file(path)) {
        // The *Vertices line gives the count.
        const size_t at = text.find("*Vertices");
        const size_t at_lower = text.find("*vertices");
        const size_t found = at != std::string::npos ? at : at_lower;
        if (found != std::string::npos) {
            const std::vector<std::string> words = first_line_words(text.substr(found));
            double n = 0.0;
            if (words.size() >= 2 && parse_double(words[1], n) && n >= 1 && n < 2e9)
                return static_cast<int32_t>(n);
        }
        throw InputFileError(format_message(
            "vexa template: network file '%s' is a tie list without a *Vertices count",
            path.c_str()));
    }
    const size_t n = first_line_words(text).size();
    if (n == 0) {
        throw InputFileError(
            format_message("vexa template: network file '%s' holds no matrix row", path.c_str()));
    }
    return static_cast<int32_t>(n);
}

TemplatePlan plan_template(TemplateRequest request) {
    if (request.network_file.empty() && request.task != Task::simulation) {
        throw SettingError(format_message(
            "vexa template: the %s reads the observed network: give its file with --network FILE",
            task_name(request.task)));
    }
    if (request.node_count == 0) {
        if (request.network_file.empty()) {
            throw SettingError(
                "vexa template: a simulation needs its size: --nodes N or --network FILE");
        }
        request.node_count = count_network_nodes(request.network_file);
    }
    if (request.name.empty()) {
        request.name = request.network_file.empty()
                           ? "network"
                           : std::filesystem::path(request.network_file).stem().string();
    }
    if (request.task == Task::bayesian_goodness_of_fit && request.parameter_sets_file.empty())
        request.parameter_sets_file = request.name + "_sets.txt";
    const TaskRequest task = model_request(request, request.node_count);
    TemplatePlan plan{std::move(request), request_model(task)};
    return plan;
}

void write_run_file_template(FILE* out, const TemplatePlan& plan) {
    const TemplateRequest& r = plan.request;
    row(out, "network_name", r.name);
    row(out, "output_directory", r.output_directory);
    row(out, "sampler_variant", "0");
    row(out, "task_and_network_kind",
        format_message("%d %d", static_cast<int>(r.task) + 1,
                       r.kind == NetworkKind::digraph ? 2 : 1));
    row(out, "node_count", std::to_string(r.node_count));
    if (r.task == Task::simulation) {
        row(out, "initial_density", "0.1");
    } else {
        row(out, "network_file", r.network_file);
    }
    print(out, "degree_cap_given\n0\n");
    write_structural(out, plan.model);
    write_attributes(out, plan);
    if (r.task == Task::bayesian_goodness_of_fit)
        row(out, "parameter_sets_file", r.parameter_sets_file);
    print(out, "constraint_given\n0\n");
    write_task_settings(out, r.task);
}

void write_effect_list(FILE* out, NetworkKind kind) {
    const char* word = kind == NetworkKind::digraph ? "digraph" : "graph";
    print(out,
          "Effects of a %s run file, in run-file order (vexa template --kind %s --effects "
          "NAME,NAME=LAMBDA,...)\n",
          word, word);
    const auto list = [out](const CatalogueView& catalogue, const char* prefix) {
        for (const int32_t r : catalogue.run_file_order) {
            const EffectDescription& row_about = catalogue.rows[static_cast<size_t>(r)];
            const std::string name = std::string(prefix) + row_about.labels.update_name;
            const std::string lambda =
                row_about.alternating()
                    ? format_message("lambda %g", static_cast<double>(row_about.lambda_default))
                    : "";
            print(out, "  %-26s %-9s %s\n", name.c_str(), lambda.c_str(), row_about.labels.meaning);
        }
    };
    print(out, "\nstructural effects\n");
    list(structural_catalogue(kind), "");
    for (const AttributeKind which : {AttributeKind::binary, AttributeKind::continuous,
                                      AttributeKind::categorical, AttributeKind::covariate}) {
        const bool covariate = which == AttributeKind::covariate;
        print(out, "\n%s effects, for every %s (--%s %sFILE)\n", kind_word(which),
              covariate ? "covariate" : "attribute of the kind",
              covariate ? "covariate" : "attribute",
              covariate ? "" : format_message("%s:", kind_word(which)).c_str());
        list(attribute_catalogue(kind, which), "NAME_");
    }
}

}  // namespace vexa
