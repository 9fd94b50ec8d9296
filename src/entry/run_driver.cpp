#include "entry/run_driver.h"

#include <cstdio>
#include <new>

#include "base/errors.h"
#include "entry/digraph_kind.h"
#include "entry/graph_kind.h"
#include "entry/run_file.h"
#include "model/parameter_labels.h"

namespace vexa {

void run_driver(const std::string& run_file, const RunOptions& options) {
    RunContext context;
    context.console = options.console != nullptr ? options.console : stdout;
    context.bars = bar_terminal_for(context.console);
    context.progress = options.progress != nullptr
                           ? *options.progress
                           : console_progress(context.console, &context.bars);
    context.confirm = options.confirm;
    context.store = options.store;
    context.seeds.fixed = options.fixed_seed;
    context.seeds.base = options.seed;
    RunFile file = read_run_file(run_file, context.console);
    context.settings = std::move(file.settings);
    context.settings.run_file = run_file;
    if (options.sampler_variant >= 0) context.settings.sampler_variant = options.sampler_variant;
    context.model = std::move(file.model);
    context.names = std::move(file.names);
    const RunSettings& settings = context.settings;
    if (!file.task_known) {
        // Refused like any other impossible setting, so that callers see a failed run.
        throw SettingError(format_message(
            "vexa: run file '%s' asks for task %d on network kind %d; vexa runs tasks 1 to "
            "4 on kinds 1 (graph) and 2 (digraph), so nothing was run",
            run_file.c_str(), settings.task, settings.network_kind));
    }
    if (settings.network_kind == 2) {
        run_digraph_task(context);
    } else {
        run_graph_task(context);
    }
}

int run_entry(const char* run_file, const RunOptions& options) noexcept {
    FILE* console = options.console != nullptr ? options.console : stdout;
    if (run_file == nullptr || run_file[0] == '\0') {
        std::fprintf(console, "vexa: no run file was given\n");
        std::fflush(console);
        return 1;
    }
    return run_guarded(console, [&] { run_driver(run_file, options); });
}

}  // namespace vexa
