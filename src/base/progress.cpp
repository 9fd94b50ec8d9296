#include "base/progress.h"

#include <cstdarg>
#include <vector>

namespace vexa {

void Progress::say(const char* format, ...) const {
    if (write == nullptr) return;
    char buffer[512];
    va_list args;
    va_start(args, format);
    const int length = std::vsnprintf(buffer, sizeof buffer, format, args);
    va_end(args);
    if (length < 0) return;
    if (static_cast<size_t>(length) < sizeof buffer) {
        write(context, buffer);
        return;
    }
    std::vector<char> longer(static_cast<size_t>(length) + 1);
    va_start(args, format);
    std::vsnprintf(longer.data(), longer.size(), format, args);
    va_end(args);
    write(context, longer.data());
}

Progress console_progress(FILE* out) {
    Progress progress;
    progress.context = out;
    progress.write = [](void* context, const char* text) {
        FILE* file = static_cast<FILE*>(context);
        std::fputs(text, file);
        std::fflush(file);
    };
    return progress;
}

}  // namespace vexa
