#pragma once
// The run driver: reads the run file, forms the output names, builds the model and the
// network, and runs the task the run file selects.

#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "base/errors.h"
#include "entry/run_context.h"

namespace vexa {

// Runs one run file. Errors propagate as VexaError (or std::bad_alloc).
RunOutcome run_driver(const std::string& run_file, const RunOptions& options);

// The statuses of run_entry, which the command line ends with.
inline constexpr int run_status_complete = 0;
inline constexpr int run_status_failed = 1;
inline constexpr int run_status_not_converged = 3;  // an estimation without a converged run

// Runs work(), turning anything it throws into one clear line on the console, which is flushed
// either way. Never throws; returns 0 when the work finished and 1 when it failed.
template <class Work>
int run_guarded(FILE* console, Work&& work) noexcept {
    try {
        work();
        std::fflush(console);
        return 0;
    } catch (const VexaError& error) {
        std::fprintf(console, "%s\n", error.what());
    } catch (const std::bad_alloc&) {
        std::fprintf(console, "vexa: out of memory; the run was stopped\n");
    } catch (const std::exception& error) {
        std::fprintf(console, "vexa: the run was stopped: %s\n", error.what());
    } catch (...) {
        std::fprintf(console, "vexa: the run was stopped by an unexpected error\n");
    }
    std::fflush(console);
    return 1;
}

// What the entries call: runs the file and turns every failure into one clear line on the
// options' console. Never throws. Returns 0 after a complete run, 1 after a failure and 3 after
// an estimation whose every run ended not converged or degenerate, so that a script can tell a
// failed fit from a good one (the JNI export returns 0 whatever happened; the command-line
// program passes the status on).
int run_entry(const char* run_file, const RunOptions& options) noexcept;

}  // namespace vexa
