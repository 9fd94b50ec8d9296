#include "report/logodds.h"

#include <cmath>

namespace vexa {

void write_change_statistics_and_logodds(Graph& graph, const std::vector<Term>& terms,
                                         const std::vector<double>& parameters,
                                         const std::vector<ParameterLabel>& columns,
                                         FILE* change_out, FILE* logodds_out) {
    std::fputs("i\tj\ttie\t", change_out);
    for (const ParameterLabel& column : columns) std::fprintf(change_out, "%s\t", column.name.c_str());
    std::fputs("\n", change_out);
    std::fputs("i\tj\ttie\tlogodds\tprobability\n", logodds_out);

    std::vector<double> changes(parameters.size(), 0.0);
    const int n = graph.node_count;
    for (int i = 0; i < n; ++i) {
        for (int j = i + 1; j < n; ++j) {
            const bool tie = has_edge(graph, i, j);
            // A present tie is evaluated as a removal: the store then counts the graph without it.
            if (tie) remove_edge(graph, i, j);
            const double logodds =
                change_statistics(graph, terms, parameters.data(), changes.data(), i, j, tie ? 0 : 1);
            if (tie) add_edge(graph, i, j);
            std::fprintf(change_out, "%d\t%d\t%d\t", i + 1, j + 1, tie ? 1 : 0);
            for (const ParameterLabel& column : columns) {
                const double value = changes[static_cast<size_t>(column.position)];
                if (column.integral) {
                    std::fprintf(change_out, "%.0f\t", value);
                } else {
                    std::fprintf(change_out, "%.5f\t", value);
                }
            }
            std::fputs("\n", change_out);
            std::fprintf(logodds_out, "%d\t%d\t%d\t%f\t%f\n", i + 1, j + 1, tie ? 1 : 0, logodds,
                         1.0 / (1.0 + std::exp(-logodds)));
        }
    }
}

}  // namespace vexa
