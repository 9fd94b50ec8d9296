#pragma once
// Run files nobody writes by hand: a complete run file for a task, a network kind and a list of
// effects, every row with its label, the chosen effects included and every other one present
// and left out; and the list of the effects a run file takes, with what each counts. Both walk
// the catalogues, so a new effect appears in them with its row.

#include <cstdio>
#include <string>
#include <vector>

#include "entry/api.h"
#include "entry/run_context.h"

namespace vexa {

struct TemplateAttributeFile {
    AttributeKind kind = AttributeKind::binary;  // binary, continuous or categorical
    std::string path;
};

struct TemplateRequest {
    Task task = Task::estimation;
    NetworkKind kind = NetworkKind::graph;
    std::string network_file;  // every task but a simulation, which may give one for its size
    int32_t node_count = 0;    // 0: counted from the network file
    std::string name;          // "": the network file's stem, else "network"
    std::string output_directory = ".";
    std::vector<EffectChoice> effects;  // run-file names; an alternating effect's lambda
    std::vector<TemplateAttributeFile> attribute_files;  // one file per kind at most
    std::string covariate_file;
    std::string parameter_sets_file;  // a Bayesian goodness of fit; "": NAME_sets.txt
};

// "arc,reciprocity,AT-T=2": names separated by commas, an alternating effect's lambda after
// '='. Throws SettingError for an empty name or a lambda that is not a number.
std::vector<EffectChoice> parse_effect_list(const std::string& text);

// The node count of a network file: a tie list's *Vertices count, or the number of values in
// a matrix's first row. Throws InputFileError naming the file when it has neither.
int32_t count_network_nodes(const std::string& path);

// The request's model, the node count settled and the attribute and covariate files read
// for their names. Throws SettingError naming an effect no run file of the kind takes, with
// the closest one, and InputFileError for a file that cannot be read.
struct TemplatePlan {
    TemplateRequest request;
    Model model;
};
TemplatePlan plan_template(TemplateRequest request);

// Writes the run file of a plan, every row after its label.
void write_run_file_template(FILE* out, const TemplatePlan& plan);

// Lists every effect a run file of the kind takes, section by section, with its lambda
// default where it has one and what it counts.
void write_effect_list(FILE* out, NetworkKind kind);

}  // namespace vexa
