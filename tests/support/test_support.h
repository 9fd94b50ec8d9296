#pragma once
// Shared helpers of the test suite: paths of bundled data and scratch directories.

#include <cstdio>
#include <functional>
#include <string>

namespace vexa::testing {

// Whether this build recounts the store after every accepted step (the sanitizer build): its
// statistical tests run shorter, as they are there to find memory faults, not to measure.
#if defined(__SANITIZE_ADDRESS__) || defined(VEXA_CHECK_BOOKKEEPING)
inline constexpr bool checking_build = true;
#else
inline constexpr bool checking_build = false;
#endif

// A file of tests/data.
inline std::string data_path(const std::string& name) {
    return std::string(VEXA_TEST_DATA_DIR) + "/" + name;
}
// A file of examples/.
inline std::string example_path(const std::string& name) {
    return std::string(VEXA_EXAMPLES_DIR) + "/" + name;
}

// A fresh empty directory for one test's files, removed and made anew on every call.
std::string scratch_directory(const std::string& name);

// The whole content of a text file ("" when it does not exist).
std::string read_text(const std::string& path);
void write_text(const std::string& path, const std::string& text);

// What `write` prints into a memory stream; the stream is released even when write throws.
std::string capture(const std::function<void(FILE*)>& write);

}  // namespace vexa::testing
