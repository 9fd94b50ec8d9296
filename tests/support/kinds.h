#pragma once
// What the suites that run over every network kind need of a kind: random networks as plain
// adjacency matrices, a store built from one, the brute-force value of any catalogue row, the
// dyads a toggle may change and a relabelling of the nodes. One specialisation per store type.

#include <cstdint>
#include <string>
#include <vector>

#include "effects/combiner.h"
#include "effects/graph/graph_catalogue.h"
#include "model/model.h"
#include "model/terms.h"
#include "network/graph.h"
#include "support/brute_force.h"

namespace vexa::testing {

template <class Store>
struct KindFixture;

template <>
struct KindFixture<Graph> {
    using Matrix = AdjacencyMatrix;
    using Counts = BruteCounts;

    static Matrix random(int n, double density, uint32_t seed) {
        return random_matrix(n, density, seed);
    }
    static Graph build(const Matrix& matrix) { return graph_from(matrix); }
    static Matrix adjacency(const Graph& graph) { return adjacency_of(graph); }
    static Counts count(const Matrix& matrix) { return brute_force_counts(matrix); }
    static double value(const Counts& counts, int row, double lambda) {
        return brute_force_value(counts, static_cast<GraphEffect>(row), lambda);
    }
    // Unordered pairs i < j.
    static bool directed() { return false; }
    static bool tied(const Matrix& matrix, int i, int j) { return matrix(i, j); }
    static Matrix relabel(const Matrix& matrix, const std::vector<int>& to) {
        Matrix out(matrix.n);
        for (int a = 0; a < matrix.n; ++a) {
            for (int b = a + 1; b < matrix.n; ++b) {
                if (matrix(a, b))
                    out.set(to[static_cast<size_t>(a)], to[static_cast<size_t>(b)], true);
            }
        }
        return out;
    }
};

// A model of the kind including only `row` (at slot 0) with the given lambda.
inline Model single_effect_model(NetworkKind kind, int row, float lambda) {
    Model model = empty_model(kind);
    model.structural[static_cast<size_t>(row)].slot = 0;
    model.structural[static_cast<size_t>(row)].lambda = lambda;
    model.structural_included = 1;
    return model;
}

// A model including the listed rows, slots in the order given, lambdas as the rows' defaults.
inline Model model_of(NetworkKind kind, const std::vector<int>& rows) {
    Model model = empty_model(kind);
    for (const int row : rows) {
        model.structural[static_cast<size_t>(row)].slot = model.structural_included++;
        model.structural[static_cast<size_t>(row)].lambda =
            structural_catalogue(kind).rows[static_cast<size_t>(row)].lambda_default;
    }
    return model;
}

// The totals of every term of a store, by slot.
template <class Store>
std::vector<double> totals_of(const Store& store, const std::vector<Term<Store>>& terms,
                              size_t count) {
    std::vector<double> statistics(count, 0.0);
    Workspace workspace;
    prepare_workspace(workspace, terms);
    compute_totals(store, terms, workspace, statistics);
    return statistics;
}

}  // namespace vexa::testing
