#pragma once
// What a host program (the R package, a test) exchanges with a run that it starts in memory
// instead of from files: the observed network as a matrix in place of the network file, and
// back the sampled networks as matrices and the distributions a goodness-of-fit plot shows.

#include <cstdint>
#include <vector>

#include "describe/digraph_describe.h"
#include "describe/graph_describe.h"
#include "describe/network_profile.h"
#include "network/digraph.h"
#include "network/graph.h"
#include "network/sparse_digraph.h"
#include "network/sparse_graph.h"
#include "simulation/measures.h"

namespace vexa {

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

// The profile of a network, measured afresh and trimmed.
template <class Store>
NetworkProfile measured_profile(const Store& network) {
    ScratchOf<Store> scratch;
    measure(network, scratch);
    return trimmed(profile_of(network, scratch));
}

}  // namespace vexa
