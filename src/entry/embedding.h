#pragma once
// What a host program (the R package, a test) exchanges with a run that it starts in memory
// instead of from files: the observed network as a matrix in place of the network file, and
// back the sampled networks as matrices and the distributions a goodness-of-fit plot shows.

#include <cstdint>
#include <vector>

#include "describe/digraph_describe.h"
#include "describe/graph_describe.h"
#include "network/digraph.h"
#include "network/graph.h"
#include "network/sparse_digraph.h"
#include "network/sparse_graph.h"

namespace vexa {

// The distributions a goodness-of-fit plot shows of one network.
struct NetworkProfile {
    std::vector<int32_t> degree;     // entry d: nodes of degree d (a digraph: out-degree)
    std::vector<int32_t> in_degree;  // a digraph: nodes of in-degree d; a graph: empty
    // Pairs at distance d for d = 1 .. n-1, pairs without a path at n, entry 0 unused (a graph
    // counts unordered pairs, a digraph ordered ones).
    std::vector<int64_t> geodesics;
    std::vector<double> triads;  // a digraph's triad census, in census order; a graph: empty
};

// A store built from a host's matrix, tie by tie in the order a network file is read,
// so that a run from memory and one from the file walk the same chain.
Graph graph_from_matrix(const std::vector<double>& adjacency, int n);
Digraph digraph_from_matrix(const std::vector<double>& adjacency, int n);
inline void from_matrix(const std::vector<double>& adjacency, int n, Graph& graph) {
    graph = graph_from_matrix(adjacency, n);
}
inline void from_matrix(const std::vector<double>& adjacency, int n, Digraph& digraph) {
    digraph = digraph_from_matrix(adjacency, n);
}
SparseGraph sparse_graph_from_matrix(const std::vector<double>& adjacency, int n);
inline void from_matrix(const std::vector<double>& adjacency, int n, SparseGraph& graph) {
    graph = sparse_graph_from_matrix(adjacency, n);
}
SparseDigraph sparse_digraph_from_matrix(const std::vector<double>& adjacency, int n);
inline void from_matrix(const std::vector<double>& adjacency, int n, SparseDigraph& digraph) {
    digraph = sparse_digraph_from_matrix(adjacency, n);
}

// The matrix of a store, 0 or 1 per pair.
std::vector<uint8_t> matrix_of(const Graph& graph);
std::vector<uint8_t> matrix_of(const Digraph& digraph);
std::vector<uint8_t> matrix_of(const SparseGraph& graph);
std::vector<uint8_t> matrix_of(const SparseDigraph& digraph);

// The profile of a network whose geodesics the scratch has just measured.
NetworkProfile profile_of(const Graph& graph, const DescribeScratch& scratch);
NetworkProfile profile_of(const Digraph& digraph, const DigraphScratch& scratch);
NetworkProfile profile_of(const SparseGraph& graph, const DescribeScratch& scratch);
NetworkProfile profile_of(const SparseDigraph& digraph, const DigraphScratch& scratch);

}  // namespace vexa
