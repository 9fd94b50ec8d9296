#pragma once
// What a host program (the R package, a test) exchanges with a run that it starts in memory
// instead of from files: the observed network as a matrix in place of the network file, and
// back the results as the tasks computed them, so that no host has to parse a report. A run
// started from a run file has none (RunContext::embedding is null) and is unchanged by it.

#include <cstdint>
#include <vector>

#include "describe/digraph_describe.h"
#include "describe/graph_describe.h"
#include "estimation/diagnostics.h"
#include "estimation/estimation.h"
#include "network/digraph.h"
#include "network/graph.h"
#include "network/sparse_digraph.h"
#include "network/sparse_graph.h"
#include "simulation/goodness_of_fit.h"

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

struct Embedding {
    // In. The observed network, n x n row by row, read as a network file would be (a tie
    // where the value is 1; a graph takes the upper triangle). Empty: the network file.
    std::vector<double> adjacency;
    bool keep_networks = false;  // keep every sampled network of a simulation

    // Estimation: every run's record and verdict, the parameters it ended with.
    std::vector<EstimationRun> runs;
    std::vector<ConvergenceCheck> checks;
    bool converged = false;
    int32_t confirmed = -1;  // the long-chain check: -1 not run, 0 not confirmed, 1 confirmed
    std::vector<double> estimates;

    // Simulation and goodness of fit: the statistics of every kept sample, its proposal
    // number, and on request the sampled networks (n x n, row by row).
    std::vector<double> sample_numbers;
    std::vector<std::vector<double>> sample_statistics;
    std::vector<std::vector<uint8_t>> networks;
    double accepted = 0.0;

    // Goodness of fit.
    bool gof_done = false;
    std::vector<double> observed_statistics;
    std::vector<std::string> measure_names;
    SampleMeasures observed_measures;
    GofSample gof;
    Mahalanobis distance;
    NetworkProfile observed_profile;
    std::vector<NetworkProfile> sample_profiles;
};

// A store built from the embedding's matrix, tie by tie in the order a network file is read,
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
