/* The plain C entry of the vexa library, for callers without a JVM (C, Python, R).
   vexa_run runs one run file and returns 0 whatever happened; problems are reported on
   standard output as one line naming the file, row or setting at fault. Paths, the run
   file's and those inside it, are UTF-8; on Windows a path that is not UTF-8 is taken to be
   in the system's code page. */
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

#ifdef __cplusplus
}
#endif

#endif
