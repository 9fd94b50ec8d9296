#pragma once
// Reading square matrices of numbers from text files: network, constraint and covariate
// matrices, and covariance matrices. Values are whitespace separated, row by row.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vexa {

// Reads exactly n x n numbers from the file and calls cell(row, column, value) for each, in
// row order. `what` names the file in messages ("network", "constraint"). Throws
// InputFileError when the file cannot be opened, when a value is not a number (naming its
// row and column, from 1), or when the file holds fewer (naming the row where it ends) or more
// than n x n values.
void read_matrix_file(const std::string& path, const char* what, int n,
                      const std::function<void(int, int, double)>& cell);

// The whole content of a text file. Throws InputFileError naming the file (`what` says which
// file it is: "network", "attribute") when it cannot be opened or read.
std::string read_text_file(const std::string& path, const char* what);

// The whitespace-separated words of a text ('\r' of a Windows line end counts as a blank).
std::vector<std::string> split_words(std::string_view text);

// Splits a whole text file into whitespace-separated words.
std::vector<std::string> read_words(const std::string& path, const char* what);

// Parses a whole word as a number; false when the word is not one (trailing junk included).
bool parse_double(const std::string& word, double& value);

}  // namespace vexa
