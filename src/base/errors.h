#pragma once
// Errors that end a run. Each carries the one line the user sees on standard output,
// naming the file, row or setting at fault. They are thrown inside the engine and caught
// once, at the entry, so that bad input never reaches the host process as a crash.

#include <stdexcept>
#include <string>

#include "base/compiler.h"

namespace vexa {

struct VexaError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A row of the run file that is missing or does not parse.
struct RunFileError : VexaError {
    using VexaError::VexaError;
};

// An input file (network, constraint, attribute, covariate, matrix) that is missing or malformed.
struct InputFileError : VexaError {
    using VexaError::VexaError;
};

// An output file that cannot be created or written.
struct OutputFileError : VexaError {
    using VexaError::VexaError;
};

// A setting that cannot be carried out (no nodes, more ties than dyads, an endless proposal).
struct SettingError : VexaError {
    using VexaError::VexaError;
};

// printf-style message building, so that every message reads the same way.
std::string format_message(const char* format, ...) VEXA_PRINTF_FORMAT(1, 2);

}  // namespace vexa
