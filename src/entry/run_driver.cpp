#include "entry/run_driver.h"

#include <cstdio>
#include <new>

#include "base/errors.h"
#include "entry/run_file.h"

namespace vexa {

void run_driver(const std::string& run_file, const RunOptions& options) {
    RunContext context;
    context.console = options.console;
    context.seeds.fixed = options.fixed_seed;
    context.seeds.base = options.seed;
    RunFile file = read_run_file(run_file, options.console);
    context.settings = std::move(file.settings);
    context.model = std::move(file.model);
    context.names = std::move(file.names);
}

int run_entry(const char* run_file, const RunOptions& options) noexcept {
    FILE* console = options.console != nullptr ? options.console : stdout;
    try {
        if (run_file == nullptr || run_file[0] == '\0') {
            std::fprintf(console, "vexa: no run file was given\n");
            std::fflush(console);
            return 1;
        }
        run_driver(run_file, options);
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

}  // namespace vexa
