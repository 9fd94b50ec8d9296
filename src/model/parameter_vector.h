#pragma once
// The parameter vector: one double per included effect. Structural effects come first, at
// their slots; then the binary, continuous, categorical and covariate effects, effect by
// effect in each kind's vector order and, within an effect, the included attributes in file
// order. Pack and unpack walk the same order, so unpack(pack(x)) changes nothing.

#include <vector>

#include "model/model.h"

namespace vexa {

std::vector<double> pack(const Model& model);
void unpack(Model& model, const std::vector<double>& parameters);

}  // namespace vexa
