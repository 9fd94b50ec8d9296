#pragma once
// Network files that list their ties instead of holding the n x n matrix (a matrix of 100,000
// nodes would hold 10^10 cells), in the layout network programs exchange:
//   *Vertices 5     the number of nodes, which must be the run's
//   1 "Anna"        lines naming the nodes may follow; they are skipped
//   *Arcs           ties from the first node to the second
//   1 2
//   *Edges          ties both ways
//   2 3 1           a third number is the tie's value (1, or read as no tie like a matrix cell;
//                   "NA" or ".": the tie was not observed)
//   *Missing        pairs whose tie was not observed (a digraph's ordered, a graph's either way)
//   4 5
// Nodes are numbered from 1; a line starting with '%' is a comment; a tie of a node to itself
// is skipped, as the diagonal of a matrix is.

#include <cstddef>
#include <functional>
#include <string>

#include "base/progress.h"

namespace vexa {

// Whether the file is such a list: its first word past any comments starts with '*'.
bool is_tie_list_file(const std::string& path);

// The longest line a tie list may hold; a longer one is refused (a file that never ends a
// line, or names a node at absurd length, is no tie list a person wrote).
inline constexpr size_t longest_tie_list_line = size_t{1} << 20;

// Calls tie(from, to, value, both) for every listed tie (nodes from 0); `both` says that the
// line stands under *Edges and so ties the two nodes both ways. A pair not observed comes with
// the value NaN. Throws InputFileError naming the
// file and the line for a missing or different *Vertices count, a section it does not read, a word
// that is not a node number or a value, a node beyond n, and a line longer than the longest.
// The file is read in large blocks, and the plain lines ("12 345", "12 345 1") are parsed by
// hand, so that millions of ties take about a second. `bytes`, when given, hears the bytes read
// of the file's size after each block.
void read_tie_list_file(const std::string& path, const char* what, int n,
                        const std::function<void(int, int, double, bool)>& tie,
                        const WorkDone* bytes = nullptr);

}  // namespace vexa
