#pragma once
// The run driver: reads the run file, forms the output names, builds the model and the
// network, and runs the task the run file selects.

#include <string>

#include "entry/run_context.h"

namespace vexa {

// Runs one run file. Errors propagate as VexaError (or std::bad_alloc).
void run_driver(const std::string& run_file, const RunOptions& options);

// What the entries call: runs the file and turns every failure into one clear line on the
// options' console. Never throws. Returns 0 after a complete run and 1 after a failure (the
// library's exports return 0 either way; the command-line program passes it on).
int run_entry(const char* run_file, const RunOptions& options) noexcept;

}  // namespace vexa
