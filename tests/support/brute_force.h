#pragma once
// Graph statistics recounted from a plain adjacency matrix by enumerating pairs, triples,
// quadruples and cliques, written from the definitions of the configurations and nothing
// else: the independent truth that the effect tests compare the store's totals and change
// statistics with. Alternating statistics use double-precision weights.

#include <array>
#include <cstdint>
#include <vector>

#include "effects/graph/graph_catalogue.h"
#include "network/graph.h"

namespace vexa::testing {

struct AdjacencyMatrix {
    int n = 0;
    std::vector<char> cells;  // n x n, symmetric, zero diagonal

    explicit AdjacencyMatrix(int nodes = 0)
        : n(nodes), cells(static_cast<size_t>(nodes) * static_cast<size_t>(nodes), 0) {}
    bool operator()(int a, int b) const { return cells[index(a, b)] != 0; }
    void set(int a, int b, bool tie) {
        cells[index(a, b)] = tie ? 1 : 0;
        cells[index(b, a)] = tie ? 1 : 0;
    }
    size_t index(int a, int b) const {
        return static_cast<size_t>(a) * static_cast<size_t>(n) + static_cast<size_t>(b);
    }
};

// The adjacency of a store, read bit by bit (nothing of its bookkeeping).
AdjacencyMatrix adjacency_of(const Graph& graph);
// A seeded random graph: every pair tied with probability `density`.
AdjacencyMatrix random_matrix(int n, double density, uint32_t seed);
// A store holding the matrix's edges, built by adding them one by one.
Graph graph_from(const AdjacencyMatrix& matrix);

// Every configuration count of one graph, counted once.
struct BruteCounts {
    int n = 0;
    AdjacencyMatrix ties;
    std::vector<int> degree;
    std::vector<int> partners;      // n x n common-neighbour counts, found by scanning third nodes
    std::vector<int> triangles_at;  // triangles containing each node
    std::array<int64_t, 9> cliques{};  // entry k: k-cliques, k = 1..8
    int64_t edges = 0, triangles = 0, isolates = 0;
    int64_t triangle2 = 0, bow_tie = 0, p3 = 0, path3 = 0, cycle4 = 0;
    int64_t q10 = 0, q20 = 0, q30 = 0, q31 = 0;
    int64_t et1 = 0, et2 = 0, et0 = 0, etnt = 0;
    std::array<int64_t, 6> stars{};  // entry k: k-stars, k = 2..5
};

BruteCounts brute_force_counts(const AdjacencyMatrix& matrix);
// The statistic of a catalogue row; lambda is read by the alternating rows only.
double brute_force_value(const BruteCounts& counts, GraphEffect effect, double lambda);

}  // namespace vexa::testing
