#include "entry/run_file.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "base/errors.h"
#include "base/text_file.h"
#include "effects/catalogue.h"
#include "entry/attribute_files.h"
#include "entry/run_file_rows.h"
#include "simulation/sampling.h"

namespace vexa {

namespace {

using namespace run_file_rows;

void size_section(AttributeSection& section, int32_t effects, int32_t count) {
    const auto e = static_cast<size_t>(effects);
    const auto c = static_cast<size_t>(count);
    section.count = count;
    section.included.assign(e, std::vector<int32_t>(c, 0));
    section.value.assign(e, std::vector<double>(c, 0.0));
    section.slot.assign(e, std::vector<int32_t>(c, -1));
    section.included_count = 0;
}

void size_all_sections(Model& model) {
    for (int k = 0; k < attribute_kind_count; ++k) {
        const auto kind = static_cast<AttributeKind>(k);
        size_section(model.section(kind),
                     static_cast<int32_t>(attribute_catalogue(model.kind, kind).rows.size()), 0);
    }
}

// One structural entry: label, inclusion flag, value, and the lambda of an alternating effect.
void read_structural_entry(Reader& reader, Model& model, size_t row, const char* name,
                           float lambda_default) {
    const std::string entry = name;
    skip_label(reader, entry, entry);
    const int32_t flag = read_int(reader, entry + ": inclusion flag");
    EffectSetting& effect = model.structural[row];
    effect.value = read_double(reader, entry + ": value");
    if (lambda_default != 0.0f) {
        const std::string setting = entry + ": lambda";
        const Word word = next_word(reader, setting);
        char* end = nullptr;
        const float lambda = std::strtof(word.text.c_str(), &end);
        if (word.text.empty() || end != word.text.c_str() + word.text.size()) {
            bad_value(reader, word, setting, "a number");
        }
        if (!std::isfinite(lambda)) {
            impossible(
                reader, word.line, setting,
                format_message("lambda must be a finite number, found '%.60s'", word.text.c_str()));
        }
        const std::string refusal = lambda_refusal(lambda, lambda_default);
        if (!refusal.empty()) impossible(reader, word.line, setting, refusal);
        effect.lambda = lambda == 0.0f ? lambda_default : lambda;
    }
    if (flag == 1) {
        effect.slot = reader.next_slot++;
        ++model.structural_included;
    }
}

void read_structural_section(Reader& reader, Model& model) {
    model.structural_given = int_row(reader, "structural_section") == 1;
    if (!model.structural_given) return;
    const CatalogueView& catalogue = structural_catalogue(model.kind);
    for (const int32_t row : catalogue.run_file_order) {
        reader.known_labels.emplace_back(
            catalogue.rows[static_cast<size_t>(row)].labels.update_name);
    }
    for (const int32_t row : catalogue.run_file_order) {
        const EffectDescription& effect = catalogue.rows[static_cast<size_t>(row)];
        read_structural_entry(reader, model, static_cast<size_t>(row), effect.labels.update_name,
                              effect.lambda_default);
    }
}

// One attribute (or covariate) entry: label (the attribute's name, '_' and the effect's),
// inclusion flag, value.
void read_attribute_entry(Reader& reader, AttributeSection& section, size_t effect,
                          size_t attribute, const std::string& entry,
                          const std::vector<std::string>& labels) {
    // Run files in use shorten these labels freely ("Grade_same" for Grade_Same_Category_edge):
    // only a label nearer to another entry of the attribute is taken for a shifted row.
    skip_label(reader, entry, labels[effect], &labels);
    const int32_t flag = read_int(reader, entry + ": inclusion flag");
    section.value[effect][attribute] = read_double(reader, entry + ": value");
    if (flag == 1) {
        section.included[effect][attribute] = 1;
        section.slot[effect][attribute] = reader.next_slot++;
        ++section.included_count;
    }
}

void read_attribute_entries(Reader& reader, Model& model, AttributeKind kind,
                            const char* kind_name) {
    AttributeSection& section = model.section(kind);
    const CatalogueView& catalogue = attribute_catalogue(model.kind, kind);
    std::vector<std::vector<std::string>> labels(static_cast<size_t>(section.count));
    for (size_t a = 0; a < labels.size(); ++a) {
        for (const EffectDescription& row : catalogue.rows)
            labels[a].push_back(section.names[a] + "_" + row.labels.update_name);
        reader.known_labels.insert(reader.known_labels.end(), labels[a].begin(), labels[a].end());
    }
    for (size_t a = 0; a < labels.size(); ++a) {
        for (size_t e = 0; e < catalogue.rows.size(); ++e) {
            const char* name = catalogue.rows[e].labels.update_name;
            const std::string entry =
                kind == AttributeKind::covariate
                    ? format_message("covariate, %s", name)
                    : format_message("%s attribute %zu, %s", kind_name, a + 1, name);
            read_attribute_entry(reader, section, e, a, entry, labels[a]);
        }
    }
}

void read_attribute_sub_block(Reader& reader, Model& model, AttributeKind kind,
                              int32_t node_count) {
    const char* word = kind == AttributeKind::binary       ? "binary"
                       : kind == AttributeKind::continuous ? "continuous"
                                                           : "categorical";
    const std::string prefix = word;
    AttributeSection& section = model.section(kind);
    section.given = int_row(reader, prefix + "_attributes") == 1;
    if (!section.given) return;

    int32_t line = 0;
    const int32_t count = read_int(reader, prefix + "_attribute_count", &line);
    if (count < 0) {
        impossible(reader, line, prefix + "_attribute_count",
                   format_message("expected a count of 0 or more, found %d", count));
    }
    FILE* console = reader.console;
    if (console != nullptr && kind != AttributeKind::categorical) {
        std::fprintf(console, "%s attributes\n", word);
        std::fprintf(console, "%d %s attributes\n", count, word);
    }
    section.file = line_row(reader, prefix + "_attribute_file");
    if (console != nullptr) {
        std::fprintf(console, "%s\n", section.file.c_str());
        std::fprintf(console, "%d %s attributes\n", count, word);
    }
    if (count > 0) {
        AttributeData data = read_attribute_file(section.file, kind, count, node_count);
        section.names = std::move(data.names);
        section.data = std::move(data.data);
        section.missing = std::move(data.missing);
    }
    size_section(section, static_cast<int32_t>(attribute_catalogue(model.kind, kind).rows.size()),
                 count);
    read_attribute_entries(reader, model, kind, word);
}

void read_attribute_block(Reader& reader, Model& model, int32_t node_count) {
    model.attributes_given = int_row(reader, "attribute_block") == 1;
    if (!model.attributes_given) return;
    read_attribute_sub_block(reader, model, AttributeKind::binary, node_count);
    read_attribute_sub_block(reader, model, AttributeKind::continuous, node_count);
    read_attribute_sub_block(reader, model, AttributeKind::categorical, node_count);
}

void read_covariate_section(Reader& reader, Model& model, int32_t node_count) {
    AttributeSection& section = model.section(AttributeKind::covariate);
    section.given = int_row(reader, "covariate_section") == 1;
    if (!section.given) return;
    section.file = line_row(reader, "covariate_file");
    AttributeData data = read_covariate_file(section.file, node_count);
    section.names = std::move(data.names);
    section.data = std::move(data.data);
    section.missing = std::move(data.missing);
    size_section(
        section,
        static_cast<int32_t>(attribute_catalogue(model.kind, AttributeKind::covariate).rows.size()),
        1);
    read_attribute_entries(reader, model, AttributeKind::covariate, "covariate");
}

// A flag row: on when the value is exactly 1.
bool flag_row(Reader& reader, const char* setting) { return int_row(reader, setting) == 1; }

void read_output_flags(Reader& reader, RunSettings& settings) {
    SampleOutputs& o = settings.outputs;
    o.pajek = flag_row(reader, "pajek_output");
    o.degree_distribution = flag_row(reader, "degree_distribution_output");
    o.geodesic = flag_row(reader, "geodesic_output");
    o.cluster_giant = flag_row(reader, "cluster_giant_output");
    o.triangle_distribution = flag_row(reader, "triangle_distribution_output");
    o.twopath_distribution = flag_row(reader, "twopath_distribution_output");
    o.et0nt_distribution = flag_row(reader, "et0nt_distribution_output");
}

// The estimation rows, each refused when no estimation could be run with it.
void read_estimation_rows(Reader& reader, RunSettings& settings) {
    int32_t line = 0;
    settings.subphase_count = int_row_at_least(reader, "subphase_count", 0,
                                               "the number of sub-phases must be 0 or more", &line);
    if (settings.subphase_count == 0) {
        warn(reader, line, "subphase_count",
             "0 sub-phases run no phase 2, so the estimate reported is the starting value "
             "(phase 3 measures the standard errors and t-ratios around it)");
    }
    settings.start_a_value = float_row(reader, "start_a_value", &line);
    if (!(settings.start_a_value > 0.0f)) {
        impossible(reader, line, "start_a_value",
                   format_message("the starting gain must be above 0, found %g",
                                  static_cast<double>(settings.start_a_value)));
    }
    settings.multiplication_factor = int_row_at_least(
        reader, "multiplication_factor", 1, "the multiplication factor must be at least 1");
    // Standard errors and t-ratios need the spread of at least two draws.
    settings.phase3_steps =
        int_row_at_least(reader, "phase3_steps", 2,
                         "phase 3 needs at least 2 draws for standard errors and t-ratios");
    settings.estimation_runs =
        int_row_at_least(reader, "estimation_runs", 1, "at least 1 estimation run is needed");
    settings.gof_after_estimation = flag_row(reader, "gof_after_estimation");
}

// Everything after the head; its layout depends on the task.
void read_task_rows(Reader& reader, RunSettings& settings, Model& model) {
    const Task task = settings.task;
    int32_t line = 0;
    settings.node_count =
        int_row_at_least(reader, "node_count", 1, "the network needs at least 1 node");
    if (task == Task::simulation) {
        settings.initial_density = float_row(reader, "initial_density");
    } else {
        settings.network_file = line_row(reader, "network_file");
    }
    settings.degree_cap_given = flag_row(reader, "degree_cap_given");
    if (settings.degree_cap_given) {
        settings.degree_cap = int_row_at_least(reader, "degree_cap", 0, "the cap must be 0 or more",
                                               &settings.degree_cap_line);
        if (settings.degree_cap == 0 && task == Task::simulation) {
            warn(reader, settings.degree_cap_line, "degree_cap",
                 "a cap of 0 lets no tie be added: the simulation runs, but no sampled network "
                 "can gain a tie");
        }
    }

    read_structural_section(reader, model);
    read_attribute_block(reader, model, settings.node_count);
    read_covariate_section(reader, model, settings.node_count);

    if (task == Task::bayesian_goodness_of_fit)
        settings.parameter_sets_file = line_row(reader, "parameter_sets_file");
    settings.constraint_given = flag_row(reader, "constraint_given");
    if (settings.constraint_given) settings.constraint_file = line_row(reader, "constraint_file");

    if (task == Task::estimation) {
        read_estimation_rows(reader, settings);
        return;
    }
    read_output_flags(reader, settings);
    settings.burn_in =
        double_row_at_least(reader, "burn_in", 0.0, "the burn-in must be 0 or more steps");
    if (task == Task::bayesian_goodness_of_fit) {
        settings.sample_count =
            int_row_at_least(reader, "sample_count", 1, "at least 1 parameter set must be used");
        return;
    }
    settings.iterations =
        double_row_at_least(reader, "iterations", 0.0, "the number of proposals must be 0 or more");
    // The sample is thinned to one network per so many steps.
    settings.sample_count =
        int_row_at_least(reader, "sample_count", 1, "at least 1 network must be kept", &line);
    settings.thinning_interval =
        std::trunc(settings.iterations / static_cast<double>(settings.sample_count));
    // Simulation and goodness of fit alike: a plan that keeps no sample is refused here, before
    // any file is written, rather than after a burn-in that leads nowhere.
    if (planned_samples({settings.iterations, settings.thinning_interval}) < 1.0) {
        impossible(
            reader, line, "sample_count",
            format_message("%d networks cannot be kept from %g iterations: a sample every "
                           "%g proposals keeps none (sample_count must be at most "
                           "iterations)",
                           settings.sample_count, settings.iterations, settings.thinning_interval));
    }
}

}  // namespace

std::string lambda_refusal(float lambda, float lambda_default) {
    // The largest lambda taken: the weights' single precision leaves their steps four digits.
    constexpr double max_lambda = 1e4;
    // 0 asks for the default; below 1 the weights (1 - 1/lambda)^k no longer fall steadily
    // towards 0, so the effect counts nothing a model can be fitted to.
    if (lambda != 0.0f && lambda < 1.0f) {
        return format_message(
            "lambda %g is below 1, where an alternating effect's weights (1 - 1/lambda)^k no "
            "longer fall steadily to 0: it has no proper change statistic and the model is "
            "degenerate; give 1 or more (0 for the default, %g)",
            static_cast<double>(lambda), static_cast<double>(lambda_default));
    }
    // The weights are held in single precision: far above this, 1 - 1/lambda is 1 to the last
    // digit and the change statistics vanish (the statistic stops varying at all).
    if (lambda > max_lambda) {
        return format_message(
            "lambda %g is above %g, where the weights (1 - 1/lambda)^k lose their precision and "
            "the effect stops varying; give a lambda from 1 to %g (0 for the default, %g)",
            static_cast<double>(lambda), max_lambda, max_lambda,
            static_cast<double>(lambda_default));
    }
    return "";
}

RunFile read_run_file(const std::string& path, FILE* console) {
    Reader reader = open_reader(path, console);
    RunFile file;
    RunSettings& settings = file.settings;
    settings.run_file = path;

    settings.network_name = line_row(reader, "network_name");
    settings.output_directory = line_row(reader, "output_directory");
    file.names = form_output_names(settings.output_directory, settings.network_name);
    const int32_t sampler_code = int_row(reader, "sampler_variant");
    const int32_t task_code = int_row(reader, "task");
    const int32_t kind_code = read_int(reader, "network_kind");
    if (!task_of(task_code, settings.task) || !network_kind_of(kind_code, settings.network_kind)) {
        throw SettingError(format_message(
            "vexa: run file '%s' asks for task %d on network kind %d; vexa runs tasks 1 to "
            "4 on kinds 1 (graph) and 2 (digraph), so nothing was run",
            path.c_str(), task_code, kind_code));
    }
    settings.proposal = proposal_of(sampler_code, settings.network_kind);
    file.model = empty_model(settings.network_kind);
    size_all_sections(file.model);
    read_task_rows(reader, settings, file.model);
    return file;
}

}  // namespace vexa
