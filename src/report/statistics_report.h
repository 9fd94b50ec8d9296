#pragma once
// The start and end statistics report: the value of every included effect, one line per
// effect: "\n***This graph contains:****\n", then its report name (with its lambda for an
// alternating effect), a tab and the statistic: "%.0f" for counts, "%.5f" for the weighted
// and alternating statistics.

#include <cstdio>
#include <vector>

#include <string>

#include "model/model.h"
#include "model/parameter_labels.h"

namespace vexa {

// `labels` in report style, structural effects in catalogue order, `statistics` by slot.
void write_statistics_report(FILE* out, const std::vector<ParameterLabel>& labels,
                             const std::vector<double>& statistics);

// The report of a network's statistics (by slot) under the model, into `path`, truncated first.
void write_statistics_file(const std::string& path, const Model& model,
                           const std::vector<double>& statistics);

}  // namespace vexa
