#include "base/matrix_text.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "base/errors.h"
#include "base/text_file.h"

namespace vexa {

std::string read_text_file(const std::string& path, const char* what, size_t limit) {
    FILE* file = open_file(path, "rb");
    if (file == nullptr) {
        throw InputFileError(format_message("vexa: cannot open %s file '%s'", what, path.c_str()));
    }
    std::string text;
    char buffer[1 << 16];
    size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
        if (text.size() + got > limit) {
            std::fclose(file);
            throw InputFileError(format_message(
                "vexa: %s file '%s' is larger than %zu bytes, more than such a file can need", what,
                path.c_str(), limit));
        }
        text.append(buffer, got);
    }
    const bool failed = std::ferror(file) != 0;
    std::fclose(file);
    if (failed) {
        throw InputFileError(format_message("vexa: cannot read %s file '%s'", what, path.c_str()));
    }
    return text;
}

std::string quoted_word(std::string_view word) {
    constexpr size_t shown = 40;
    std::string out;
    for (size_t k = 0; k < word.size() && k < shown; ++k) {
        const auto c = static_cast<unsigned char>(word[k]);
        out += c < 0x20 || c == 0x7f ? '?' : static_cast<char>(c);
    }
    if (word.size() > shown) out += "...";
    return out;
}

std::vector<std::string> matrix_note_lines(const MatrixNotes& notes, const char* what,
                                           const std::string& path) {
    std::vector<std::string> lines;
    if (notes.other_values == 1) {
        lines.push_back(format_message(
            "vexa: %s file '%s': 1 cell holds a value other than 0 and 1 (at row %d, column %d); "
            "it is read as no tie",
            what, path.c_str(), notes.first_other_row, notes.first_other_column));
    } else if (notes.other_values > 1) {
        lines.push_back(format_message(
            "vexa: %s file '%s': %lld cells hold values other than 0 and 1 (first at row %d, "
            "column %d); they are read as no tie",
            what, path.c_str(), static_cast<long long>(notes.other_values), notes.first_other_row,
            notes.first_other_column));
    }
    if (notes.loops > 0) {
        lines.push_back(format_message(
            "vexa: %s file '%s': %lld %s of a node to itself (first of node %d, a 1 on the "
            "diagonal) %s dropped; a network has no loops",
            what, path.c_str(), static_cast<long long>(notes.loops),
            notes.loops == 1 ? "tie" : "ties", notes.first_loop_node,
            notes.loops == 1 ? "is" : "are"));
    }
    if (notes.asymmetric_pairs > 0) {
        lines.push_back(format_message(
            "vexa: %s file '%s': the matrix is not symmetric (%lld %s, first at row %d, column "
            "%d); only its upper triangle is used",
            what, path.c_str(), static_cast<long long>(notes.asymmetric_pairs),
            notes.asymmetric_pairs == 1 ? "pair differs" : "pairs differ",
            notes.first_asymmetric_row, notes.first_asymmetric_column));
    }
    return lines;
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

std::vector<std::string> split_lines(std::string_view text) {
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        std::string line(text.substr(start, end - start));
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(std::move(line));
        start = end + 1;
    }
    return lines;
}

std::vector<std::string> read_words(const std::string& path, const char* what) {
    return split_words(read_text_file(path, what));
}

bool is_missing_word(std::string_view word) { return word == "NA" || word == "na" || word == "."; }

void read_matrix_file(const std::string& path, const char* what, int n,
                      const std::function<void(int, int, double)>& cell, const WorkDone* bytes,
                      bool missing_allowed) {
    const ReadingFile opened(path, what);
    FILE* file = opened.file;

    const long long needed = static_cast<long long>(n) * n;
    // Generous room for blanks and long spellings of numbers; only a file that runs on
    // without end, or nearly so, passes it.
    const double byte_limit = 64.0 * 1048576.0 + 64.0 * static_cast<double>(needed);
    double read = 0.0;
    long long count = 0;
    std::string word;
    const auto finish_word = [&]() {
        if (count == needed) {
            throw InputFileError(format_message(
                "vexa: %s file '%s' holds more than the %lld values of a %d x %d matrix", what,
                path.c_str(), needed, n, n));
        }
        const int row = static_cast<int>(count / n);
        const int column = static_cast<int>(count % n);
        double value = 0.0;
        if (missing_allowed && is_missing_word(word)) {
            value = std::numeric_limits<double>::quiet_NaN();
        } else if (!parse_double(word, value)) {
            throw InputFileError(
                format_message("vexa: %s file '%s', row %d, column %d: '%s' is not a number", what,
                               path.c_str(), row + 1, column + 1, quoted_word(word).c_str()));
        }
        cell(row, column, value);
        ++count;
        word.clear();
    };

    const double size = bytes != nullptr && *bytes ? file_size(file) : -1.0;
    char buffer[1 << 16];
    size_t got = 0;
    uint32_t blocks = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
        read += static_cast<double>(got);
        if (read > byte_limit) {
            throw InputFileError(format_message(
                "vexa: %s file '%s' runs on far past the %lld values of a %d x %d matrix "
                "(more than %.0f bytes)",
                what, path.c_str(), needed, n, n, byte_limit));
        }
        for (size_t k = 0; k < got; ++k) {
            const char c = buffer[k];
            if (is_space(c)) {
                if (!word.empty()) finish_word();
                continue;
            }
            if (word.size() >= longest_number_word) {
                throw InputFileError(format_message(
                    "vexa: %s file '%s', row %lld, column %lld: '%s' is not a number (a word of "
                    "more than %zu characters)",
                    what, path.c_str(), count / n + 1, count % n + 1, quoted_word(word).c_str(),
                    longest_number_word));
            }
            word += c;
        }
        // Every 64 blocks: 4 MB.
        if (size >= 0.0 && (++blocks & 63u) == 0) (*bytes)(read, size);
    }
    if (std::ferror(file) != 0) {
        throw InputFileError(format_message("vexa: cannot read %s file '%s'", what, path.c_str()));
    }
    if (!word.empty()) finish_word();
    if (count < needed) {
        throw InputFileError(
            format_message("vexa: %s file '%s' ends in row %lld: it holds %lld values; a %d x %d "
                           "matrix needs %lld",
                           what, path.c_str(), count / n + 1, count, n, n, needed));
    }
}

}  // namespace vexa
