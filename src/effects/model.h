#pragma once
// The model of one run as the run file gives it: for every structural effect of the network
// kind's catalogue its starting value, its slot in the parameter vector (-1 when it is not in
// the model) and its lambda; for every attribute and covariate effect, per attribute, an
// included flag, a value and a slot; the attribute names and data.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace vexa {

enum class NetworkKind : int32_t { graph = 1, digraph = 2 };

struct EffectSetting {
    double value = 0.0;
    int32_t slot = -1;    // index into the parameter and statistics vectors; -1: not in the model
    float lambda = 0.0f;  // decay of an alternating effect (its default once read)
};

// The four kinds of attribute effects, in the order their sections appear and their
// parameters follow the structural ones.
enum class AttributeKind : int32_t { binary = 0, continuous = 1, categorical = 2, covariate = 3 };
inline constexpr int attribute_kind_count = 4;

// One attribute sub-block of the run file (or the covariate section).
struct AttributeSection {
    bool given = false;               // its flag was 1
    int32_t count = 0;                // number of attributes (covariates) of this kind
    std::string file;                 // the attribute or covariate file named in the run file
    std::vector<std::string> names;   // one per attribute, from that file
    std::vector<std::vector<double>> data;  // per attribute: n node values (a covariate: n x n)
    // Per effect of this kind, in run-file order, then per attribute:
    std::vector<std::vector<int32_t>> included;
    std::vector<std::vector<double>> value;
    std::vector<std::vector<int32_t>> slot;  // given in reading order, like the structural slots
    int32_t included_count = 0;
};

struct Model {
    NetworkKind kind = NetworkKind::graph;
    bool structural_given = false;            // the structural section flag was 1
    std::vector<EffectSetting> structural;    // one per catalogue row of the kind
    bool attributes_given = false;            // the attribute block flag was 1
    std::array<AttributeSection, attribute_kind_count> attributes;  // covariate included
    int32_t structural_included = 0;          // included structural effects
    int32_t clique_order = 0;                 // largest clique size an included effect needs

    AttributeSection& section(AttributeKind which) { return attributes[static_cast<size_t>(which)]; }
    const AttributeSection& section(AttributeKind which) const {
        return attributes[static_cast<size_t>(which)];
    }
    // Length of the parameter vector: every included effect of every section.
    int32_t parameter_count() const {
        int32_t count = structural_included;
        for (const AttributeSection& s : attributes) count += s.included_count;
        return count;
    }
    int32_t attribute_included() const { return parameter_count() - structural_included; }
};

// An empty model of the kind: every value 0, every slot -1, every lambda 0.
Model empty_model(NetworkKind kind);

}  // namespace vexa
