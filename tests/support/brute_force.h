#pragma once
// Graph statistics recounted from a plain adjacency matrix by enumerating pairs, triples,
// quadruples and cliques, written from the definitions of the configurations and nothing
// else: the independent truth that the effect tests compare the store's totals and change
// statistics with. Alternating statistics use double-precision weights.

#include <array>
#include <cstdint>
#include <vector>

#include "effects/graph/graph_catalogue.h"

namespace vexa::testing {

struct ArcMatrix {
    int n = 0;
    std::vector<char> cells;  // n x n, row = sender, zero diagonal

    explicit ArcMatrix(int nodes = 0)
        : n(nodes), cells(static_cast<size_t>(nodes) * static_cast<size_t>(nodes), 0) {}
    bool operator()(int a, int b) const { return cells[index(a, b)] != 0; }
    void set(int a, int b, bool arc) { cells[index(a, b)] = arc ? 1 : 0; }
    size_t index(int a, int b) const {
        return static_cast<size_t>(a) * static_cast<size_t>(n) + static_cast<size_t>(b);
    }
};

// A graph's matrix: symmetric, each tie set in both cells.
struct AdjacencyMatrix : ArcMatrix {
    using ArcMatrix::ArcMatrix;
    void set(int a, int b, bool tie) { ArcMatrix::set(a, b, tie), ArcMatrix::set(b, a, tie); }
};

// A seeded random graph: every pair tied with probability `density`.
AdjacencyMatrix random_matrix(int n, double density, uint32_t seed);
// (1 - 1/lambda)^m in double precision, read at 100 beyond 100; 0 below 0 and 1 at 0.
double decay(double lambda, int m);
// C(d, k) by counting: the number of k-subsets of d things.
int64_t subsets(int64_t d, int k);
// lambda sum (1 - decay(L)) over the values L: 0 below lambda 1, as every alternating statistic.
double geometric(const std::vector<int>& values, double lambda);
// lambda^2 sum over the degrees d of (decay(d) - 1 + d / lambda); 0 below lambda 1.
double alternating_star(const std::vector<int>& degrees, double lambda);

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
