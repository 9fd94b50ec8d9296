#pragma once
// What a long computation says while it runs: the text a person watches (run headings, the
// sample numbers of a simulation, acceptance counts). The command line and the library's
// entries send it to standard output; an embedding can route it elsewhere or drop it.

#include <cstdio>

#include "base/compiler.h"

namespace vexa {

struct Progress {
    void* context = nullptr;
    void (*write)(void* context, const char* text) = nullptr;

    // printf-style; nothing happens without a writer.
    void say(const char* format, ...) const VEXA_PRINTF_FORMAT(2, 3);
    bool quiet() const { return write == nullptr; }
};

// Writes to `out` and flushes, so a watcher sees each line as it comes.
Progress console_progress(FILE* out);

}  // namespace vexa
