#pragma once
// The start and end statistics report: the value of every included structural effect of a
// graph model, one line per effect in catalogue order.

#include <cstdio>
#include <vector>

#include "effects/graph_catalogue.h"
#include "network/graph.h"

namespace vexa {

// Writes "\n***This graph contains:****\n" and then, for every term, its report name (with
// its lambda for an alternating effect), a tab and graph.statistics at its slot: "%.0f" for
// counts, "%.5f" for the weighted and alternating statistics.
void write_graph_statistics(FILE* out, const Graph& graph, const std::vector<Term>& terms);

}  // namespace vexa
