#pragma once
// The change-statistics and log-odds files of a fitted model: for every dyad (unordered pairs
// of a graph, ordered pairs of a digraph), the change statistic of each included effect for
// adding the tie, and the tie's conditional log-odds and probability given the rest of the
// network.

#include <cmath>
#include <cstdio>
#include <vector>

#include "base/text_file.h"
#include "effects/combiner.h"
#include "model/parameter_labels.h"

namespace vexa {

// Writes both files for `store` under `parameters` (`columns` in column style). The store is
// left exactly as it was: a present tie is taken out while its changes are evaluated, and put
// back.
template <class Store>
void write_change_statistics_and_logodds(Store& store, const std::vector<Term<Store>>& terms,
                                         const std::vector<double>& parameters,
                                         const std::vector<ParameterLabel>& columns,
                                         FILE* change_out, FILE* logodds_out) {
    print(change_out, "i\tj\ttie\t");
    for (const ParameterLabel& column : columns) print(change_out, "%s\t", column.name.c_str());
    print(change_out, "\n");
    print(logodds_out, "i\tj\ttie\tlogodds\tprobability\n");

    Workspace workspace;
    prepare_workspace(workspace, terms);
    std::vector<double> changes(parameters.size(), 0.0);
    const int n = store.node_count;
    constexpr bool directed = Store::kind != NetworkKind::graph;
    for (int i = 0; i < n; ++i) {
        for (int j = directed ? 0 : i + 1; j < n; ++j) {
            if (i == j) continue;
            const bool tie = has_tie(store, i, j);
            // A present tie is evaluated as a removal: the store then counts the network without
            // it.
            if (tie) remove_tie(store, i, j);
            const double logodds = change_statistics(store, terms, workspace, parameters.data(),
                                                     changes.data(), i, j, tie ? 0 : 1);
            if (tie) add_tie(store, i, j);
            print(change_out, "%d\t%d\t%d\t", i + 1, j + 1, tie ? 1 : 0);
            for (const ParameterLabel& column : columns) {
                const double value = changes[static_cast<size_t>(column.position)];
                print(change_out, column.integral ? "%.0f\t" : "%.5f\t", value);
            }
            print(change_out, "\n");
            print(logodds_out, "%d\t%d\t%d\t%f\t%f\n", i + 1, j + 1, tie ? 1 : 0, logodds,
                  1.0 / (1.0 + std::exp(-logodds)));
        }
    }
}

}  // namespace vexa
