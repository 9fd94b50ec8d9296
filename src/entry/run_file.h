#pragma once
// Reading the run file: strictly positional rows, each value after a one-word label line
// that is never examined. The layout depends on the task and the network kind.

#include <cstdio>
#include <string>

#include "entry/run_context.h"

namespace vexa {

struct RunFile {
    RunSettings settings;
    Model model;
    OutputNames names;
    bool task_known = false;  // task 1..4 with network kind 1 or 2: the rest was read
};

// Reads the whole run file. Console lines of the attribute sections go to `console`.
// Throws RunFileError naming the file, the setting and its line when the file cannot be
// opened, ends early, or holds a value that does not parse, and SettingError for a value
// that cannot be carried out (sample_count below 1 in tasks 1 and 3, say).
RunFile read_run_file(const std::string& path, FILE* console);

}  // namespace vexa
