#pragma once
// Output files for the reports. Every writer opens its file through OutFile, which fails
// with a clear error instead of writing into a null stream, closes on scope exit, and
// checks the close so that a full disk is not mistaken for a finished report. Files are
// written in binary mode, so a report has the same bytes (lines ending in '\n') on Windows
// as on POSIX systems.

#include <cstdio>
#include <string>

#include "base/compiler.h"

namespace vexa {

enum class OpenMode { truncate, append };

// std::fopen for a path in UTF-8 (the engine's form of every path). On Windows the name goes
// to the file system as UTF-16, so that names outside the system's code page open too; a
// path that is not UTF-8 is taken to be in that code page and opened as it stands.
FILE* open_file(const std::string& path, const char* mode);

// A file opened for binary reading and closed however the reading ends. Throws InputFileError
// ("vexa: cannot open <what> file '<path>'") when it cannot be opened.
struct ReadingFile {
    FILE* file = nullptr;
    ReadingFile(const std::string& path, const char* what);
    ~ReadingFile() { std::fclose(file); }
    ReadingFile(const ReadingFile&) = delete;
    ReadingFile& operator=(const ReadingFile&) = delete;
};

// The size in bytes of an open regular file; -1 for anything else (a pipe, a device).
double file_size(FILE* file);
// The same of the file at `path`; -1 also when it cannot be opened.
double file_size(const std::string& path);

class OutFile {
public:
    OutFile(const std::string& path, OpenMode mode);
    ~OutFile();
    OutFile(const OutFile&) = delete;
    OutFile& operator=(const OutFile&) = delete;

    FILE* get() const { return file_; }
    operator FILE*() const { return file_; }  // NOLINT: lets writers pass it to fprintf directly
    void close();                             // closes now and reports a failed write

private:
    std::string path_;
    FILE* file_ = nullptr;
};

// "%.*f" of a value, with the text the GNU C library gives a NaN on every system: "-nan" when
// its sign bit is set (as in 0 / 0 on x86), else "nan". The Windows runtimes drop the sign;
// a ratio that divides by zero must read the same in every report.
std::string fixed_text(double value, int decimals);

// fprintf with the format checked at compile time, for writers that take a sink.
void print(FILE* out, const char* format, ...) VEXA_PRINTF_FORMAT(2, 3);

}  // namespace vexa
