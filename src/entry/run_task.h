#pragma once
// One task of a run, written once for every store type: the network and the chains' setup,
// the start statistics, then the task itself, its records handed to the writers of report/
// and to the host. Nothing here computes a result; it wires the reader's settings to a task,
// the task's events to the console and the per-sample files, and its record to the reports.

#include <cmath>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "base/errors.h"
#include "base/memory.h"
#include "effects/digraph/digraph_catalogue.h"
#include "effects/graph/graph_catalogue.h"
#include "entry/console.h"
#include "entry/embedding.h"
#include "entry/memory_plan.h"
#include "entry/missing_setup.h"
#include "entry/network_reading.h"
#include "entry/run_context.h"
#include "estimation/exact_likelihood.h"
#include "model/parameter_vector.h"
#include "model/terms.h"
#include "network/sparse_digraph.h"
#include "network/sparse_graph.h"
#include "report/estimation_files.h"
#include "report/gof_files.h"
#include "report/logodds.h"
#include "report/sample_files.h"
#include "report/simulation_report.h"
#include "report/spss.h"
#include "report/statistics_report.h"
#include "report/update_files.h"
#include "sampler/feasibility.h"
#include "sampler/proposal_choice.h"
#include "simulation/chains_sampling.h"

namespace vexa {

// Reading and drawing a network of the store type; defined beside each network kind.
template <class Store>
struct KindTraits;

namespace task_detail {

// Goodness of fit after an estimation: 1,000 samples, one every K steps (the estimation's
// steps per draw, which it chose so that draws are far enough apart), after 100 K steps of
// burn-in.
inline constexpr double gof_after_estimation_samples = 1000.0;
inline constexpr double gof_after_estimation_burn_in_draws = 100.0;

inline GofPlan gof_plan_after_estimation(double steps_per_draw) {
    const double K = std::max(1.0, std::ceil(steps_per_draw));
    return {{gof_after_estimation_samples * K, K}, gof_after_estimation_burn_in_draws * K, true};
}

inline GofPlan gof_plan(const RunSettings& s) {
    return {{s.iterations, s.thinning_interval}, s.burn_in, false};
}

// The observers of one task: the console, the files written as the task goes, the host's.
struct Listeners {
    Console console;
    std::vector<Observer> parts;

    Observer all(const RunContext& context) const {
        std::vector<Observer> every = parts;
        if (context.observer != nullptr) every.push_back(*context.observer);
        return observe_all(std::move(every));
    }
};

void start_console(Listeners& listeners, RunContext& context);

// One line when the run was asked to save its final network but is no simulation.
void say_no_network_saved(const RunContext& context);

// What a matrix reader read without refusing it, one line each, on the run's console.
// The run's constraint, from its file or the host's matrix; null when it has none.
std::unique_ptr<DyadMask> constraint_mask(const RunContext& context, NetworkKind kind);

void say_notes(const RunContext& context, const MatrixNotes& notes, const char* what,
               const std::string& path);

// A cap below a degree the observed network already has could never hold: the chain would
// start outside the networks the cap allows.
void refuse_cap_below(const RunSettings& s, NetworkKind kind, int node, int32_t degree);

template <class Store>
void check_degree_cap(const RunSettings& s, const Store& observed) {
    if (!s.degree_cap_given) return;
    // The degree a cap limits: a graph's degree, a digraph's out-degree.
    const auto capped = [&](int v) -> int32_t {
        if constexpr (Store::kind == NetworkKind::graph) {
            return observed.degree[static_cast<size_t>(v)];
        } else {
            return observed.out_degree(v);
        }
    };
    int top = 0;
    for (int v = 1; v < observed.node_count; ++v)
        if (capped(v) > capped(top)) top = v;
    if (capped(top) > s.degree_cap) refuse_cap_below(s, Store::kind, top, capped(top));
}

// The network, the terms and the sampler's settings, and the start statistics written.
template <class Store>
void prepare(RunContext& context, ChainSetup<Store>& setup) {
    const RunSettings& s = context.settings;
    const int n = s.node_count;
    MatrixNotes notes;
    if (context.adjacency != nullptr) {
        from_matrix(*context.adjacency, n, setup.observed);
    } else if (s.task == Task::simulation) {
        setup.observed = KindTraits<Store>::random_start(context);
    } else {
        NetworkReading reading(context);
        setup.observed = KindTraits<Store>::read(s.network_file, n, &notes, reading.progress());
        reading.done(tie_count(setup.observed));
    }
    say_notes(context, notes, "network", s.network_file);
    if (context.observed_profile) *context.observed_profile = measured_profile(setup.observed);
    if (s.task != Task::simulation || context.adjacency != nullptr)
        check_degree_cap(s, setup.observed);
    setup.terms = make_terms<Store>(context.model);
    if (context.write_files) {
        write_statistics_file(
            context.names.start_statistics, context.model,
            statistics_of(setup.observed, setup.terms, context.model.parameter_count()));
    }
    setup.mask = constraint_mask(context, Store::kind);
    setup.sampler.proposal = s.proposal;
    if (context.automatic && !context.sampler_named)
        setup.sampler.proposal = automatic_proposal(s.proposal, setup.observed, setup.terms);
    setup.sampler.max_degree = s.degree_cap;
    setup.sampler.mask = setup.mask.get();
    take_missing(context, setup, std::move(notes.missing));
    check_proposals_possible(setup.observed, setup.sampler);
    // Files of every sample's counts read them all; otherwise a chain keeps what its terms read.
    const bool samples_read_counts =
        s.task == Task::simulation && context.write_files && s.outputs.read_counts();
    setup.keeps =
        samples_read_counts ? Bookkeeping::all : chain_keeps(setup.terms, setup.sampler.proposal);
}

// The console of a sampling task and, when the run writes files, its SPSS syntax (loading
// `table`) and the per-sample files, written as the samples come.
template <class Store>
std::unique_ptr<SampleFiles<Store>> start_sampling(RunContext& context, const Store& network,
                                                   const std::string& table, Listeners& listeners) {
    start_console(listeners, context);
    if (!context.write_files) return nullptr;
    const RunSettings& s = context.settings;
    write_spss_file(context.names.sim, context.model, table);
    auto files =
        std::make_unique<SampleFiles<Store>>(network, s.outputs, context.names, s.network_name);
    listeners.parts.push_back(sample_file_observer(*files));
    return files;
}

// Process 0 of a simulation that saves its final network: a file that cannot be written is
// refused before the simulation runs, and the network is written when the sampling ends.
void start_saving_network(RunContext& context, Listeners& listeners);

template <class Store>
void simulate_task(RunContext& context, ChainSetup<Store>& setup,
                   const std::vector<double>& parameters) {
    const RunSettings& s = context.settings;
    Listeners listeners;
    const auto files = start_sampling(context, setup.observed,
                                      context.names.sample_statistics + ".txt", listeners);
    start_saving_network(context, listeners);
    const Observer observer = listeners.all(context);
    SimulationRecord record =
        context.chains.chains > 1
            ? simulate_chains(setup, parameters, s.burn_in, gof_plan(s).sampling, context.chains,
                              context.seeds, observer)
            : simulate(setup, parameters, s.burn_in, gof_plan(s).sampling, context.rng,
                       context.seeds, observer);
    if (files) {
        files->close();
        write_simulation_files(context.names, context.model, s.node_count, record);
    }
    if (context.records != nullptr) context.records->simulation = std::move(record);
}

template <class Store>
void gof_task(RunContext& context, const ChainSetup<Store>& setup,
              const std::vector<double>& parameters, const GofPlan& plan) {
    Listeners listeners;
    const auto files = start_sampling(context, setup.observed, context.names.simulation, listeners);
    const Observer observer = listeners.all(context);
    GofRecord record =
        context.chains.chains > 1
            ? goodness_of_fit_chains(setup, parameters, plan, context.chains, context.seeds,
                                     observer)
            : goodness_of_fit(setup, parameters, plan, context.rng, context.seeds, observer);
    if (files) {
        files->close();
        write_gof_files(context.names, context.model, record);
    }
    if (context.records != nullptr) context.records->gof = std::move(record);
}

// The parameter sets of the run file's sets file, as many as the run asks for.
std::vector<std::vector<double>> parameter_sets_of(const RunContext& context);

// What the sets' draws tell of the sets: some ended at the empty or the complete network.
void say_bounds(const RunContext& context, const GofRecord& record);

template <class Store>
void bayesian_gof_task(RunContext& context, const ChainSetup<Store>& setup) {
    const RunSettings& s = context.settings;
    const std::vector<std::vector<double>> sets = parameter_sets_of(context);
    Listeners listeners;
    const auto files = start_sampling(context, setup.observed, context.names.simulation, listeners);
    const Observer observer = listeners.all(context);
    const int32_t p = context.model.parameter_count();
    GofRecord record = context.chains.chains > 1
                           ? bayesian_goodness_of_fit_chains(
                                 setup, sets, s.burn_in, p, context.chains, context.seeds, observer)
                           : bayesian_goodness_of_fit(setup, sets, s.burn_in, p, context.rng,
                                                      context.seeds, observer);
    if (files) {
        files->close();
        write_gof_files(context.names, context.model, record);
    }
    say_bounds(context, record);
    if (context.records != nullptr) context.records->gof = std::move(record);
}

// The density effect (a graph's edge, a digraph's arc) started at exactly 0 starts at the log-odds
// of a tie among the observed dyads. At 0 a digraph's chain would first run to networks of
// density one half, and phase 1 would measure the covariance there.
template <class Store>
void adjust_start(const Model& model, const ChainSetup<Store>& setup,
                  std::vector<double>& parameters) {
    const size_t row = Store::kind == NetworkKind::graph ? static_cast<size_t>(GraphEffect::edge)
                                                         : static_cast<size_t>(DigraphEffect::arc);
    const EffectSetting& density_effect = model.structural[row];
    if (density_effect.slot != -1 && density_effect.value == 0.0) {
        const double observed_dyads = dyad_count(setup.observed.node_count, Store::kind) -
                                      static_cast<double>(setup.missing.count());
        const double d = setup.missing.empty()
                             ? density(setup.observed)
                             : static_cast<double>(tie_count(setup.observed)) / observed_dyads;
        const double log_odds = std::log(d / (1.0 - d));
        if (std::isfinite(log_odds))
            parameters[static_cast<size_t>(density_effect.slot)] = log_odds;
    }
}

EstimationSettings estimation_settings(const RunSettings& s);

// A pseudo-likelihood estimate this far from 0 comes from nearly collinear statistics rather
// than from the data: no place to start a chain.
inline constexpr double plausible_start_limit = 30.0;

// The automatic mode starts from the maximum likelihood estimate where a model of independent
// dyads has it exactly, else from the maximum pseudo-likelihood estimate when it is finite and
// plausible, else from the run file's values; the console says which. True when the start is
// the exact estimate.
template <class Store>
bool automatic_start(RunContext& context, ChainSetup<Store>& setup, std::vector<double>& parameters,
                     Console& console) {
    Rng rng;
    context.seeds.reseed(rng);
    const auto count = static_cast<int32_t>(parameters.size());
    const PseudoLikelihood fit =
        starting_estimate(setup.observed, setup.terms, count, setup.sampler, rng);
    bool plausible = fit.finite;
    for (const double value : fit.estimates)
        plausible = plausible && std::fabs(value) <= plausible_start_limit;
    if (!plausible) {
        console.text.say(
            "vexa: the pseudo-likelihood has no usable maximum; starting from the run file's "
            "values\n");
        return false;
    }
    parameters = fit.estimates;
    if (fit.exact) {
        console.text.say(
            "vexa: starting from the maximum likelihood estimate, exact for a model of "
            "independent dyads (%lld dyads); phase 2 is not needed\n",
            static_cast<long long>(fit.dyads_used));
        return true;
    }
    console.text.say("vexa: starting from the pseudo-likelihood estimate (%lld dyads%s)\n",
                     static_cast<long long>(fit.dyads_used), fit.sampled ? ", sampled" : "");
    return false;
}

// The files an estimation leaves at its end: the end statistics, the change statistics and
// log-odds of a converged estimate, and the update files.
template <class Store>
void write_estimation_end(RunContext& context, ChainSetup<Store>& setup,
                          const EstimationRecord& record) {
    const OutputNames& names = context.names;
    write_statistics_file(names.end_statistics, context.model, record.end_statistics);
    if (record.converged) {
        OutFile changes(names.change_statistics, OpenMode::truncate);
        OutFile logodds(names.logodds, OpenMode::truncate);
        write_change_statistics_and_logodds(setup.observed, setup.terms, record.estimates,
                                            parameter_labels(context.model, LabelStyle::column),
                                            changes, logodds);
        changes.close();
        logodds.close();
    }
    write_update_files(context.model, context.update_directory);
}

template <class Store>
void estimation_task(RunContext& context, ChainSetup<Store>& setup,
                     std::vector<double> parameters) {
    const RunSettings& s = context.settings;
    if (parameters.empty()) {
        throw SettingError(format_message(
            "vexa: run file '%s' includes no effect, so there is nothing to estimate",
            s.run_file.c_str()));
    }
    adjust_start(context.model, setup, parameters);
    EstimationSettings settings = estimation_settings(s);
    settings.automatic = context.automatic;
    settings.method = context.method;
    settings.chains = context.chains;
    Listeners listeners;
    start_console(listeners, context);
    // Estimates handed over from an earlier run are a better start than a pseudo-likelihood.
    if (context.automatic && context.start_from.empty())
        settings.exact_start = automatic_start(context, setup, parameters, listeners.console);
    if (context.write_files) {
        write_estimation_start(context.names, s.network_name, settings, s.estimation_runs);
        listeners.parts.push_back(
            estimation_file_observer(context.names, listeners.console.labels));
    }
    EstimationRecord record =
        estimate_model(setup, parameters, settings, s.estimation_runs, context.confirm, context.rng,
                       context.seeds, listeners.all(context));
    unpack(context.model, record.estimates);
    const std::string reported = reported_run_text(record);
    if (!reported.empty()) listeners.console.text.say("vexa: %s\n", reported.c_str());
    if (context.write_files) {
        write_reported_run(context.names, record);
        write_estimation_end(context, setup, record);
    }
    if (!record.converged) context.outcome = RunOutcome::not_converged;
    const bool gof_after = s.gof_after_estimation && record.converged;
    const double steps_per_draw = record.runs.empty() ? 0.0 : record.runs.back().steps_per_draw;
    if (context.records != nullptr) context.records->estimation = std::move(record);
    if (!gof_after) return;
    // The front end of digraphs waits for this line before it reads the goodness of fit.
    if (Store::kind == NetworkKind::digraph) listeners.console.text.say("gof!\n");
    gof_task(context, setup, pack(context.model), gof_plan_after_estimation(steps_per_draw));
}

}  // namespace task_detail

// Runs the task of the context's run file on a network of the store type.
template <class Store>
void run_task(RunContext& context) {
    const RunSettings& s = context.settings;
    std::vector<double> parameters = pack(context.model);
    if (s.node_count < 1) {
        throw SettingError(format_message("vexa: run file '%s': node_count %d is below 1",
                                          s.run_file.c_str(), s.node_count));
    }
    // The plan reckons with dense stores; the sparse ones grow with the ties they are given.
    if constexpr (!std::is_same_v<Store, SparseGraph> && !std::is_same_v<Store, SparseDigraph>) {
        check_task_memory(s, Store::kind, static_cast<int>(parameters.size()),
                          available_memory_bytes(), context.chains.chains);
    }
    // A host's listener is called on the thread that started the run; the engine's own may
    // hear a chain's samples from the chain's thread.
    context.chains.calling_thread_events = context.observer != nullptr;
    context.chains.networks_to_root = s.outputs.any() || !context.save_network.empty();
    if (context.write_files) check_sample_files_disk(s, available_disk_bytes(s.output_directory));
    task_detail::say_no_network_saved(context);
    ChainSetup<Store> setup;
    task_detail::prepare(context, setup);
    if constexpr (std::is_same_v<Store, SparseGraph> || std::is_same_v<Store, SparseDigraph>) {
        // Every chain works on a copy of the network read; a simulation from one chain works
        // on the network itself.
        const int32_t K = context.chains.chains;
        const int copies = s.task == Task::simulation && K == 1 ? 0 : K;
        check_copies_memory(s, held_bytes(setup.observed), copies, available_memory_bytes());
    }
    switch (s.task) {
        case Task::simulation: task_detail::simulate_task(context, setup, parameters); break;
        case Task::estimation: task_detail::estimation_task(context, setup, parameters); break;
        case Task::goodness_of_fit:
            task_detail::gof_task(context, setup, parameters, task_detail::gof_plan(s));
            break;
        case Task::bayesian_goodness_of_fit: task_detail::bayesian_gof_task(context, setup); break;
    }
}

}  // namespace vexa
