#include "base/tie_list_file.h"

#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string_view>
#include <vector>

#include "base/errors.h"
#include "base/matrix_text.h"
#include "base/text_file.h"

namespace vexa {

bool is_tie_list_file(const std::string& path) {
    FILE* file = open_file(path, "rb");
    if (file == nullptr) return false;  // the matrix reader names the file it cannot open
    int c = std::fgetc(file);
    while (c != EOF && (std::isspace(c) != 0 || c == '%')) {
        if (c == '%') {  // a comment runs to the end of its line
            while (c != EOF && c != '\n') c = std::fgetc(file);
        }
        c = std::fgetc(file);
    }
    std::fclose(file);
    return c == '*';
}

namespace {

bool same_word(std::string_view word, std::string_view keyword) {
    if (word.size() != keyword.size()) return false;
    for (size_t k = 0; k < word.size(); ++k) {
        if (std::tolower(static_cast<unsigned char>(word[k])) != keyword[k]) return false;
    }
    return true;
}

// The blanks between the words of a line ('\r' of a Windows line end among them).
bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }

void skip_blanks(std::string_view text, size_t& at) {
    while (at < text.size() && is_blank(text[at])) ++at;
}

// A node number of plain digits from `at`, within 1 to n and ending the word; false (with `at`
// anywhere) for every other word, which the general reading then judges.
bool plain_node(std::string_view text, size_t& at, int n, int& node) {
    const size_t start = at;
    uint64_t value = 0;
    while (at < text.size() && at - start < 10 && text[at] >= '0' && text[at] <= '9') {
        value = value * 10 + static_cast<uint64_t>(text[at] - '0');
        ++at;
    }
    if (at == start || (at < text.size() && !is_blank(text[at]))) return false;
    if (value < 1 || value > static_cast<uint64_t>(n)) return false;
    node = static_cast<int>(value) - 1;
    return true;
}

// Reads a tie list line by line, keeping the section it is in and the line number for messages.
class TieListLines {
public:
    TieListLines(const std::string& path, const char* what, int n,
                 const std::function<void(int, int, double, bool)>& tie)
        : path_(path), what_(what), n_(n), tie_(tie) {}

    // One line, without its '\n'.
    void line(std::string_view text) {
        ++line_;
        if (!plain_tie(text)) general_line(text);
    }

    // The file ended.
    void finish() {
        if (counted_) return;
        line_ = 1;
        fail("the list starts with '*Vertices n'");
    }

    // The line after the last one read runs on for longer than a tie list's lines do.
    [[noreturn]] void line_too_long() {
        ++line_;
        fail(
            format_message("the line runs on for more than %zu characters", longest_tie_list_line));
    }

private:
    enum class Section { none, vertices, arcs, edges, missing };

    [[noreturn]] void fail(const std::string& why) const {
        throw InputFileError(format_message("vexa: %s file '%s', line %d: %s", what_, path_.c_str(),
                                            line_, why.c_str()));
    }

    // "12 345" or "12 345 1" under *Arcs or *Edges, nodes within the run's: nearly every line
    // of a large list, read here without building words. False for any other line.
    bool plain_tie(std::string_view text) {
        if (section_ != Section::arcs && section_ != Section::edges) return false;
        size_t at = 0;
        int from = 0, to = 0;
        skip_blanks(text, at);
        if (!plain_node(text, at, n_, from)) return false;
        skip_blanks(text, at);
        if (!plain_node(text, at, n_, to)) return false;
        skip_blanks(text, at);
        // Words past the value are not read, as the general reading does not read them.
        if (at < text.size() &&
            (text[at] != '1' || (at + 1 < text.size() && !is_blank(text[at + 1]))))
            return false;
        if (from != to) tie_(from, to, 1.0, section_ == Section::edges);
        return true;
    }

    int node(const std::string& word) const {
        double value = 0.0;
        if (!parse_double(word, value) || value != std::floor(value)) {
            fail(format_message("'%s' is not a node number", quoted_word(word).c_str()));
        }
        if (value < 1.0 || value > n_) {
            fail(format_message("node %s is not among the %d nodes of the run",
                                quoted_word(word).c_str(), n_));
        }
        return static_cast<int>(value) - 1;
    }

    void section_line(const std::vector<std::string>& words) {
        if (same_word(words[0], "*network")) return;
        if (same_word(words[0], "*vertices")) {
            double count = 0.0;
            if (words.size() < 2 || !parse_double(words[1], count) || count != n_) {
                fail(format_message(
                    "the run has %d nodes, but the list says '%s'", n_,
                    quoted_word(words.size() < 2 ? words[0] : words[0] + " " + words[1]).c_str()));
            }
            counted_ = true;
            section_ = Section::vertices;
        } else if (same_word(words[0], "*arcs")) {
            section_ = Section::arcs;
        } else if (same_word(words[0], "*edges")) {
            section_ = Section::edges;
        } else if (same_word(words[0], "*missing")) {
            section_ = Section::missing;
        } else {
            fail(
                format_message("'%s' sections are not read: list the ties under *Arcs or *Edges "
                               "and the pairs not observed under *Missing",
                               quoted_word(words[0]).c_str()));
        }
        if (section_ != Section::vertices && !counted_) {
            fail("the node count comes first, as '*Vertices n'");
        }
    }

    // Every line but a plain tie: comments, sections, names, valued ties and the mistakes.
    void general_line(std::string_view text) {
        const std::vector<std::string> words = split_words(text);
        if (words.empty() || words[0][0] == '%') return;
        if (words[0][0] == '*') return section_line(words);
        if (section_ == Section::vertices) return;  // a node's name
        if (section_ == Section::none) fail("the list starts with '*Vertices n'");
        if (words.size() < 2) fail("a tie needs two node numbers");
        const int from = node(words[0]);
        const int to = node(words[1]);
        double value = 1.0;
        if (section_ == Section::missing || (words.size() > 2 && is_missing_word(words[2]))) {
            // A pair not observed: a tie of no known value.
            if (from != to)
                tie_(from, to, std::numeric_limits<double>::quiet_NaN(),
                     section_ == Section::edges);
            return;
        }
        if (words.size() > 2 && !parse_double(words[2], value)) {
            fail(format_message("'%s' is not a number", quoted_word(words[2]).c_str()));
        }
        if (from != to) tie_(from, to, value, section_ == Section::edges);
    }

    const std::string& path_;
    const char* what_;
    int n_;
    const std::function<void(int, int, double, bool)>& tie_;
    Section section_ = Section::none;
    bool counted_ = false;
    int line_ = 0;
};

// Blocks this large keep the reads few; the longest line fits in one.
constexpr size_t block_bytes = size_t{4} << 20;
static_assert(longest_tie_list_line < block_bytes);

}  // namespace

void read_tie_list_file(const std::string& path, const char* what, int n,
                        const std::function<void(int, int, double, bool)>& tie,
                        const WorkDone* bytes) {
    const ReadingFile opened(path, what);
    FILE* file = opened.file;
    const double size = file_size(file);
    TieListLines lines(path, what, n, tie);
    std::vector<char> block(block_bytes);
    size_t held = 0;  // the start of a line the last block cut, moved to the front
    double read = 0.0;
    size_t got = 0;
    while ((got = std::fread(block.data() + held, 1, block.size() - held, file)) > 0) {
        read += static_cast<double>(got);
        const char* const begin = block.data();
        const char* const end = begin + held + got;
        const char* start = begin;
        while (const void* found = std::memchr(start, '\n', static_cast<size_t>(end - start))) {
            const char* const stop = static_cast<const char*>(found);
            const auto length = static_cast<size_t>(stop - start);
            if (length > longest_tie_list_line) lines.line_too_long();
            lines.line(std::string_view(start, length));
            start = stop + 1;
        }
        held = static_cast<size_t>(end - start);
        if (held > longest_tie_list_line) lines.line_too_long();
        std::memmove(block.data(), start, held);
        if (size >= 0.0 && bytes != nullptr && *bytes) (*bytes)(read, size);
    }
    if (std::ferror(file) != 0) {
        throw InputFileError(format_message("vexa: cannot read %s file '%s'", what, path.c_str()));
    }
    if (held > 0) lines.line(std::string_view(block.data(), held));
    lines.finish();
}

}  // namespace vexa
