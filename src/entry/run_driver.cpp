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
    context.observer = options.observer;
    context.confirm = options.confirm;
    context.store = options.store;
    context.seeds.fixed = options.fixed_seed;
    context.seeds.base = options.seed;
    RunFile file = read_run_file(run_file, context.console);
    context.settings = std::move(file.settings);
    context.settings.run_file = run_file;
    if (options.sampler_code >= 0)
        context.settings.proposal =
            proposal_of(options.sampler_code, context.settings.network_kind);
    context.model = std::move(file.model);
    context.names = std::move(file.names);
    if (context.settings.network_kind == NetworkKind::digraph) {
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
