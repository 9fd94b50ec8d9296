#include "entry/attribute_files.h"

#include <cmath>
#include <cstdio>
#include <string_view>

#include "base/errors.h"
#include "base/matrix_text.h"

namespace vexa {

namespace {

const char* kind_words(AttributeKind kind) {
    switch (kind) {
        case AttributeKind::binary: return "binary attribute";
        case AttributeKind::continuous: return "continuous attribute";
        case AttributeKind::categorical: return "categorical attribute";
        case AttributeKind::covariate: return "covariate";
    }
    return "attribute";
}

// Walks a text line by line, counting lines from 1.
struct Lines {
    std::string_view text;
    size_t at = 0;
    int32_t number = 0;

    bool next(std::string_view& line) {
        if (at >= text.size()) return false;
        const size_t end = text.find('\n', at);
        const size_t stop = end == std::string_view::npos ? text.size() : end;
        line = text.substr(at, stop - at);
        at = end == std::string_view::npos ? text.size() : end + 1;
        ++number;
        return true;
    }
    // The next line that holds a word; false at the end of the text.
    bool next_with_words(std::vector<std::string>& words) {
        std::string_view line;
        while (next(line)) {
            words = split_words(line);
            if (!words.empty()) return true;
        }
        return false;
    }
};

double attribute_value(const std::string& word, AttributeKind kind, const std::string& path,
                       int32_t line, int32_t node, size_t column) {
    const char* what = kind_words(kind);
    double value = 0.0;
    const char* fault = nullptr;
    if (!parse_double(word, value) || !std::isfinite(value)) {
        fault = "is not a number";
    } else if (kind == AttributeKind::binary && value != 0.0 && value != 1.0) {
        fault = "is not 0 or 1";
    } else if (kind == AttributeKind::categorical && value != std::trunc(value)) {
        fault = "is not a whole number";
    }
    if (fault != nullptr) {
        throw InputFileError(
            format_message("vexa: %s file '%s', line %d (node %d), column %zu: '%.60s' %s", what,
                           path.c_str(), line, node, column + 1, word.c_str(), fault));
    }
    return value;
}

}  // namespace

AttributeData read_attribute_file(const std::string& path, AttributeKind kind, int32_t count,
                                  int32_t node_count) {
    const char* what = kind_words(kind);
    const std::string text = read_text_file(path, what);
    Lines lines{text};
    AttributeData result;

    if (!lines.next_with_words(result.names)) {
        throw InputFileError(format_message(
            "vexa: %s file '%s' is empty; its first line should name the %d attributes", what,
            path.c_str(), count));
    }
    if (result.names.size() != static_cast<size_t>(count)) {
        throw InputFileError(format_message(
            "vexa: %s file '%s' names %zu attributes in line %d; the run file gives %d", what,
            path.c_str(), result.names.size(), lines.number, count));
    }

    result.data.assign(static_cast<size_t>(count), std::vector<double>());
    std::vector<std::string> words;
    int32_t node = 0;
    while (lines.next_with_words(words)) {
        ++node;
        if (node > node_count) {
            throw InputFileError(
                format_message("vexa: %s file '%s', line %d: more node rows than the %d nodes",
                               what, path.c_str(), lines.number, node_count));
        }
        if (words.size() != static_cast<size_t>(count)) {
            throw InputFileError(
                format_message("vexa: %s file '%s', line %d (node %d): %zu values; each node needs "
                               "%d, one per attribute",
                               what, path.c_str(), lines.number, node, words.size(), count));
        }
        for (size_t a = 0; a < words.size(); ++a) {
            result.data[a].push_back(attribute_value(words[a], kind, path, lines.number, node, a));
        }
    }
    if (node < node_count) {
        throw InputFileError(
            format_message("vexa: %s file '%s' holds %d node rows; the network has %d nodes", what,
                           path.c_str(), node, node_count));
    }
    return result;
}

AttributeData read_covariate_file(const std::string& path, int32_t node_count) {
    const char* what = kind_words(AttributeKind::covariate);
    const std::string text = read_text_file(path, what);
    Lines lines{text};
    std::vector<std::string> words;
    if (!lines.next_with_words(words)) {
        throw InputFileError(format_message(
            "vexa: %s file '%s' is empty; its first line should hold the covariate's name", what,
            path.c_str()));
    }
    if (words.size() != 1) {
        throw InputFileError(
            format_message("vexa: %s file '%s', line %d: the first line should hold the "
                           "covariate's name (one word), found %zu words",
                           what, path.c_str(), lines.number, words.size()));
    }
    AttributeData result;
    result.names.push_back(words[0]);
    result.data.emplace_back();
    std::vector<double>& values = result.data[0];

    const int64_t n = node_count;
    const int64_t needed = n * n;
    int64_t got = 0;
    while (lines.next_with_words(words)) {
        for (const std::string& word : words) {
            if (got == needed) {
                throw InputFileError(format_message(
                    "vexa: %s file '%s', line %d: more than the %lld values of a %d x %d matrix",
                    what, path.c_str(), lines.number, static_cast<long long>(needed), node_count,
                    node_count));
            }
            double value = 0.0;
            if (!parse_double(word, value) || !std::isfinite(value)) {
                const long long row = got / n + 1;
                const long long column = got % n + 1;
                throw InputFileError(format_message(
                    "vexa: %s file '%s', line %d, row %lld, column %lld: '%.60s' is not a number",
                    what, path.c_str(), lines.number, row, column, word.c_str()));
            }
            values.push_back(value);
            ++got;
        }
    }
    if (got < needed) {
        throw InputFileError(format_message(
            "vexa: %s file '%s' holds %lld values after its name; a %d x %d matrix needs %lld",
            what, path.c_str(), static_cast<long long>(got), node_count, node_count,
            static_cast<long long>(needed)));
    }
    return result;
}

}  // namespace vexa
