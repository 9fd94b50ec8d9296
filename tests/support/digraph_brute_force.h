#pragma once
// Digraph statistics recounted from a plain arc matrix by enumerating nodes, ordered pairs and
// ordered triples, written from the definitions of the configurations and nothing else: the
// independent truth that the digraph tests compare the store's totals, change statistics and
// triad census with. Alternating statistics use double-precision weights.

#include <array>
#include <cstdint>
#include <vector>

#include "effects/digraph/digraph_catalogue.h"
#include "support/brute_force.h"

namespace vexa::testing {

// A seeded random digraph: each unordered pair is tied with probability `density`; a tied
// pair is mutual with probability `reciprocity`, else one arc in a direction drawn at random.
ArcMatrix random_arc_matrix(int n, double density, double reciprocity, uint32_t seed);

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
