#pragma once
// The rows of a run file as the reader takes them: a one-word label, then a value read by
// position; whole numbers, numbers and text lines, each refused with the file, the setting and
// its line when it does not parse or cannot be carried out. A label that is not the row's is
// said on the console (run_file_labels.h) and the value is read all the same.

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace vexa::run_file_rows {

// The run file as one text and a reading position. Numbers are whitespace-separated words,
// so blank lines between rows do no harm; text values are whole lines.
struct Reader {
    std::string path;
    std::string text;
    size_t at = 0;
    int32_t line = 1;
    FILE* console = nullptr;
    int32_t next_slot = 0;  // the next free parameter slot, shared by every effect section
    // Labels beyond the fixed rows' (effect entries), for naming the closest to a wrong one.
    std::vector<std::string> known_labels;
    int32_t label_warnings = 0;  // label lines that were not their row's
};

struct Word {
    std::string text;
    int32_t line = 0;
};

// Reads the whole file; throws RunFileError when it cannot be opened or read, or is larger
// than any run file.
Reader open_reader(const std::string& path, FILE* console);

[[noreturn]] void ends_before(const Reader& reader, const std::string& setting);
[[noreturn]] void bad_value(const Reader& reader, const Word& word, const std::string& setting,
                            const char* expected);
// A value that parses but cannot be carried out: SettingError naming the line and setting.
[[noreturn]] void impossible(const Reader& reader, int32_t line, const std::string& setting,
                             const std::string& why);

// A value the run can go on with but that does not do what it seems to: one warning line on
// the console naming the line and setting.
void warn(const Reader& reader, int32_t line, const std::string& setting, const std::string& why);

Word next_word(Reader& reader, const std::string& setting);
// Reads a label line and says on the console when it is not the row's: `expected` for an
// effect entry, else one of the spellings of the fixed row `setting`. With `siblings` (the
// labels of the entries beside this one), a label nearer to `expected` than to every sibling
// passes too: an abbreviation, not a shifted row.
void skip_label(Reader& reader, const std::string& setting, const std::string& expected = "",
                const std::vector<std::string>* siblings = nullptr);
// An optional sign and decimal digits, the whole word, within 32 bits.
bool parse_int(const std::string& word, int32_t& value);

int32_t read_int(Reader& reader, const std::string& setting, int32_t* line = nullptr);
double read_double(Reader& reader, const std::string& setting);
float read_float(Reader& reader, const std::string& setting);

// A label, then its value; `line` (when given) is where the value stands.
int32_t int_row(Reader& reader, const std::string& setting, int32_t* line = nullptr);
float float_row(Reader& reader, const std::string& setting, int32_t* line = nullptr);
double double_row(Reader& reader, const std::string& setting, int32_t* line = nullptr);
// A text value: the whole next line.
std::string line_row(Reader& reader, const std::string& setting);
// A row whose value may not fall below `least`: a smaller one is refused as "<rule>, found v".
int32_t int_row_at_least(Reader& reader, const char* setting, int32_t least, const char* rule,
                         int32_t* line = nullptr);
double double_row_at_least(Reader& reader, const char* setting, double least, const char* rule);

}  // namespace vexa::run_file_rows
