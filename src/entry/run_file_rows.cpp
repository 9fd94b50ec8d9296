#include "entry/run_file_rows.h"

#include <cctype>
#include <cmath>
#include <cstdlib>

#include "base/closest.h"
#include "base/errors.h"
#include "base/text_file.h"
#include "entry/run_file_labels.h"

namespace vexa::run_file_rows {

namespace {

// Names and paths in a run file stay below this length, which the front end and the files
// it shares with the engine rely on; a longer one is refused rather than cut.
constexpr size_t name_limit = 1000;

// Even a model with hundreds of attributes takes a few megabytes of settings; a file beyond
// this is not a run file (or never ends: a device such as /dev/zero).
constexpr size_t run_file_limit = size_t{64} << 20;

bool is_space(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

void advance(Reader& reader) {
    if (reader.text[reader.at] == '\n') ++reader.line;
    ++reader.at;
}

// The line of the next word (where the value after a label stands).
int32_t peek_line(const Reader& reader) {
    int32_t line = reader.line;
    for (size_t k = reader.at; k < reader.text.size() && is_space(reader.text[k]); ++k)
        if (reader.text[k] == '\n') ++line;
    return line;
}

// A text value: the rest of the label's line is skipped and the value is the whole next line
// as it stands (blanks kept, a Windows '\r' dropped). The blank line that usually follows
// needs no handling: the next label is found by skipping blanks and newlines.
std::string read_text_line(Reader& reader, const std::string& setting) {
    const std::string& text = reader.text;
    while (reader.at < text.size() && text[reader.at] != '\n') ++reader.at;
    if (reader.at < text.size()) advance(reader);
    if (reader.at >= text.size()) ends_before(reader, setting);

    const int32_t line = reader.line;
    const size_t start = reader.at;
    while (reader.at < text.size() && text[reader.at] != '\n') ++reader.at;
    std::string value = text.substr(start, reader.at - start);
    if (!value.empty() && value.back() == '\r') value.pop_back();
    if (reader.at < text.size()) advance(reader);

    if (value.size() >= name_limit) {
        impossible(reader, line, setting,
                   format_message("the name is %zu characters long; names must stay below %zu",
                                  value.size(), name_limit));
    }
    return value;
}

}  // namespace

Reader open_reader(const std::string& path, FILE* console) {
    FILE* file = open_file(path, "rb");
    if (file == nullptr)
        throw RunFileError(format_message("vexa: cannot open run file '%s'", path.c_str()));
    Reader reader;
    reader.path = path;
    reader.console = console;
    char buffer[1 << 14];
    size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
        if (reader.text.size() + got > run_file_limit) {
            std::fclose(file);
            throw RunFileError(format_message(
                "vexa: run file '%s' is larger than %zu bytes, more than any run file needs",
                path.c_str(), run_file_limit));
        }
        reader.text.append(buffer, got);
    }
    const bool failed = std::ferror(file) != 0;
    std::fclose(file);
    if (failed) throw RunFileError(format_message("vexa: cannot read run file '%s'", path.c_str()));
    return reader;
}

[[noreturn]] void ends_before(const Reader& reader, const std::string& setting) {
    throw RunFileError(format_message("vexa: run file '%s' ends before %s (line %d)",
                                      reader.path.c_str(), setting.c_str(), reader.line));
}

Word next_word(Reader& reader, const std::string& setting) {
    while (reader.at < reader.text.size() && is_space(reader.text[reader.at])) advance(reader);
    if (reader.at >= reader.text.size()) ends_before(reader, setting);
    const size_t start = reader.at;
    while (reader.at < reader.text.size() && !is_space(reader.text[reader.at])) ++reader.at;
    return {reader.text.substr(start, reader.at - start), reader.line};
}

[[noreturn]] void bad_value(const Reader& reader, const Word& word, const std::string& setting,
                            const char* expected) {
    throw RunFileError(format_message(
        "vexa: run file '%s', line %d (%s): expected %s, found '%.60s'", reader.path.c_str(),
        word.line, setting.c_str(), expected, word.text.c_str()));
}

[[noreturn]] void impossible(const Reader& reader, int32_t line, const std::string& setting,
                             const std::string& why) {
    throw SettingError(format_message("vexa: run file '%s', line %d (%s): %s", reader.path.c_str(),
                                      line, setting.c_str(), why.c_str()));
}

void warn(const Reader& reader, int32_t line, const std::string& setting, const std::string& why) {
    if (reader.console == nullptr) return;
    std::fprintf(reader.console, "vexa: warning: run file '%s', line %d (%s): %s\n",
                 reader.path.c_str(), line, setting.c_str(), why.c_str());
}

bool parse_int(const std::string& word, int32_t& value) {
    size_t k = 0;
    bool negative = false;
    if (k < word.size() && (word[k] == '+' || word[k] == '-')) negative = word[k++] == '-';
    if (k == word.size()) return false;
    int64_t magnitude = 0;
    for (; k < word.size(); ++k) {
        if (word[k] < '0' || word[k] > '9') return false;
        magnitude = magnitude * 10 + (word[k] - '0');
        if (magnitude > int64_t{1} << 31) return false;
    }
    const int64_t signed_value = negative ? -magnitude : magnitude;
    if (signed_value > INT32_MAX) return false;
    value = static_cast<int32_t>(signed_value);
    return true;
}

namespace {

// Whether the letters and digits of `label` appear in `word` in order, regardless of case: an
// abbreviation ("group_same_reciprocity" of "group_same_Category_reciprocity").
bool abbreviates(const std::string& label, const std::string& word) {
    const auto plain = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; };
    size_t k = 0;
    for (const char c : label) {
        if (!plain(c)) continue;
        const auto lower = [](char x) {
            return static_cast<char>(std::tolower(static_cast<unsigned char>(x)));
        };
        while (k < word.size() && lower(word[k]) != lower(c)) ++k;
        if (k == word.size()) return false;
        ++k;
    }
    return true;
}

// Whether `label` stands for `expected` rather than for any of `siblings`: it abbreviates
// `expected` alone, or lies nearer to it than to every sibling.
bool nearest_is(const std::string& label, const std::string& expected,
                const std::vector<std::string>& siblings) {
    bool alone = abbreviates(label, expected);
    bool nearest = true;
    const size_t distance = edit_distance(label, expected);
    for (const std::string& other : siblings) {
        if (other == expected) continue;
        if (abbreviates(label, other)) alone = false;
        if (edit_distance(label, other) <= distance) nearest = false;
    }
    return alone || nearest;
}

}  // namespace

void skip_label(Reader& reader, const std::string& setting, const std::string& expected,
                const std::vector<std::string>* siblings) {
    const Word label = next_word(reader, setting);
    const std::vector<std::string> accepted =
        expected.empty() ? accepted_labels(setting) : std::vector<std::string>{expected};
    if (label_matches(label.text, accepted)) return;
    if (siblings != nullptr && nearest_is(label.text, expected, *siblings)) return;
    ++reader.label_warnings;
    if (reader.console == nullptr) return;
    // Effect entries first: among labels as near, the effect is the likelier meaning.
    std::vector<std::string> known = reader.known_labels;
    known.insert(known.end(), fixed_row_labels().begin(), fixed_row_labels().end());
    std::fprintf(reader.console,
                 "vexa: warning: run file '%s', line %d: the label says '%.60s' where '%s' is "
                 "expected (the closest known label is '%s'); the value after it is read as %s\n",
                 reader.path.c_str(), label.line, label.text.c_str(), accepted.front().c_str(),
                 closest_word(label.text, known).c_str(), accepted.front().c_str());
}

int32_t read_int(Reader& reader, const std::string& setting, int32_t* line) {
    const Word word = next_word(reader, setting);
    int32_t value = 0;
    if (!parse_int(word.text, value)) bad_value(reader, word, setting, "a whole number");
    if (line != nullptr) *line = word.line;
    return value;
}

double read_double(Reader& reader, const std::string& setting) {
    const Word word = next_word(reader, setting);
    char* end = nullptr;
    const double value = std::strtod(word.text.c_str(), &end);
    if (end != word.text.c_str() + word.text.size() || !std::isfinite(value)) {
        bad_value(reader, word, setting, "a number");
    }
    return value;
}

float read_float(Reader& reader, const std::string& setting) {
    const Word word = next_word(reader, setting);
    char* end = nullptr;
    const float value = std::strtof(word.text.c_str(), &end);
    if (end != word.text.c_str() + word.text.size() || !std::isfinite(value)) {
        bad_value(reader, word, setting, "a number");
    }
    return value;
}

int32_t int_row(Reader& reader, const std::string& setting, int32_t* line) {
    skip_label(reader, setting);
    return read_int(reader, setting, line);
}

float float_row(Reader& reader, const std::string& setting, int32_t* line) {
    skip_label(reader, setting);
    if (line != nullptr) *line = peek_line(reader);
    return read_float(reader, setting);
}

double double_row(Reader& reader, const std::string& setting, int32_t* line) {
    skip_label(reader, setting);
    if (line != nullptr) *line = peek_line(reader);
    return read_double(reader, setting);
}

int32_t int_row_at_least(Reader& reader, const char* setting, int32_t least, const char* rule,
                         int32_t* line) {
    int32_t at = 0;
    const int32_t value = int_row(reader, setting, &at);
    if (line != nullptr) *line = at;
    if (value < least) impossible(reader, at, setting, format_message("%s, found %d", rule, value));
    return value;
}

double double_row_at_least(Reader& reader, const char* setting, double least, const char* rule) {
    int32_t at = 0;
    const double value = double_row(reader, setting, &at);
    if (value < least) impossible(reader, at, setting, format_message("%s, found %g", rule, value));
    return value;
}

std::string line_row(Reader& reader, const std::string& setting) {
    skip_label(reader, setting);
    return read_text_line(reader, setting);
}

}  // namespace vexa::run_file_rows
