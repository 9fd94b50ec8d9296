#include "model/parameter_labels.h"

#include <algorithm>

namespace vexa {

std::vector<ParameterLabel> parameter_labels(const Model& model, LabelStyle style,
                                             LabelOrder order) {
    std::vector<ParameterLabel> labels;
    const CatalogueView& catalogue = structural_catalogue(model.kind);
    for (size_t r = 0; r < catalogue.rows.size() && r < model.structural.size(); ++r) {
        const EffectSetting& setting = model.structural[r];
        if (setting.slot == -1) continue;
        const EffectDescription& row = catalogue.rows[r];
        ParameterLabel label;
        label.name = label_text(row.labels, style);
        label.position = setting.slot;
        label.alternating = row.alternating();
        label.lambda = effective_lambda(model, r);
        label.integral = row.integral;
        label.row = static_cast<int32_t>(r);
        label.format = row.labels.spss_format;
        labels.push_back(std::move(label));
    }
    // Slots follow the run file, which may list the effects in another order than the catalogue.
    if (order == LabelOrder::parameter) {
        std::stable_sort(labels.begin(), labels.end(),
                         [](const ParameterLabel& a, const ParameterLabel& b) {
                             return a.position < b.position;
                         });
    }
    int32_t position = model.structural_included;
    for_each_included_attribute_effect(
        model, [&](AttributeKind kind, int32_t effect, int32_t attribute) {
            const AttributeSection& section = model.section(kind);
            const EffectDescription& row =
                attribute_catalogue(model.kind, kind).rows[static_cast<size_t>(effect)];
            ParameterLabel label;
            const std::string name = static_cast<size_t>(attribute) < section.names.size()
                                         ? section.names[static_cast<size_t>(attribute)]
                                         : "";
            label.name = name + "_" + label_text(row.labels, style);
            label.position = position++;
            label.integral = row.integral;
            label.structural = false;
            label.row = effect;
            label.format = row.labels.spss_format;
            labels.push_back(std::move(label));
        });
    return labels;
}

std::string labelled(const ParameterLabel& label) {
    return effect_label(label.name.c_str(), label.alternating, label.lambda);
}

}  // namespace vexa
