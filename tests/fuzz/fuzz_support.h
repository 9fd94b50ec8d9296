#pragma once
// What the fuzzing harnesses share: a working directory inside the scratch directory the
// fuzzer was started in, holding copies of the bundled networks and attribute files, and
// cleared of whatever a run wrote after every input.

#include <filesystem>
#include <set>
#include <string>

namespace vexa::fuzzing {

// Makes ./work (in the directory the fuzzer runs in, which the fuzzing script makes for it)
// with copies of the bundled data and an empty out/, and makes it the working directory.
void enter_work_directory();

// Removes every file and directory of the working directory that enter_work_directory did
// not put there, and empties out/.
void clear_work_directory();

// The whole input as a file of the working directory.
void write_input(const std::string& name, const unsigned char* data, size_t size);

}  // namespace vexa::fuzzing
