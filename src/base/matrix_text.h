#pragma once
// Reading square matrices of numbers from text files: network, constraint and covariate
// matrices, and covariance matrices. Values are whitespace separated, row by row.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/progress.h"

namespace vexa {

// What a reader of a tie matrix read without refusing it, for the one warning line each.
struct MatrixNotes {
    int64_t other_values = 0;  // cells holding neither 0 nor 1, read as no tie
    int first_other_row = 0, first_other_column = 0;  // the first such cell, from 1
    // Undirected networks: pairs whose two cells disagree on a tie (the upper one counts).
    int64_t asymmetric_pairs = 0;
    int first_asymmetric_row = 0, first_asymmetric_column = 0;  // its upper cell, from 1
    // Dyads whose cell says the tie was not observed ("NA" or "."), as (a << 32 | b) from 0: a
    // graph's with a < b, a digraph's ordered. In reading order, possibly repeated.
    std::vector<uint64_t> missing;
    // Ties of a node to itself (a 1 on the diagonal), which no network holds: dropped.
    int64_t loops = 0;
    int first_loop_node = 0;  // from 1
};

// Whether a cell's value marks a dyad not observed (a network reader's NaN).
inline bool missing_cell(double value) { return value != value; }

// The key a reader notes a missing dyad under.
inline uint64_t missing_key(int a, int b) {
    return uint64_t{static_cast<uint32_t>(a)} << 32 | static_cast<uint32_t>(b);
}

// Counts a cell (row a, column b, from 0) that holds neither 0 nor 1, or a tie of a node to
// itself.
inline void note_cell(MatrixNotes& notes, int a, int b, double value) {
    if (a == b && value == 1.0 && notes.loops++ == 0) notes.first_loop_node = a + 1;
    if (value == 0.0 || value == 1.0) return;
    if (notes.other_values++ == 0) {
        notes.first_other_row = a + 1;
        notes.first_other_column = b + 1;
    }
}

// Counts a pair whose upper cell (row a, column b, from 0) and lower cell disagree on a tie.
// Pairs are found at their lower cells, row by row; the first named is the first upper cell
// in reading order, where a person looking at the file starts.
inline void note_asymmetry(MatrixNotes& notes, int a, int b) {
    const bool earlier =
        notes.asymmetric_pairs == 0 || a + 1 < notes.first_asymmetric_row ||
        (a + 1 == notes.first_asymmetric_row && b + 1 < notes.first_asymmetric_column);
    ++notes.asymmetric_pairs;
    if (earlier) {
        notes.first_asymmetric_row = a + 1;
        notes.first_asymmetric_column = b + 1;
    }
}

// The warning lines of the notes ("vexa: network file 'x': 37 cells hold values other than 0
// and 1 (first at row 4, column 9); they are read as no tie"); none when nothing was noticed.
std::vector<std::string> matrix_note_lines(const MatrixNotes& notes, const char* what,
                                           const std::string& path);

// The longest word a number in a text file may be; a longer one is refused unread.
inline constexpr size_t longest_number_word = 256;

// Reads exactly n x n numbers from the file and calls cell(row, column, value) for each, in
// row order. `what` names the file in messages ("network", "constraint"). Throws
// InputFileError when the file cannot be opened, when a value is not a number (naming its
// row and column, from 1, and quoting the word cut short), or when the file holds fewer
// (naming the row where it ends) or more than n x n values. The file is read in pieces: one
// that never ends a word, or runs on far past what the matrix needs (a device such as
// /dev/zero), is refused before it fills the memory. `bytes`, when given, hears the bytes read
// of the file's size every few megabytes. With `missing_allowed`, a cell of "NA" or "." (a tie
// not observed) is passed on as NaN instead of refused.
void read_matrix_file(const std::string& path, const char* what, int n,
                      const std::function<void(int, int, double)>& cell,
                      const WorkDone* bytes = nullptr, bool missing_allowed = false);

// Whether a word marks a value not observed (a tie, an attribute): "NA", "na" or ".".
bool is_missing_word(std::string_view word);

// The whole content of a text file. Throws InputFileError naming the file (`what` says which
// file it is: "network", "attribute") when it cannot be opened or read, or when it holds more
// than `limit` bytes.
std::string read_text_file(const std::string& path, const char* what,
                           size_t limit = size_t{1} << 30);

// A word as messages quote it: cut to a few dozen characters ("..." marks the cut), with
// control characters shown as '?'.
std::string quoted_word(std::string_view word);

// The whitespace-separated words of a text ('\r' of a Windows line end counts as a blank).
std::vector<std::string> split_words(std::string_view text);

// The lines of a text, without their line ends ("\n", or "\r\n" of Windows).
std::vector<std::string> split_lines(std::string_view text);

// Splits a whole text file into whitespace-separated words.
std::vector<std::string> read_words(const std::string& path, const char* what);

// Parses a whole word as a number; false when the word is not one (trailing junk included).
bool parse_double(const std::string& word, double& value);

}  // namespace vexa
