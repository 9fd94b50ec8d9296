#include "entry/export/vexa.h"

#include <cstdio>

#include "entry/run_driver.h"

// Like the JNI entry, vexa_run returns 0 whatever happened: a problem with the run is one
// line on standard output, never a status the caller must check.
extern "C" VEXA_EXPORT int vexa_run(const char* run_file_path) {
    vexa::run_entry(run_file_path, vexa::RunOptions{});
    return 0;
}

// The statuses are the command line's, so a binding can pass them on unchanged.
static_assert(VEXA_COMPLETE == vexa::run_status_complete);
static_assert(VEXA_FAILED == vexa::run_status_failed);
static_assert(VEXA_NOT_CONVERGED == vexa::run_status_not_converged);

extern "C" VEXA_EXPORT int vexa_run_options(const char* run_file_path, unsigned options,
                                            unsigned seed) {
    return vexa_run_chains(run_file_path, options, seed, 0, 0);
}

extern "C" VEXA_EXPORT int vexa_run_chains(const char* run_file_path, unsigned options,
                                           unsigned seed, int chains, int threads) {
    constexpr unsigned known = VEXA_AUTO | VEXA_FIXED_SEED | VEXA_CHECK | VEXA_EE;
    if ((options & ~known) != 0) {
        // A caller built against a later header asked for something this library cannot do;
        // running without it would give results the caller did not ask for.
        std::printf("vexa: unknown options 0x%x given to vexa_run_options; nothing was run\n",
                    options & ~known);
        std::fflush(stdout);
        return VEXA_FAILED;
    }
    if (chains < 0 || chains > vexa::max_chains || threads < 0) {
        std::printf(
            "vexa: %d chains on %d threads asked for; chains go from 1 to %d (0: the "
            "default), threads from 1 (0: the cores available); nothing was run\n",
            chains, threads, vexa::max_chains);
        std::fflush(stdout);
        return VEXA_FAILED;
    }
    vexa::RunOptions run_options;
    run_options.automatic = (options & VEXA_AUTO) != 0;
    run_options.fixed_seed = (options & VEXA_FIXED_SEED) != 0;
    run_options.seed = seed;
    run_options.confirm = (options & VEXA_CHECK) != 0;
    if ((options & VEXA_EE) != 0)
        run_options.method = vexa::EstimationMethod::equilibrium_expectation;
    run_options.chains = chains;
    run_options.threads = threads;
    return vexa::run_entry(run_file_path, run_options);
}
