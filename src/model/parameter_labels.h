#pragma once
// The labels of the parameter vector as each file prints them, in parameter-vector order:
// the structural effects by slot, then the attribute and covariate effects effect by effect in
// each kind's vector order and, within an effect, the included attributes in file order
// (named "attribute_effect"). Each entry carries the position of its value in the parameter
// and statistics vectors.

#include <cstdint>
#include <string>
#include <vector>

#include "effects/labels.h"
#include "model/model.h"

namespace vexa {

struct ParameterLabel {
    std::string name;      // without lambda
    int32_t position = 0;  // index into the parameter and statistics vectors
    bool alternating = false;
    float lambda = 0.0f;
    bool integral = true;  // a count, printed with %.0f where counts are
    bool structural = true;
    int32_t row = 0;          // catalogue row of the effect
    const char* format = "";  // its SPSS format
};

// The included effects of a model, labelled in the given style, in parameter-vector order, or
// with the structural effects in catalogue order (the order of the statistics report).
enum class LabelOrder { parameter, catalogue };
std::vector<ParameterLabel> parameter_labels(const Model& model, LabelStyle style,
                                             LabelOrder order = LabelOrder::parameter);

// "AS(2.00)" for an alternating effect, the plain name otherwise.
std::string labelled(const ParameterLabel& label);

}  // namespace vexa
