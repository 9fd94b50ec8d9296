#pragma once
// The change-statistics and log-odds files of a fitted model: for every unordered pair of
// nodes, the change statistic of each included effect for adding the tie, and the tie's
// conditional log-odds and probability given the rest of the network.

#include <cstdio>
#include <string>
#include <vector>

#include "effects/graph_catalogue.h"
#include "effects/parameter_labels.h"
#include "network/graph.h"

namespace vexa {

// Writes both files for `graph` under `parameters`. The graph is left exactly as it was (a
// present tie is taken out while its changes are evaluated, and put back).
void write_change_statistics_and_logodds(Graph& graph, const std::vector<Term>& terms,
                                         const std::vector<double>& parameters,
                                         const std::vector<ParameterLabel>& columns,
                                         FILE* change_out, FILE* logodds_out);

}  // namespace vexa
