#pragma once
// The attribute and covariate effects of each network kind: their names in every file that
// prints them, in run-file order, and the order in which they follow the structural effects
// in the parameter vector. Every reader, writer and report walks these tables.

#include <cstdint>
#include <span>
#include <vector>

#include "effects/model.h"

namespace vexa {

struct AttributeEffectRow {
    const char* update_name;       // update files and run-file order ("activity", "O2b")
    const char* summary_label;     // estimation summary ("t3u", "matching")
    const char* simulation_label;  // simulation and goodness-of-fit parameter lines ("T3u")
    const char* gof_label;         // goodness-of-fit table ("t3u", "same_Category")
    const char* sample_column;     // sample statistics columns ("o2bu", "sameC")
    const char* spss_name;         // SPSS variable ("sameEC")
    const char* spss_format;       // "F8.0" or "F8.4"
    bool integral;                 // a count, printed with %.0f
};

struct AttributeCatalogue {
    std::span<const AttributeEffectRow> rows;   // run-file order
    std::span<const int32_t> vector_order;      // indices into rows, in parameter-vector order
};

const AttributeCatalogue& attribute_catalogue(NetworkKind network, AttributeKind kind);

// Number of effects per attribute of the kind (graph binary: 14).
inline int32_t attribute_effect_count(NetworkKind network, AttributeKind kind) {
    return static_cast<int32_t>(attribute_catalogue(network, kind).rows.size());
}

// Calls fn(kind, effect, attribute) for every included attribute effect in parameter-vector
// order: kinds in order, each kind's effects in its vector order, attributes in file order.
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
