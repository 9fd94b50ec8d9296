#pragma once
// Digraph statistics recounted from a plain arc matrix by enumerating nodes, ordered pairs and
// ordered triples, written from the definitions of the configurations and nothing else: the
// independent truth that the digraph tests compare the store's totals, change statistics and
// triad census with. Alternating statistics use double-precision weights.

#include <array>
#include <cstdint>
#include <vector>

#include "effects/digraph/digraph_catalogue.h"
#include "network/digraph.h"

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

// A seeded random digraph: each unordered pair is tied with probability `density`; a tied
// pair is mutual with probability `reciprocity`, else one arc in a direction drawn at random.
ArcMatrix random_arc_matrix(int n, double density, double reciprocity, uint32_t seed);
// A store holding the matrix's arcs, added row by row.
Digraph digraph_from(const ArcMatrix& matrix);
// Every field of two stores but the neighbour lists, whose order is free (check_bookkeeping
// compares them with the adjacency as sets).
bool same_store(const Digraph& a, const Digraph& b);

// Every configuration count of one digraph.
struct DigraphCounts {
    ArcMatrix arcs;
    std::vector<int> in, out;
    std::vector<int> paths, senders, receivers;  // n x n: a->x->b, x->a and x->b, a->x and b->x
    int64_t arc = 0, mutual = 0, mixed2 = 0, sink = 0, source = 0, isolates = 0;
    std::array<int64_t, 5> in_stars{}, out_stars{};  // entry k: k-stars, k = 2..4
    std::array<int64_t, 11> t{};                     // entry k: configuration Tk, k = 1..10
};

DigraphCounts digraph_counts(const ArcMatrix& matrix);
// The statistic of a catalogue row; lambda is read by the alternating rows only.
double digraph_value(const DigraphCounts& counts, DigraphEffect effect, double lambda);

// The 16 triad classes in census order (300, 210, 120C, ..., 003), every unordered triple
// classified by comparing its arcs with the classes' patterns under all six labellings.
std::array<int64_t, 16> triad_census_by_triples(const ArcMatrix& matrix);

}  // namespace vexa::testing
