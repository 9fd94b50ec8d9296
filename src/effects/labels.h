#pragma once
// The names an effect carries in the files the engine writes. The spellings differ between
// files on purpose ("4Cycle" in the statistics report, "cycle4" in the run file, "D3" for
// 3Path in the estimation summary, "triangles" in the goodness-of-fit table); each file keeps
// its own, and every catalogue (structural effects of either kind, attribute and covariate
// effects) fills the same record.

#include <string>

namespace vexa {

struct EffectLabels {
    const char* update_name;       // run file and update files; nullptr: the run file has no entry
    const char* report_name;       // start and end statistics; "(%.2f)" follows when alternating
    const char* column_name;       // change-statistics and log-odds columns
    const char* summary_label;     // estimation summary rows
    const char* simulation_label;  // simulation and goodness-of-fit parameter lines
    const char* gof_label;         // goodness-of-fit table rows
    const char* sample_column;     // sample statistics columns
    const char* spss_name;         // SPSS variable
    const char* spss_format;       // "F8.0" or "F8.4", as each variable has it
    const char* meaning;           // what it counts, in one line, for `vexa effects`
};

// Which of the names a file prints.
enum class LabelStyle { update, report, column, summary, simulation, gof, sample, spss };

inline const char* label_text(const EffectLabels& labels, LabelStyle style) {
    switch (style) {
        case LabelStyle::update: return labels.update_name;
        case LabelStyle::report: return labels.report_name;
        case LabelStyle::column: return labels.column_name;
        case LabelStyle::summary: return labels.summary_label;
        case LabelStyle::simulation: return labels.simulation_label;
        case LabelStyle::gof: return labels.gof_label;
        case LabelStyle::sample: return labels.sample_column;
        case LabelStyle::spss: return labels.spss_name;
    }
    return labels.report_name;
}

// A label with its lambda where the effect has one: "AS(2.00)".
std::string effect_label(const char* name, bool alternating, float lambda);

}  // namespace vexa
