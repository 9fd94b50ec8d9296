#include "base/matrix_text.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "base/errors.h"
#include "base/text_file.h"

namespace vexa {

std::string read_text_file(const std::string& path, const char* what) {
    FILE* file = open_file(path, "rb");
    if (file == nullptr) {
        throw InputFileError(format_message("vexa: cannot open %s file '%s'", what, path.c_str()));
    }
    std::string text;
    char buffer[1 << 16];
    size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0) text.append(buffer, got);
    const bool failed = std::ferror(file) != 0;
    std::fclose(file);
    if (failed) {
        throw InputFileError(format_message("vexa: cannot read %s file '%s'", what, path.c_str()));
    }
    return text;
}

namespace {

bool is_space(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

}  // namespace

bool parse_double(const std::string& word, double& value) {
    if (word.empty()) return false;
    char* end = nullptr;
    errno = 0;
    value = std::strtod(word.c_str(), &end);
    return end == word.c_str() + word.size() && errno != ERANGE;
}

std::vector<std::string> split_words(std::string_view text) {
    std::vector<std::string> words;
    size_t k = 0;
    while (k < text.size()) {
        while (k < text.size() && is_space(text[k])) ++k;
        const size_t start = k;
        while (k < text.size() && !is_space(text[k])) ++k;
        if (k > start) words.emplace_back(text.substr(start, k - start));
    }
    return words;
}

std::vector<std::string> read_words(const std::string& path, const char* what) {
    return split_words(read_text_file(path, what));
}

void read_matrix_file(const std::string& path, const char* what, int n,
                      const std::function<void(int, int, double)>& cell) {
    const std::string text = read_text_file(path, what);
    const long long needed = static_cast<long long>(n) * n;
    long long count = 0;
    size_t k = 0;
    std::string word;
    while (true) {
        while (k < text.size() && is_space(text[k])) ++k;
        if (k >= text.size()) break;
        const size_t start = k;
        while (k < text.size() && !is_space(text[k])) ++k;
        if (count == needed) {
            throw InputFileError(format_message(
                "vexa: %s file '%s' holds more than the %lld values of a %d x %d matrix", what,
                path.c_str(), needed, n, n));
        }
        const int row = static_cast<int>(count / n);
        const int column = static_cast<int>(count % n);
        double value = 0.0;
        word.assign(text, start, k - start);
        if (!parse_double(word, value)) {
            throw InputFileError(
                format_message("vexa: %s file '%s', row %d, column %d: '%s' is not a number", what,
                               path.c_str(), row + 1, column + 1, word.c_str()));
        }
        cell(row, column, value);
        ++count;
    }
    if (count < needed) {
        throw InputFileError(
            format_message("vexa: %s file '%s' ends in row %lld: it holds %lld values; a %d x %d "
                           "matrix needs %lld",
                           what, path.c_str(), count / n + 1, count, n, n, needed));
    }
}

}  // namespace vexa
