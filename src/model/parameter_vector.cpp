#include "model/parameter_vector.h"

namespace vexa {

std::vector<double> pack(const Model& model) {
    std::vector<double> parameters(static_cast<size_t>(model.parameter_count()), 0.0);
    for (const EffectSetting& effect : model.structural) {
        if (effect.slot != -1) parameters[static_cast<size_t>(effect.slot)] = effect.value;
    }
    size_t position = static_cast<size_t>(model.structural_included);
    for_each_included_attribute_effect(model, [&](AttributeKind kind, int32_t effect,
                                                  int32_t attribute) {
        parameters[position++] =
            model.section(kind).value[static_cast<size_t>(effect)][static_cast<size_t>(attribute)];
    });
    return parameters;
}

void unpack(Model& model, const std::vector<double>& parameters) {
    for (EffectSetting& effect : model.structural) {
        if (effect.slot != -1) effect.value = parameters[static_cast<size_t>(effect.slot)];
    }
    size_t position = static_cast<size_t>(model.structural_included);
    for_each_included_attribute_effect(
        model, [&](AttributeKind kind, int32_t effect, int32_t attribute) {
            model.section(kind).value[static_cast<size_t>(effect)][static_cast<size_t>(attribute)] =
                parameters[position++];
        });
}

}  // namespace vexa
