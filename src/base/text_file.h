#pragma once
// Output files for the reports. Every writer opens its file through OutFile, which fails
// with a clear error instead of writing into a null stream, closes on scope exit, and
// checks the close so that a full disk is not mistaken for a finished report.

#include <cstdio>
#include <string>

#include "base/compiler.h"

namespace vexa {

enum class OpenMode { truncate, append };

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

// fprintf with the format checked at compile time, for writers that take a sink.
void print(FILE* out, const char* format, ...) VEXA_PRINTF_FORMAT(2, 3);

}  // namespace vexa
