#include "entry/memory_plan.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "base/errors.h"
#include "network/digraph.h"
#include "network/graph.h"

namespace vexa {

namespace {

// Descriptive measures a goodness of fit keeps per sample beside the statistics (a digraph has
// the most), and the three geodesic quartiles.
constexpr double measures_per_sample = 13.0 + 3.0;

}  // namespace

MemoryPlan task_memory(const RunSettings& s, NetworkKind kind, int parameters, int chains) {
    const int n = s.node_count;
    MemoryPlan plan;
    plan.store_bytes = kind == NetworkKind::digraph ? digraph_store_bytes(n) : graph_store_bytes(n);
    plan.chains = std::max(chains, 1);
    plan.stores = s.task == Task::simulation && plan.chains == 1 ? 1 : 1 + plan.chains;
    const double nodes = n;
    const double p = std::max(parameters, 1);
    if (s.constraint_given) plan.other_bytes += nodes * std::floor((nodes + 63.0) / 64.0) * 8.0;
    // Per-node scratch of the descriptive measures and the chain.
    plan.other_bytes += 64.0 * nodes;
    double samples = 0.0;
    if (s.task == Task::goodness_of_fit && s.thinning_interval >= 1.0)
        samples = std::floor(s.iterations / s.thinning_interval);
    if (s.task == Task::estimation) {
        // Phase 3 keeps its draws; a goodness of fit after it keeps its 1,000 samples.
        plan.other_bytes += 2.0 * s.phase3_steps * p * 8.0;
        if (s.gof_after_estimation) samples = 1000.0;
    }
    plan.other_bytes += samples * (p + measures_per_sample + 1.0) * 8.0;
    return plan;
}

void check_task_memory(const RunSettings& s, NetworkKind kind, int parameters, double available,
                       int chains) {
    const MemoryPlan plan = task_memory(s, kind, parameters, chains);
    if (available <= 0.0 || plan.total() <= available) return;
    const double gigabyte = 1e9;
    // With several chains, say how many would fit: each holds a store of its own.
    std::string fewer;
    if (plan.chains > 1) {
        const double room = available - plan.other_bytes - plan.store_bytes;
        const int fit = room > 0.0 ? static_cast<int>(std::floor(room / plan.store_bytes)) : 0;
        fewer = format_message(" for %d chains (a store each; %d would fit)", plan.chains,
                               std::min(fit, plan.chains - 1));
    }
    throw SettingError(format_message(
        "vexa: run file '%s' (node_count %d): the %s needs about %.2f GB of memory%s (%d %s of "
        "%.2f GB for a %s of %d nodes, and %.2f GB besides), but %.2f GB are available; the run "
        "was not started",
        s.run_file.c_str(), s.node_count, task_name(s.task), plan.total() / gigabyte, fewer.c_str(),
        plan.stores, plan.stores == 1 ? "network store" : "network stores",
        plan.store_bytes / gigabyte, kind == NetworkKind::digraph ? "digraph" : "graph",
        s.node_count, plan.other_bytes / gigabyte, available / gigabyte));
}

void check_sample_files_disk(const RunSettings& s, double available) {
    if (!s.outputs.pajek || available <= 0.0) return;
    double samples = 0.0;
    if (s.task == Task::bayesian_goodness_of_fit) {
        samples = s.sample_count;
    } else if (s.task == Task::estimation) {
        samples = s.gof_after_estimation ? 1000.0 : 0.0;
    } else if (s.thinning_interval >= 1.0) {
        samples = std::floor(s.iterations / s.thinning_interval);
    }
    const double n = s.node_count;
    const double each = 2.0 * (2.0 * n * n + n);  // two matrices of "0 " or "1 " cells
    const double needed = samples * each;
    if (needed <= available) return;
    const double gigabyte = 1e9;
    throw SettingError(format_message(
        "vexa: run file '%s' (node_count %d): the network files of %.0f samples would take about "
        "%.1f GB (%.3f GB a sample), but %.1f GB are free in the output directory '%s'; switch "
        "the Pajek output off, or keep fewer samples; the run was not started",
        s.run_file.c_str(), s.node_count, samples, needed / gigabyte, each / gigabyte,
        available / gigabyte, s.output_directory.c_str()));
}

void check_copies_memory(const RunSettings& s, double store_bytes, int copies, double available) {
    const double needed = store_bytes * copies;
    if (available <= 0.0 || copies <= 0 || needed <= available) return;
    const double gigabyte = 1e9;
    const int fit = static_cast<int>(std::floor(available / store_bytes));
    throw SettingError(format_message(
        "vexa: run file '%s' (node_count %d): the %s's %d %s of the network need about %.2f GB "
        "of memory (%.2f GB each), but %.2f GB are available (%d would fit: fewer chains need "
        "less); the run was not started",
        s.run_file.c_str(), s.node_count, task_name(s.task), copies,
        copies == 1 ? "copy" : "copies", needed / gigabyte, store_bytes / gigabyte,
        available / gigabyte, fit));
}

}  // namespace vexa
