#pragma once
// The labels of the parameter vector as each report prints them. Every report walks the
// included effects the same way: structural effects in catalogue order, then the attribute
// and covariate effects effect by effect in each kind's vector order, within an effect the
// included attributes in file order (named "attribute_effect"). Each entry carries the
// position of its value in the parameter and statistics vectors.

#include <cstdint>
#include <string>
#include <vector>

#include "effects/model.h"

namespace vexa {

// Which of the names a report prints.
enum class LabelStyle {
    summary,     // estimation summary and covariance rows ("D3", "%s_t3u")
    simulation,  // simulation and goodness-of-fit parameter lines ("triangle2", "%s_T3u")
    gof,         // goodness-of-fit table rows ("triangles", "%s_same_Category")
    sample,      // sample statistics columns ("triangle", "%s_sameC")
    column,      // change-statistics and log-odds columns ("tri")
    report,      // statistics report ("4Cycle")
};

struct ParameterLabel {
    std::string name;       // without lambda
    int32_t position = 0;   // index into the parameter and statistics vectors
    bool alternating = false;
    float lambda = 0.0f;
    bool integral = true;   // a count, printed with %.0f where counts are
    bool structural = true;
    int32_t row = 0;        // catalogue row of a structural effect
};

// The included effects of a graph model, labelled in the given style, in report order.
std::vector<ParameterLabel> graph_parameter_labels(const Model& model, LabelStyle style);

// "AS(2.00)" for an alternating effect, the plain name otherwise.
std::string labelled(const ParameterLabel& label);

}  // namespace vexa
