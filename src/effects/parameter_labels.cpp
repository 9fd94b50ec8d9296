#include "effects/parameter_labels.h"

#include <cstdio>

#include "effects/attribute_catalogue.h"
#include "effects/graph_catalogue.h"

namespace vexa {

namespace {

const char* structural_name(const GraphEffectRow& row, LabelStyle style) {
    switch (style) {
        case LabelStyle::summary: return row.summary_label;
        case LabelStyle::simulation: return row.simulation_label;
        case LabelStyle::gof: return row.gof_label;
        case LabelStyle::sample: return row.sample_column;
        case LabelStyle::column: return row.column_name;
        case LabelStyle::report: return row.report_name;
    }
    return row.report_name;
}

const char* attribute_name(const AttributeEffectRow& row, LabelStyle style) {
    switch (style) {
        case LabelStyle::summary: return row.summary_label;
        case LabelStyle::simulation: return row.simulation_label;
        case LabelStyle::gof: return row.gof_label;
        case LabelStyle::sample: return row.sample_column;
        case LabelStyle::column: return row.sample_column;
        case LabelStyle::report: return row.simulation_label;
    }
    return row.simulation_label;
}

}  // namespace

std::vector<ParameterLabel> graph_parameter_labels(const Model& model, LabelStyle style) {
    std::vector<ParameterLabel> labels;
    const auto& catalogue = graph_catalogue();
    for (size_t r = 0; r < catalogue.size() && r < model.structural.size(); ++r) {
        const EffectSetting& setting = model.structural[r];
        if (setting.slot == -1) continue;
        const GraphEffectRow& row = catalogue[r];
        ParameterLabel label;
        label.name = structural_name(row, style);
        label.position = setting.slot;
        label.alternating = row.alternating();
        label.lambda = setting.lambda != 0.0f ? setting.lambda : row.lambda_default;
        label.integral = row.integral;
        label.row = static_cast<int32_t>(r);
        labels.push_back(std::move(label));
    }
    int32_t position = model.structural_included;
    for (int k = 0; k < attribute_kind_count; ++k) {
        const auto kind = static_cast<AttributeKind>(k);
        const AttributeSection& section = model.section(kind);
        const AttributeCatalogue& attributes = attribute_catalogue(model.kind, kind);
        for (const int32_t effect : attributes.vector_order) {
            if (static_cast<size_t>(effect) >= section.included.size()) continue;
            const auto& flags = section.included[static_cast<size_t>(effect)];
            for (size_t a = 0; a < flags.size(); ++a) {
                if (flags[a] != 1) continue;
                const AttributeEffectRow& row = attributes.rows[static_cast<size_t>(effect)];
                ParameterLabel label;
                const std::string attribute = a < section.names.size() ? section.names[a] : "";
                label.name = attribute + "_" + attribute_name(row, style);
                label.position = position++;
                label.integral = row.integral;
                label.structural = false;
                label.row = effect;
                labels.push_back(std::move(label));
            }
        }
    }
    return labels;
}

std::string labelled(const ParameterLabel& label) {
    if (!label.alternating) return label.name;
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "(%.2f)", static_cast<double>(label.lambda));
    return label.name + buffer;
}

}  // namespace vexa
