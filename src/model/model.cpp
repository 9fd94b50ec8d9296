#include "model/model.h"

namespace vexa {

Model empty_model(NetworkKind kind) {
    Model model;
    model.kind = kind;
    model.structural.assign(structural_catalogue(kind).rows.size(), EffectSetting{});
    for (int k = 0; k < attribute_kind_count; ++k) {
        const auto which = static_cast<AttributeKind>(k);
        const size_t effects = attribute_catalogue(kind, which).rows.size();
        AttributeSection& section = model.section(which);
        section.included.assign(effects, {});
        section.value.assign(effects, {});
        section.slot.assign(effects, {});
    }
    return model;
}

float effective_lambda(const Model& model, size_t row) {
    const float lambda = model.structural[row].lambda;
    return lambda != 0.0f ? lambda : structural_catalogue(model.kind).rows[row].lambda_default;
}

}  // namespace vexa
