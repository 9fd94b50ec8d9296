#pragma once
// The model of one run as the run file gives it: for every structural effect of the network
// kind's catalogue its starting value, its slot in the parameter vector (-1 when it is not in
// the model) and its lambda; for every attribute and covariate effect, per attribute, an
// included flag, a value and a slot; the attribute names and data.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "effects/catalogue.h"
#include "network/network_kind.h"

namespace vexa {

struct EffectSetting {
    double value = 0.0;
    int32_t slot = -1;    // index into the parameter and statistics vectors; -1: not in the model
    float lambda = 0.0f;  // decay of an alternating effect (its default once read)
};

// One attribute sub-block of the run file (or the covariate section).
struct AttributeSection {
    bool given = false;              // its flag was 1
    int32_t count = 0;               // number of attributes (covariates) of this kind
    std::string file;                // the attribute or covariate file named in the run file
    std::vector<std::string> names;  // one per attribute, from that file
    // Per attribute: n node values (a covariate: n x n, row-major), a missing value read as 0,
    // and per node whether the value is missing.
    std::vector<std::vector<double>> data;
    std::vector<std::vector<uint8_t>> missing;
    // Per effect of this kind, in run-file order, then per attribute:
    std::vector<std::vector<int32_t>> included;
    std::vector<std::vector<double>> value;
    std::vector<std::vector<int32_t>> slot;  // given in reading order, like the structural slots
    int32_t included_count = 0;
};

struct Model {
    NetworkKind kind = NetworkKind::graph;
    bool structural_given = false;          // the structural section flag was 1
    std::vector<EffectSetting> structural;  // one per catalogue row of the kind
    bool attributes_given = false;          // the attribute block flag was 1
    std::array<AttributeSection, attribute_kind_count> attributes;  // covariate included
    int32_t structural_included = 0;                                // included structural effects

    AttributeSection& section(AttributeKind which) {
        return attributes[static_cast<size_t>(which)];
    }
    const AttributeSection& section(AttributeKind which) const {
        return attributes[static_cast<size_t>(which)];
    }
    // Length of the parameter vector: every included effect of every section.
    int32_t parameter_count() const {
        int32_t count = structural_included;
        for (const AttributeSection& s : attributes) count += s.included_count;
        return count;
    }
};

// An empty model of the kind: every value 0, every slot -1, every lambda 0.
Model empty_model(NetworkKind kind);

// The lambda a structural row runs with: the run file's, or the row's default for 0.
float effective_lambda(const Model& model, size_t row);

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
