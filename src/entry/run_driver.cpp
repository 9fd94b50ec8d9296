#include "entry/run_driver.h"

#include <cstdio>
#include <new>

#include "base/errors.h"
#include "entry/digraph_kind.h"
#include "entry/graph_kind.h"
#include "entry/html_output.h"
#include "entry/run_file.h"
#include "entry/start_from.h"
#include "model/parameter_labels.h"

namespace vexa {

RunOutcome run_driver(const std::string& run_file, const RunOptions& options) {
    RunContext context;
    context.console = options.console != nullptr ? options.console : stdout;
    context.bars = bar_terminal_for(context.console);
    context.observer = options.observer;
    // The HTML report takes the records and the samples' distributions as well.
    HtmlCollection html;
    Observer with_html;
    if (options.html) {
        std::vector<Observer> parts{html_collector(html)};
        if (options.observer != nullptr) parts.insert(parts.begin(), *options.observer);
        with_html = observe_all(std::move(parts));
        context.observer = &with_html;
        context.records = &html.records;
        context.observed_profile = &html.observed;
    }
    RunFile file = read_run_file(run_file, context.console);
    context.settings = std::move(file.settings);
    context.settings.run_file = run_file;
    take_options(context, options);
    // Spread over processes, process 0 alone writes.
    context.write_files = context.chains.cluster.rank == 0;
    context.model = std::move(file.model);
    context.names = std::move(file.names);
    if (!context.start_from.empty()) {
        const int taken = take_estimates(context.model, context.start_from, run_file);
        std::fprintf(context.console,
                     "vexa: %d effects take the estimates of '%s', matched by label\n", taken,
                     context.start_from.c_str());
    }
    if (context.settings.network_kind == NetworkKind::digraph) {
        run_digraph_task(context);
    } else {
        run_graph_task(context);
    }
    if (options.html && context.write_files) write_html_output(context, html);
    return context.outcome;
}

int run_entry(const char* run_file, const RunOptions& options) noexcept {
    FILE* console = options.console != nullptr ? options.console : stdout;
    if (run_file == nullptr || run_file[0] == '\0') {
        std::fprintf(console, "vexa: no run file was given\n");
        std::fflush(console);
        return 1;
    }
    RunOutcome outcome = RunOutcome::complete;
    const int status = run_guarded(console, [&] { outcome = run_driver(run_file, options); });
    if (status != 0) return run_status_failed;
    return outcome == RunOutcome::not_converged ? run_status_not_converged : run_status_complete;
}

}  // namespace vexa
