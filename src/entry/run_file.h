#pragma once
// Reading the run file: strictly positional rows, each value after a one-word label line. A
// label that is not its row's is said once on the console, and the value still read by
// position. The layout depends on the task and the network kind.

#include <cstdio>
#include <string>

#include "entry/run_context.h"

namespace vexa {

struct RunFile {
    RunSettings settings;
    Model model;
    OutputNames names;
};

// Why a lambda cannot be used ("" when it can): below 1 or too large for the weights'
// precision. 0 stands for the effect's default.
std::string lambda_refusal(float lambda, float lambda_default);

// Reads the whole run file. Console lines of the attribute sections go to `console`.
// Throws RunFileError naming the file, the setting and its line when the file cannot be
// opened, ends early, or holds a value that does not parse, and SettingError for a value
// that cannot be carried out (an unknown task or network kind, sample_count below 1 in a
// simulation, say).
RunFile read_run_file(const std::string& path, FILE* console);

}  // namespace vexa
