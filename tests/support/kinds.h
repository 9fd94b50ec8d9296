#pragma once
// What the suites that run over every network kind need of a kind: random networks as plain
// adjacency matrices, a store built from one, the brute-force value of any catalogue row, the
// dyads a toggle may change and a relabelling of the nodes. One specialisation per store type.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "effects/combiner.h"
#include "effects/graph/graph_catalogue.h"
#include "model/model.h"
#include "model/terms.h"
#include "network/digraph.h"
#include "network/graph.h"
#include "network/sparse_digraph.h"
#include "network/sparse_graph.h"
#include "support/brute_force.h"
#include "support/digraph_brute_force.h"

namespace vexa::testing {

template <class Store>
struct KindFixture;

template <>
struct KindFixture<Graph> {
    using Matrix = AdjacencyMatrix;
    using Counts = BruteCounts;

    // Seeded random graphs of several densities (fewer dense ones at 30 nodes, which would hold
    // too many cliques for the recount), each with a name for failure messages.
    static std::vector<std::pair<Matrix, std::string>> networks(int n) {
        std::vector<double> densities{0.1, 0.3, 0.6, 0.9};
        if (n <= 2) densities = {0.0, 1.0};
        if (n >= 30) densities = {0.1, 0.3, 0.6};
        std::vector<std::pair<Matrix, std::string>> out;
        for (const double density : densities) {
            for (const uint32_t seed : {11u, 29u}) {
                out.emplace_back(random_matrix(n, density, seed + static_cast<uint32_t>(n)),
                                 "n " + std::to_string(n) + ", density " + std::to_string(density) +
                                     ", seed " + std::to_string(seed));
            }
        }
        return out;
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

// The sparse store over the same networks and recounts.
template <>
struct KindFixture<SparseGraph> : KindFixture<Graph> {
    static SparseGraph build(const Matrix& matrix) {
        SparseGraph g = create_sparse_graph(matrix.n);
        for (int a = 0; a < matrix.n; ++a) {
            for (int b = a + 1; b < matrix.n; ++b) {
                if (matrix(a, b)) {
                    add_edge(g, a, b);
                    update_shared_partners(g, a, b, 1);
                }
            }
        }
        return g;
    }
    static Matrix adjacency(const SparseGraph& graph) {
        Matrix m(graph.node_count);
        for (int a = 0; a < m.n; ++a) {
            for (const int32_t b : graph.neighbours_of(a)) m.set(a, b, true);
        }
        return m;
    }
};

template <>
struct KindFixture<Digraph> {
    using Matrix = ArcMatrix;
    using Counts = DigraphCounts;

    // Seeded random digraphs from empty to complete, with no mutual dyads to all mutual.
    static std::vector<std::pair<Matrix, std::string>> networks(int n) {
        std::vector<std::pair<double, double>> kinds{
            {0.1, 0.0}, {0.3, 0.5}, {0.3, 1.0}, {0.6, 0.2}, {0.9, 0.8}};
        if (n <= 3) kinds = {{0.0, 0.0}, {0.5, 0.5}, {1.0, 0.0}, {1.0, 1.0}};
        std::vector<std::pair<Matrix, std::string>> out;
        for (const auto& [density, reciprocity] : kinds) {
            const auto seed = static_cast<uint32_t>(n * 131 + static_cast<int>(density * 100) * 7 +
                                                    static_cast<int>(reciprocity * 10));
            out.emplace_back(random_arc_matrix(n, density, reciprocity, seed),
                             "n " + std::to_string(n) + ", density " + std::to_string(density) +
                                 ", reciprocity " + std::to_string(reciprocity));
        }
        return out;
    }
    static Digraph build(const Matrix& matrix) { return digraph_from(matrix); }
    static Matrix adjacency(const Digraph& digraph) {
        Matrix m(digraph.node_count);
        for (int a = 0; a < m.n; ++a) {
            for (int b = 0; b < m.n; ++b) m.set(a, b, digraph.has_arc(a, b));
        }
        return m;
    }
    static Counts count(const Matrix& matrix) { return digraph_counts(matrix); }
    static double value(const Counts& counts, int row, double lambda) {
        return digraph_value(counts, static_cast<DigraphEffect>(row), lambda);
    }
    // Ordered pairs i != j.
    static bool directed() { return true; }
    static bool tied(const Matrix& matrix, int i, int j) { return matrix(i, j); }
    static Matrix relabel(const Matrix& matrix, const std::vector<int>& to) {
        return relabelled(matrix, to);
    }
};

// The sparse digraph store over the same networks and recounts, built arc by arc in the order
// the dense one is.
template <>
struct KindFixture<SparseDigraph> : KindFixture<Digraph> {
    static SparseDigraph build(const Matrix& matrix) {
        SparseDigraph d = create_sparse_digraph(matrix.n);
        for (int a = 0; a < matrix.n; ++a) {
            for (int b = 0; b < matrix.n; ++b) {
                if (a != b && matrix(a, b)) {
                    add_arc(d, a, b);
                    update_two_paths(d, a, b, 1);
                }
            }
        }
        return d;
    }
    static Matrix adjacency(const SparseDigraph& digraph) {
        Matrix m(digraph.node_count);
        for (int a = 0; a < m.n; ++a) {
            for (const int32_t b : digraph.out_neighbours(a)) m.set(a, b, true);
        }
        return m;
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
