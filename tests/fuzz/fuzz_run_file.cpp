// Run files through the C entry, as a front end passes them. Every input is read by the
// run-file reader; inputs that read cleanly are run only when their work is small (a fuzzer
// wants many inputs a second, and a long run is no fault), and inputs that name a file outside
// the working directory are left alone, so that everything a run writes stays in the scratch
// directory.
#include <cstddef>
#include <cstdint>
#include <string>

#include "base/errors.h"
#include "entry/export/vexa.h"
#include "entry/run_file.h"
#include "fuzz_support.h"

namespace {

// Absolute paths and parent directories would lead out of the working directory.
bool stays_inside(const std::string& text) {
    if (text.find("..") != std::string::npos) return false;
    size_t start = 0;
    while (start < text.size()) {
        if (text[start] == '/') return false;
        const size_t end = text.find('\n', start);
        if (end == std::string::npos) break;
        start = end + 1;
    }
    return true;
}

bool small_work(const vexa::RunSettings& s) {
    if (s.node_count > 20) return false;
    using vexa::Task;
    if (s.task == Task::simulation || s.task == Task::goodness_of_fit) {
        if (s.burn_in + s.iterations > 20000.0) return false;
        if (s.outputs.pajek && s.sample_count > 20) return false;
        return s.sample_count <= 500;
    }
    if (s.task == Task::estimation) {
        if (s.node_count > 16 || s.subphase_count > 3 || s.phase3_steps > 100 ||
            s.multiplication_factor > 2 || s.estimation_runs > 1)
            return false;
        return !s.gof_after_estimation || s.node_count <= 10;
    }
    // The Bayesian goodness of fit: a burn-in for every parameter set.
    return s.burn_in * s.sample_count <= 400000.0;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    vexa::fuzzing::enter_work_directory();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 1 << 16) return 0;
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (!stays_inside(text)) return 0;
    vexa::fuzzing::write_input("run.txt", data, size);
    bool run = true;
    try {
        const vexa::RunFile file = vexa::read_run_file("run.txt", nullptr);
        run = small_work(file.settings);
    } catch (const vexa::VexaError&) {
        // The entry meets the same fault and reports it: that path is run too.
    }
    if (run && vexa_run("run.txt") != 0) __builtin_trap();  // the entry always returns 0
    vexa::fuzzing::clear_work_directory();
    return 0;
}
