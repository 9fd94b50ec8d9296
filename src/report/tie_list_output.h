#pragma once
// Networks written as tie lists, the form the network readers take back: "*Vertices n", then
// "*Edges" (a graph: each edge once, its lower node first) or "*Arcs" (a digraph), one tie a
// line, nodes numbered from 1, in order of the first node, then of the second. The same network
// gives the same bytes whichever store holds it. A network of millions of ties is written in a
// second or so: lines are formatted by hand into a large buffer, written a megabyte at a time.

#include <cstdio>
#include <string>

#include "network/digraph.h"
#include "network/graph.h"
#include "network/sparse_digraph.h"
#include "network/sparse_graph.h"

namespace vexa {

void write_tie_list(FILE* out, const Graph& graph);
void write_tie_list(FILE* out, const SparseGraph& graph);
void write_tie_list(FILE* out, const Digraph& digraph);
void write_tie_list(FILE* out, const SparseDigraph& digraph);

// The same into `path`, truncated first. Throws OutputFileError when it cannot be written.
void write_tie_list_file(const std::string& path, const Graph& graph);
void write_tie_list_file(const std::string& path, const SparseGraph& graph);
void write_tie_list_file(const std::string& path, const Digraph& digraph);
void write_tie_list_file(const std::string& path, const SparseDigraph& digraph);

}  // namespace vexa
