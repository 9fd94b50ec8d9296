#include "entry/run_context.h"

#include "base/errors.h"

namespace vexa {

const char* task_name(Task task) {
    switch (task) {
        case Task::simulation: return "simulation";
        case Task::estimation: return "estimation";
        case Task::goodness_of_fit: return "goodness of fit";
        case Task::bayesian_goodness_of_fit: return "Bayesian goodness of fit";
    }
    return "run";
}

bool task_of(int32_t code, Task& task) {
    switch (code) {
        case 1: task = Task::simulation; return true;
        case 2: task = Task::estimation; return true;
        case 3: task = Task::goodness_of_fit; return true;
        case 4: task = Task::bayesian_goodness_of_fit; return true;
        default: return false;
    }
}

bool network_kind_of(int32_t code, NetworkKind& kind) {
    switch (code) {
        case 1: kind = NetworkKind::graph; return true;
        case 2: kind = NetworkKind::digraph; return true;
        default: return false;
    }
}

void take_options(RunContext& context, const RunOptions& options) {
    context.confirm = options.confirm;
    context.automatic = options.automatic;
    context.method = options.method;
    context.store = options.store;
    context.save_network = options.save_network;
    context.start_from = options.start_from;
    context.seeds.fixed = options.fixed_seed;
    context.seeds.base = options.seed;
    context.chains.chains = options.chains > 0  ? options.chains
                            : options.automatic ? automatic_chains
                                                : 1;
    if (context.chains.chains > max_chains) {
        throw SettingError(format_message("vexa: %d chains asked for; at most %d are allowed",
                                          context.chains.chains, max_chains));
    }
    context.chains.threads = threads_for(context.chains.chains, options.threads);
    context.chains.cluster = process_cluster();
    context.sampler_named = options.sampler_code >= 0;
    if (context.sampler_named)
        context.settings.proposal =
            proposal_of(options.sampler_code, context.settings.network_kind);
}

}  // namespace vexa
