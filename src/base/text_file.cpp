#include "base/text_file.h"

#include <cmath>
#include <cstdarg>
#include <cstring>

#include "base/errors.h"

#include <sys/stat.h>

#if defined(_WIN32)
#include <cwchar>

#include "base/unicode.h"
#endif

namespace vexa {

FILE* open_file(const std::string& path, const char* mode) {
#if defined(_WIN32)
    std::u16string wide;
    if (utf16_from_utf8(path, wide)) {
        const std::wstring wide_path(wide.begin(), wide.end());
        const std::wstring wide_mode(mode, mode + std::strlen(mode));
        return _wfopen(wide_path.c_str(), wide_mode.c_str());
    }
#endif
    return std::fopen(path.c_str(), mode);
}

ReadingFile::ReadingFile(const std::string& path, const char* what) : file(open_file(path, "rb")) {
    if (file == nullptr) {
        throw InputFileError(format_message("vexa: cannot open %s file '%s'", what, path.c_str()));
    }
}

double file_size(FILE* file) {
#if defined(_WIN32)
    struct _stat64 status {};
    if (_fstat64(_fileno(file), &status) != 0 || (status.st_mode & _S_IFREG) == 0) return -1.0;
#else
    struct stat status {};
    if (fstat(fileno(file), &status) != 0 || !S_ISREG(status.st_mode)) return -1.0;
#endif
    return static_cast<double>(status.st_size);
}

double file_size(const std::string& path) {
    FILE* file = open_file(path, "rb");
    if (file == nullptr) return -1.0;
    const double size = file_size(file);
    std::fclose(file);
    return size;
}

OutFile::OutFile(const std::string& path, OpenMode mode) : path_(path) {
    file_ = open_file(path, mode == OpenMode::append ? "ab" : "wb");
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

std::string fixed_text(double value, int decimals) {
    if (std::isnan(value)) return std::signbit(value) ? "-nan" : "nan";
    char text[512];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

void print(FILE* out, const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::vfprintf(out, format, args);
    va_end(args);
}

}  // namespace vexa
