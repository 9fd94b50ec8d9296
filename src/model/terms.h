#pragma once
// The terms of a run: its included effects, ready for the combiner, for one store type. The
// structural effects come in catalogue order, then the attribute and covariate effects in
// parameter-vector order, each fed its attribute's values.

#include <cstddef>
#include <vector>

#include "base/errors.h"
#include "effects/catalogue.h"
#include "effects/term.h"
#include "model/model.h"
#include "model/parameter_labels.h"

namespace vexa {

// A row without functions is one this version cannot evaluate.
template <class Store>
void check_available(const EffectRow<Store>& row) {
    if (row.change == nullptr || row.total == nullptr) {
        throw SettingError(format_message("vexa: the effect '%s' is not available in this version",
                                          row.about.labels.report_name));
    }
}

// Throws SettingError when the model is of another network kind than the store, or includes
// an effect whose functions this version does not have.
template <class Store>
std::vector<Term<Store>> make_terms(const Model& model) {
    if (model.kind != Store::kind) {
        throw SettingError("vexa: the model was built for the other kind of network");
    }
    std::vector<Term<Store>> terms;
    const std::span<const EffectRow<Store>> rows = structural_rows<Store>();
    for (size_t k = 0; k < rows.size() && k < model.structural.size(); ++k) {
        const EffectSetting& setting = model.structural[k];
        if (setting.slot == -1) continue;
        check_available(rows[k]);
        terms.push_back(term_of(rows[k], k, setting.slot, effective_lambda(model, k)));
    }
    int32_t position = model.structural_included;
    for_each_included_attribute_effect(
        model, [&](AttributeKind kind, int32_t effect, int32_t attribute) {
            const EffectRow<Store>& row = attribute_rows<Store>(kind)[static_cast<size_t>(effect)];
            check_available(row);
            Term<Store> term = term_of(row, static_cast<size_t>(effect), position++, 0.0f);
            const AttributeSection& section = model.section(kind);
            const auto a = static_cast<size_t>(attribute);
            if (a < section.data.size()) term.values = section.data[a].data();
            if (a < section.missing.size()) term.missing = section.missing[a].data();
            terms.push_back(term);
        });
    return terms;
}

}  // namespace vexa
