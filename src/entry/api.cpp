#include "entry/api.h"

#include <cmath>
#include <cstdio>
#include <new>
#include <type_traits>
#include <utility>
#include <variant>

#include "base/errors.h"
#include "entry/digraph_kind.h"
#include "entry/graph_kind.h"
#include "entry/run_driver.h"
#include "entry/run_file.h"
#include "model/parameter_vector.h"
#include "simulation/measures.h"

namespace vexa {

namespace {

// The text a run wrote on its console.
std::string read_back(FILE* file) {
    std::string text;
    if (file == nullptr) return text;
    std::fflush(file);
    std::rewind(file);
    char buffer[4096];
    size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0) text.append(buffer, got);
    return text;
}

// A console the run can write to: a temporary file, or nowhere when none can be made.
struct CapturedConsole {
    FILE* file = std::tmpfile();
    FILE* null = nullptr;
    CapturedConsole() {
#ifdef _WIN32
        if (file == nullptr) null = std::fopen("NUL", "w");
#else
        if (file == nullptr) null = std::fopen("/dev/null", "w");
#endif
    }
    CapturedConsole(const CapturedConsole&) = delete;
    CapturedConsole& operator=(const CapturedConsole&) = delete;
    ~CapturedConsole() {
        if (file != nullptr) std::fclose(file);
        if (null != nullptr) std::fclose(null);
    }
    FILE* get() const { return file != nullptr ? file : null; }
};

// One line for whatever ended a run.
template <class Body>
std::string guarded(Body&& body) noexcept {
    try {
        body();
        return "";
    } catch (const VexaError& error) {
        return error.what();
    } catch (const std::bad_alloc&) {
        return "vexa: out of memory; the run was stopped";
    } catch (const std::exception& error) {
        return std::string("vexa: the run was stopped: ") + error.what();
    } catch (...) {
        return "vexa: the run was stopped by an unexpected error";
    }
}

}  // namespace

namespace {

// Takes what a host asked for from the samples as they are drawn: the networks of a
// simulation, the distributions of a goodness of fit's samples.
Observer sample_collector(const TaskRequest& request, TaskResult& result) {
    Observer collector;
    collector.sample_drawn = [keep = request.keep_networks, &result](const SampleDrawn& e) {
        std::visit(
            [&](const auto* store) {
                using Store = std::remove_cvref_t<decltype(*store)>;
                if (keep) result.networks.push_back(matrix_of(*store));
                if (auto* scratch = std::get_if<ScratchOf<Store>*>(&e.measured))
                    result.sample_profiles.push_back(profile_of(*store, **scratch));
            },
            e.network);
    };
    return collector;
}

// The observed network's distributions, as a goodness of fit measures each sample's.
template <class Store>
NetworkProfile observed_profile(const std::vector<double>& adjacency, int n) {
    Store store;
    from_matrix(adjacency, n, store);
    ScratchOf<Store> scratch;
    measure(store, scratch);
    return profile_of(store, scratch);
}

// Checks the request's settings and fills in what a run file's reader would derive.
void check_request(const TaskRequest& request, RunSettings& s) {
    if (s.task == Task::bayesian_goodness_of_fit) {
        if (request.parameter_sets.empty()) {
            throw SettingError(format_message(
                "vexa: %s asks for a Bayesian goodness of fit without parameter sets",
                s.run_file.c_str()));
        }
        s.sample_count = static_cast<int32_t>(request.parameter_sets.size());
    }
    if (s.node_count < 1) {
        throw SettingError(format_message("vexa: %s: the network needs at least 1 node, found %d",
                                          s.run_file.c_str(), s.node_count));
    }
    const size_t cells = static_cast<size_t>(s.node_count) * static_cast<size_t>(s.node_count);
    const bool network_given = s.task != Task::simulation || !request.adjacency.empty();
    if (network_given && request.adjacency.size() != cells) {
        throw InputFileError(format_message(
            "vexa: %s: the network has %zu values for %d x %d pairs", s.run_file.c_str(),
            request.adjacency.size(), s.node_count, s.node_count));
    }
    if (!request.constraint.empty() && request.constraint.size() != cells) {
        throw InputFileError(format_message(
            "vexa: %s: the constraint has %zu values for %d x %d pairs", s.run_file.c_str(),
            request.constraint.size(), s.node_count, s.node_count));
    }
    if (s.task != Task::estimation) {
        if (s.sample_count < 1) {
            throw SettingError(
                format_message("vexa: %s (sample_count): at least 1 network must be kept, found %d",
                               s.run_file.c_str(), s.sample_count));
        }
        s.thinning_interval = std::trunc(s.iterations / static_cast<double>(s.sample_count));
    }
}

void label_result(const Model& model, TaskResult& result) {
    result.labels = parameter_labels(model, LabelStyle::summary);
    for (const ParameterLabel& label : parameter_labels(model, LabelStyle::gof))
        result.gof_labels.push_back(label.name);
    for (const ParameterLabel& label : parameter_labels(model, LabelStyle::sample))
        result.sample_columns.push_back(label.name);
    result.measure_names = measure_names(model.kind);
}

}  // namespace

TaskResult run_request(const TaskRequest& request) noexcept {
    TaskResult result;
    CapturedConsole console;
    result.error = guarded([&] {
        RunContext context;
        context.settings = request.settings;
        RunSettings& s = context.settings;
        if (s.run_file.empty()) s.run_file = "the request";
        take_options(context, request.options);
        context.console = console.get();
        check_request(request, s);
        context.model = request_model(request);
        result.slots = effect_slots(request, context.model);
        context.names = form_output_names(s.output_directory, s.network_name);
        context.write_files = request.write_files;
        context.update_directory = s.output_directory;
        context.records = &result.records;
        label_result(context.model, result);
        if (!request.adjacency.empty()) context.adjacency = &request.adjacency;
        if (!request.constraint.empty()) context.constraint = &request.constraint;
        context.parameter_sets = &request.parameter_sets;
        const Observer host = observe_all({request.observer, sample_collector(request, result)});
        context.observer = &host;
        const bool digraph = s.network_kind == NetworkKind::digraph;
        if (digraph) {
            run_digraph_task(context);
        } else {
            run_graph_task(context);
        }
        if (result.records.gof) {
            result.observed_profile =
                digraph ? observed_profile<Digraph>(request.adjacency, s.node_count)
                        : observed_profile<Graph>(request.adjacency, s.node_count);
        }
    });
    result.console = read_back(console.file);
    return result;
}

FileRunResult run_file_request(const std::string& run_file, const RunOptions& options) noexcept {
    FileRunResult result;
    CapturedConsole console;
    result.error = guarded([&] {
        if (run_file.empty()) throw RunFileError("vexa: no run file was given");
        {
            // Only for the names: where the run's files will go.
            const RunFile file = read_run_file(run_file, nullptr);
            result.output_directory = file.settings.output_directory;
            result.network_name = file.settings.network_name;
        }
        RunOptions quiet = options;
        quiet.console = console.get();
        result.not_converged = run_driver(run_file, quiet) == RunOutcome::not_converged;
    });
    result.console = read_back(console.file);
    return result;
}

}  // namespace vexa
