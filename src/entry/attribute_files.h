#pragma once
// Readers of the node attribute files and the dyadic covariate file that the run file names.
//
// Attribute file (binary, continuous or categorical; one file per kind):
//   - first line: the attributes' names, whitespace separated, one word per attribute, as many
//     as the run file's count for the kind;
//   - then one line per node, in node order (node_count lines), each holding one value per
//     attribute, in the order of the names, whitespace separated.
//   Blank lines are ignored. Binary values are 0 or 1; continuous values are any finite
//   numbers; categories are any words ("2", "Turks"), numbers equal as numbers being one
//   category. "NA" or "." marks a missing value of any kind.
//
//       gender  smoker          <- names
//       1       0               <- node 1
//       0       0               <- node 2
//
// Covariate file (one dyadic covariate):
//   - first line: the covariate's name, one word;
//   - then an n x n matrix of finite numbers, row by row, whitespace separated (the layout of
//     the lines does not matter, only the order of the n x n values); "NA" or "." counts as 0.
//
// Every failure is an InputFileError with one line naming the file and, for a bad value, its
// line, node (row) and column.

#include <cstdint>
#include <string>
#include <vector>

#include "effects/catalogue.h"

namespace vexa {

struct AttributeData {
    std::vector<std::string> names;  // one per attribute (a covariate file: one)
    std::vector<std::vector<double>>
        data;  // per attribute: node_count values (a covariate: n x n, row-major); missing: 0
    std::vector<std::vector<uint8_t>> missing;  // per attribute and node: 1 where missing
};

// Reads an attribute file of `count` attributes of `kind` (binary, continuous or categorical)
// for a network of `node_count` nodes.
AttributeData read_attribute_file(const std::string& path, AttributeKind kind, int32_t count,
                                  int32_t node_count);

// Reads a covariate file for a network of `node_count` nodes.
AttributeData read_covariate_file(const std::string& path, int32_t node_count);

}  // namespace vexa
