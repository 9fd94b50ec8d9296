#pragma once
// Network matrix files: a network written as n rows of n "%d" values (1 for a tie, row i
// holding the arcs a digraph's node i sends), the form the network readers take back, used for
// the networks a simulation keeps.

#include <cstdio>
#include <string>

#include "network/digraph.h"
#include "network/graph.h"
#include "network/sparse_digraph.h"
#include "network/sparse_graph.h"

namespace vexa {

// The n adjacency rows, each value a single digit followed by one blank; the last value of a
// row is followed by "\n" instead of the blank unless `trailing_blank` is set, in which case
// it gets both. Writes a whole row at a time from the bit rows.
void write_adjacency_rows(FILE* out, const Graph& graph, bool trailing_blank);
void write_adjacency_rows(FILE* out, const SparseGraph& graph, bool trailing_blank);
void write_adjacency_rows(FILE* out, const Digraph& digraph, bool trailing_blank);
void write_adjacency_rows(FILE* out, const SparseDigraph& digraph, bool trailing_blank);

// The matrix file of a graph: rows of values separated by one blank, "\n" after each row.
void write_network_matrix(FILE* out, const Graph& graph);
void write_network_matrix(FILE* out, const SparseGraph& graph);
void write_network_matrix(FILE* out, const Digraph& digraph);
void write_network_matrix(FILE* out, const SparseDigraph& digraph);
// The same into `path`, truncated first. Throws OutputFileError when it cannot be written.
void write_network_file(const std::string& path, const Graph& graph);
void write_network_file(const std::string& path, const SparseGraph& graph);
void write_network_file(const std::string& path, const Digraph& digraph);
void write_network_file(const std::string& path, const SparseDigraph& digraph);

// The file of the sample taken at proposal `sample`: the prefix, the number with "%.0f" and
// ".txt".
std::string sample_network_path(const std::string& prefix, double sample);

}  // namespace vexa
