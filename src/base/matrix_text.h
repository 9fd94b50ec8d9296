#pragma once
// Reading square matrices of numbers from text files: network, constraint and covariate
// matrices, and covariance matrices. Values are whitespace separated, row by row.

#include <functional>
#include <string>
#include <vector>

namespace vexa {

// Reads exactly n x n numbers from the file and calls cell(row, column, value) for each, in
// row order. `what` names the file in messages ("network", "constraint"). Throws
// InputFileError when the file cannot be opened, when a value is not a number (naming its
// row and column, from 1), or when the file holds fewer or more than n x n values.
void read_matrix_file(const std::string& path, const char* what, int n,
                      const std::function<void(int, int, double)>& cell);

// Splits a whole text file into whitespace-separated words. Throws InputFileError when the
// file cannot be read.
std::vector<std::string> read_words(const std::string& path, const char* what);

// Parses a whole word as a number; false when the word is not one (trailing junk included).
bool parse_double(const std::string& word, double& value);

}  // namespace vexa
