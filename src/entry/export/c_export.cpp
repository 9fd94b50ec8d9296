#include "entry/export/vexa.h"

#include "entry/run_driver.h"

// Like the JNI entry, the C entry returns 0 whatever happened: a problem with the run is one
// line on standard output, never a status the caller must check.
extern "C" VEXA_EXPORT int vexa_run(const char* run_file_path) {
    vexa::run_entry(run_file_path, vexa::RunOptions{});
    return 0;
}
