#include "entry/attribute_files.h"

#include <algorithm>
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

// The most bytes a file of so many words can sensibly hold: room for long words and wide
// spacing, so that only a file without end (a device such as /dev/zero) is refused.
size_t file_limit(double words) {
    return static_cast<size_t>(std::min(16.0 * 1048576.0 + 512.0 * words, 64.0 * 1073741824.0));
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

[[noreturn]] void bad_value(AttributeKind kind, const std::string& path, int32_t line, int32_t node,
                            size_t column, const std::string& word, const char* fault) {
    throw InputFileError(format_message(
        "vexa: %s file '%s', line %d (node %d), column %zu: '%.60s' %s", kind_words(kind),
        path.c_str(), line, node, column + 1, word.c_str(), fault));
}

double attribute_value(const std::string& word, AttributeKind kind, const std::string& path,
                       int32_t line, int32_t node, size_t column) {
    double value = 0.0;
    if (!parse_double(word, value) || !std::isfinite(value)) {
        bad_value(kind, path, line, node, column, word,
                  kind == AttributeKind::binary ? "is not 0, 1 or NA" : "is not a number or NA");
    }
    if (kind == AttributeKind::binary && value != 0.0 && value != 1.0) {
        bad_value(kind, path, line, node, column, word, "is not 0, 1 or NA");
    }
    return value;
}

// Categories are words: numbers or names ("Turks", "F"). An attribute whose categories are all
// numbers keeps them as they are; one with a name among them gives each distinct category a
// code 1, 2, ... in order of first appearance, numbers equal as numbers ("1", "1.0") being one
// category. Only equality of categories matters to the effects.
void code_categories(const std::vector<std::string>& words, const std::vector<uint8_t>& missing,
                     std::vector<double>& values) {
    values.assign(words.size(), 0.0);
    std::vector<std::string> keys(words.size());
    bool all_numbers = true;
    for (size_t v = 0; v < words.size(); ++v) {
        if (missing[v] != 0) continue;
        double number = 0.0;
        if (parse_double(words[v], number) && std::isfinite(number)) {
            values[v] = number;
            char buffer[40];
            std::snprintf(buffer, sizeof buffer, "%.17g", number);
            keys[v] = buffer;
        } else {
            all_numbers = false;
            keys[v] = words[v];
        }
    }
    if (all_numbers) return;
    std::vector<std::string> seen;
    for (size_t v = 0; v < words.size(); ++v) {
        if (missing[v] != 0) continue;
        const auto at = std::find(seen.begin(), seen.end(), keys[v]);
        if (at == seen.end()) seen.push_back(keys[v]);
        values[v] =
            static_cast<double>(std::find(seen.begin(), seen.end(), keys[v]) - seen.begin() + 1);
    }
}

}  // namespace

AttributeData read_attribute_file(const std::string& path, AttributeKind kind, int32_t count,
                                  int32_t node_count) {
    const char* what = kind_words(kind);
    const std::string text =
        read_text_file(path, what, file_limit(static_cast<double>(node_count + 1) * (count + 1)));
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
    result.missing.assign(static_cast<size_t>(count), std::vector<uint8_t>());
    std::vector<std::vector<std::string>> categories(static_cast<size_t>(count));
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
            const bool missing = is_missing_word(words[a]);
            double value = 0.0;
            if (missing) {
                value = 0.0;  // a missing value counts as 0 (a missing category matches nothing)
            } else if (kind == AttributeKind::categorical) {
                // A number with a fraction is a measurement, not a category: counted as one,
                // every value would be a category of its own.
                if (parse_double(words[a], value) && std::isfinite(value) &&
                    value != std::trunc(value)) {
                    bad_value(kind, path, lines.number, node, a, words[a],
                              "is not a category: categories are whole numbers or words (a "
                              "value with a fraction belongs to a continuous attribute)");
                }
                value = 0.0;
                categories[a].push_back(words[a]);
            } else {
                value = attribute_value(words[a], kind, path, lines.number, node, a);
            }
            if (kind == AttributeKind::categorical && missing) categories[a].emplace_back();
            result.data[a].push_back(value);
            result.missing[a].push_back(missing ? 1 : 0);
        }
    }
    if (node < node_count) {
        throw InputFileError(
            format_message("vexa: %s file '%s' holds %d node rows; the network has %d nodes", what,
                           path.c_str(), node, node_count));
    }
    if (kind == AttributeKind::categorical) {
        for (size_t a = 0; a < categories.size(); ++a)
            code_categories(categories[a], result.missing[a], result.data[a]);
    }
    return result;
}

AttributeData read_covariate_file(const std::string& path, int32_t node_count) {
    const char* what = kind_words(AttributeKind::covariate);
    const std::string text =
        read_text_file(path, what, file_limit(static_cast<double>(node_count) * node_count + 1.0));
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
    result.missing.emplace_back(static_cast<size_t>(node_count), uint8_t{0});
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
            if (is_missing_word(word)) {
                value = 0.0;  // an unknown covariate value counts as 0
            } else if (!parse_double(word, value) || !std::isfinite(value)) {
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
