#pragma once
// Pajek network files: sampled networks appended one block after another, as adjacency
// matrices in the Pajek text format, so that they can be drawn. The engine never truncates
// the file: blocks of earlier runs with the same name stay in front.
//
// Only the graph block is here; the digraph block (keywords without the asterisk, one closing
// empty line) belongs beside the digraph store.

#include <cstdio>
#include <string>

#include "network/graph.h"

namespace vexa {

// The matrix part of a graph block: one row per node of "%d " values (the last one followed
// by its blank too), then one empty line.
void write_pajek_matrix(FILE* out, const Graph& graph);

// Appends one block to `path`: "*Network <label>", "*vertices <n>", "*matrix", the matrix and
// a second empty line. The file is opened three times, for the heading, the matrix and the
// closing line, and closed after each. Throws OutputFileError when it cannot be written.
void write_pajek_block(const Graph& graph, const std::string& label, const std::string& path);

}  // namespace vexa
