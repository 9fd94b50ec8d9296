#include "base/text_file.h"

#include <cstdarg>

#include "base/errors.h"

namespace vexa {

OutFile::OutFile(const std::string& path, OpenMode mode) : path_(path) {
    file_ = std::fopen(path.c_str(), mode == OpenMode::append ? "a" : "w");
    if (file_ == nullptr) {
        throw OutputFileError(format_message("vexa: cannot write output file '%s'", path.c_str()));
    }
}

OutFile::~OutFile() {
    if (file_ != nullptr) std::fclose(file_);
}

void OutFile::close() {
    if (file_ == nullptr) return;
    const bool failed = std::ferror(file_) != 0;
    const int closed = std::fclose(file_);
    file_ = nullptr;
    if (failed || closed != 0) {
        throw OutputFileError(
            format_message("vexa: writing output file '%s' failed", path_.c_str()));
    }
}

void print(FILE* out, const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::vfprintf(out, format, args);
    va_end(args);
}

}  // namespace vexa
