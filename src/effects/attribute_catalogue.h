#pragma once
// The attribute and covariate effects of each network kind: their names in every file that
// prints them, in run-file order, and the order in which they follow the structural effects
// in the parameter vector. Every reader, writer and report walks these tables.

#include <cstdint>
#include <span>

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

}  // namespace vexa
