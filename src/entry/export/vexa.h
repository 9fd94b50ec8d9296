/* The plain C entries of the vexa library, for callers without a JVM (C, Python, R).
   vexa_run runs one run file as the Java front end does and returns 0 whatever happened;
   problems are reported on standard output as one line naming the file, row or setting at
   fault. vexa_run_options and vexa_run_chains run it with the options of the command line
   and return a status.
   Paths, the run file's and those inside it, are UTF-8; on Windows a path that is not UTF-8
   is taken to be in the system's code page. */
#ifndef VEXA_H
#define VEXA_H

#ifdef __cplusplus
extern "C" {
#endif

#if defined(_WIN32) && defined(VEXA_BUILDING_LIBRARY)
#define VEXA_EXPORT __declspec(dllexport)
#elif defined(_WIN32)
#define VEXA_EXPORT __declspec(dllimport)
#else
#define VEXA_EXPORT __attribute__((visibility("default")))
#endif

VEXA_EXPORT int vexa_run(const char* run_file_path);

/* The options of vexa_run_options, combined with |. */
#define VEXA_AUTO 1u       /* estimate automatically, as the command line's --auto */
#define VEXA_FIXED_SEED 2u /* every random stream derives from `seed` (else from the clock) */
#define VEXA_CHECK 4u      /* confirm a converged estimate with a long chain, as --check */
#define VEXA_EE 8u         /* estimate by equilibrium expectation, as --method ee */

/* The statuses vexa_run_options returns. */
#define VEXA_COMPLETE 0      /* the run went to its end (an estimation converged) */
#define VEXA_FAILED 1        /* the run was refused or stopped; the reason is on standard output */
#define VEXA_NOT_CONVERGED 3 /* an estimation ended without a converged run */

/* Runs one run file with the given options (bits this version does not know are refused with
   VEXA_FAILED) and returns one of the statuses above. Like vexa_run, it never ends the host
   process: every problem is one line on standard output. */
VEXA_EXPORT int vexa_run_options(const char* run_file_path, unsigned options, unsigned seed);

/* The same, drawing from `chains` chains on `threads` threads, as the command line's --chains
   and --threads: 0 chains takes the default (1, or 8 with VEXA_AUTO), 0 threads the cores
   available. The results depend on the chains, never on the threads. */
VEXA_EXPORT int vexa_run_chains(const char* run_file_path, unsigned options, unsigned seed,
                                int chains, int threads);

#ifdef __cplusplus
}
#endif

#endif
