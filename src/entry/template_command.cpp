#include "entry/template_command.h"

#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

#include "entry/run_driver.h"
#include "entry/run_file_template.h"

namespace vexa {

namespace {

void template_usage(FILE* out) {
    std::fprintf(
        out,
        "usage: vexa template --task estimate|simulate|gof|bayes --kind graph|digraph\n"
        "           [--network FILE] [--nodes N] [--effects NAME,NAME=LAMBDA,...]\n"
        "           [--attribute binary|continuous|categorical:FILE]... [--covariate FILE]\n"
        "           [--name NAME] [--output-dir DIR] [--sets FILE]\n"
        "Writes a complete run file to standard output: every row with its label, the named\n"
        "effects included (starting at 0; an alternating effect with the lambda given) and\n"
        "every other effect present and left out. The node count is read from the network\n"
        "file; a simulation without one needs --nodes. Attribute effects are named by the\n"
        "attribute, '_' and the effect (Grade_Same_Category_edge); `vexa effects` lists them.\n"
        "The run's reports go to the current folder unless --output-dir says otherwise.\n");
}

bool task_named(const char* word, Task& task) {
    const struct {
        const char* name;
        Task task;
    } names[] = {{"estimate", Task::estimation},
                 {"simulate", Task::simulation},
                 {"gof", Task::goodness_of_fit},
                 {"bayes", Task::bayesian_goodness_of_fit}};
    for (const auto& n : names) {
        if (std::strcmp(word, n.name) == 0) {
            task = n.task;
            return true;
        }
    }
    return false;
}

bool kind_named(const char* word, NetworkKind& kind) {
    if (std::strcmp(word, "graph") == 0)
        kind = NetworkKind::graph;
    else if (std::strcmp(word, "digraph") == 0)
        kind = NetworkKind::digraph;
    else
        return false;
    return true;
}

bool attribute_named(const std::string& value, TemplateAttributeFile& file) {
    const size_t colon = value.find(':');
    if (colon == std::string::npos || colon + 1 == value.size()) return false;
    const std::string kind = value.substr(0, colon);
    file.path = value.substr(colon + 1);
    if (kind == "binary")
        file.kind = AttributeKind::binary;
    else if (kind == "continuous")
        file.kind = AttributeKind::continuous;
    else if (kind == "categorical")
        file.kind = AttributeKind::categorical;
    else
        return false;
    return true;
}

// Takes option argv[k] and its value into the request; false (after saying why) when wrong.
bool take_template_option(int argc, char** argv, int& k, TemplateRequest& request,
                          std::string& effects, FILE* err) {
    const std::string option = argv[k];
    if (k + 1 >= argc) {
        std::fprintf(err, "vexa template: %s needs a value\n", option.c_str());
        return false;
    }
    const char* value = argv[++k];
    bool fine = true;
    if (option == "--task")
        fine = task_named(value, request.task);
    else if (option == "--kind")
        fine = kind_named(value, request.kind);
    else if (option == "--network")
        request.network_file = value;
    else if (option == "--effects")
        effects = value;
    else if (option == "--covariate")
        request.covariate_file = value;
    else if (option == "--name")
        request.name = value;
    else if (option == "--output-dir")
        request.output_directory = value;
    else if (option == "--sets")
        request.parameter_sets_file = value;
    else if (option == "--nodes") {
        char* end = nullptr;
        const long n = std::strtol(value, &end, 10);
        fine = *end == '\0' && n >= 1 && n <= 100000000L;
        request.node_count = static_cast<int32_t>(n);
    } else if (option == "--attribute") {
        TemplateAttributeFile file;
        fine = attribute_named(value, file);
        request.attribute_files.push_back(file);
    } else {
        std::fprintf(err, "vexa template: unknown option '%s'\n", option.c_str());
        return false;
    }
    if (!fine)
        std::fprintf(err, "vexa template: %s '%s' is not one it takes\n", option.c_str(), value);
    return fine;
}

}  // namespace

int template_command(int argc, char** argv, FILE* out, FILE* err) {
    TemplateRequest request;
    std::string effects;
    for (int k = 1; k < argc; ++k) {
        if (std::strcmp(argv[k], "--help") == 0) {
            template_usage(out);
            return 0;
        }
        if (!take_template_option(argc, argv, k, request, effects, err)) {
            template_usage(err);
            return 2;
        }
    }
    // Everything that can be refused is settled before the first row is written.
    std::optional<TemplatePlan> plan;
    const int status = run_guarded(err, [&] {
        if (!effects.empty()) request.effects = parse_effect_list(effects);
        plan = plan_template(request);
    });
    if (status != 0) return 1;
    write_run_file_template(out, *plan);
    return 0;
}

int effects_command(int argc, char** argv, FILE* out, FILE* err) {
    NetworkKind kind = NetworkKind::graph;
    bool both = true;
    for (int k = 1; k < argc; ++k) {
        if (std::strcmp(argv[k], "--kind") == 0 && k + 1 < argc && kind_named(argv[k + 1], kind)) {
            both = false;
            ++k;
            continue;
        }
        std::fprintf(err, "usage: vexa effects [--kind graph|digraph]\n");
        return 2;
    }
    if (both || kind == NetworkKind::graph) write_effect_list(out, NetworkKind::graph);
    if (both) std::fprintf(out, "\n");
    if (both || kind == NetworkKind::digraph) write_effect_list(out, NetworkKind::digraph);
    return 0;
}

}  // namespace vexa
