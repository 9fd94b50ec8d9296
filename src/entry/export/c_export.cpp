#include "entry/export/vexa.h"

#include "entry/run_driver.h"

extern "C" VEXA_EXPORT int vexa_run(const char* run_file_path) {
    return vexa::run_entry(run_file_path, vexa::RunOptions{});
}
