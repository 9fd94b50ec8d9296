#pragma once
// Pajek network files: sampled networks appended one block after another, as adjacency
// matrices in the Pajek text format, so that they can be drawn. The engine never truncates
// the file: blocks of earlier runs with the same name stay in front.
//
// The digraph block has its keywords without the asterisk and closes with one empty line where
// the graph block has two; both forms are kept as the front end knows them.

#include <cstdio>
#include <string>

#include "network/digraph.h"
#include "network/graph.h"
#include "network/sparse_digraph.h"
#include "network/sparse_graph.h"

namespace vexa {

// The matrix part of a graph block: one row per node of "%d " values (the last one followed
// by its blank too), then one empty line.
void write_pajek_matrix(FILE* out, const Graph& graph);
void write_pajek_matrix(FILE* out, const SparseGraph& graph);

// Appends one block to `path`: "*Network <label>", "*vertices <n>", "*matrix", the matrix and
// a second empty line. The file is opened three times, for the heading, the matrix and the
// closing line, and closed after each. Throws OutputFileError when it cannot be written.
void write_pajek_block(const Graph& graph, const std::string& label, const std::string& path);
void write_pajek_block(const SparseGraph& graph, const std::string& label, const std::string& path);

// Appends one digraph block: "Network <label>", "vertices <n>", "matrix", the rows (row i the
// arcs node i sends, every value followed by a blank) and one empty line. Opened three times,
// like the graph block.
void write_pajek_block(const Digraph& digraph, const std::string& label, const std::string& path);
void write_pajek_block(const SparseDigraph& digraph, const std::string& label,
                       const std::string& path);

}  // namespace vexa
