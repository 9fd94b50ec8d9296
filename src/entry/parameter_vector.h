#pragma once
// The parameter vector: one double per included effect. Structural effects come first, at
// their slots; then the binary, continuous, categorical and covariate effects, effect by
// effect in each kind's vector order and, within an effect, the included attributes in file
// order. Pack and unpack walk the same order, so unpack(pack(x)) changes nothing.

#include <vector>

#include "effects/model.h"

namespace vexa {

// Calls fn(kind, effect, attribute) for every included attribute effect, in vector order.
template <typename Fn>
void for_each_included_attribute_effect(const Model& model, Fn&& fn);

std::vector<double> pack(const Model& model);
void unpack(Model& model, const std::vector<double>& parameters);

}  // namespace vexa

#include "effects/attribute_catalogue.h"

namespace vexa {

template <typename Fn>
void for_each_included_attribute_effect(const Model& model, Fn&& fn) {
    for (int k = 0; k < attribute_kind_count; ++k) {
        const auto kind = static_cast<AttributeKind>(k);
        const AttributeSection& section = model.section(kind);
        for (const int32_t effect : attribute_catalogue(model.kind, kind).vector_order) {
            if (static_cast<size_t>(effect) >= section.included.size()) continue;
            const std::vector<int32_t>& flags = section.included[static_cast<size_t>(effect)];
            for (size_t a = 0; a < flags.size(); ++a) {
                if (flags[a] == 1) fn(kind, effect, static_cast<int32_t>(a));
            }
        }
    }
}

}  // namespace vexa
