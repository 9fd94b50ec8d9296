#pragma once
// The tasks of a run, written once for every store type: the common preparation (parameter
// vector, network, start statistics, constraint), then simulation, estimation and goodness of
// fit. What differs between the network kinds (reading and drawing a network, the descriptive
// measures, the per-sample files) comes from the kind's traits, KindTraits<Store>.

#include <cmath>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "base/errors.h"
#include "base/memory.h"
#include "base/text_file.h"
#include "entry/embedding.h"
#include "entry/memory_plan.h"
#include "entry/run_context.h"
#include "estimation/confirmation.h"
#include "estimation/diagnostics.h"
#include "estimation/estimation.h"
#include "model/parameter_labels.h"
#include "model/parameter_vector.h"
#include "model/terms.h"
#include "network/sparse_digraph.h"
#include "network/sparse_graph.h"
#include "report/bayesian_report.h"
#include "report/convergence_report.h"
#include "report/estimation_report.h"
#include "report/gof_report.h"
#include "report/logodds.h"
#include "report/simulation_report.h"
#include "report/spss.h"
#include "report/statistics_report.h"
#include "report/update_files.h"
#include "sampler/steps.h"
#include "simulation/bayesian_gof.h"
#include "simulation/goodness_of_fit.h"
#include "simulation/sampling.h"

namespace vexa {

template <class Store>
struct KindTraits;

namespace task_detail {

// What a goodness of fit samples: the plan, the burn-in before it, and whether it follows an
// estimation (whose run file has no sampling rows, so the plan comes from the estimation).
struct GofPlan {
    SamplingPlan sampling;
    double burn_in = 0.0;
    bool after_estimation = false;
};

inline GofPlan gof_plan(const RunSettings& s) {
    return {{s.iterations, s.thinning_interval}, s.burn_in, false};
}

// Goodness of fit after an estimation: 1,000 samples, one every K steps (the estimation's
// steps per draw, which it chose so that draws are far enough apart), after 100 K steps of
// burn-in.
inline constexpr double gof_after_estimation_samples = 1000.0;
inline constexpr double gof_after_estimation_burn_in_draws = 100.0;

inline GofPlan gof_plan_after_estimation(double steps_per_draw) {
    const double K = std::max(1.0, std::ceil(steps_per_draw));
    return {{gof_after_estimation_samples * K, K}, gof_after_estimation_burn_in_draws * K, true};
}

inline SamplingPlan sampling_plan(const RunSettings& s) { return gof_plan(s).sampling; }

// The model statistics of a network, one per slot.
template <class Store>
std::vector<double> statistics_of(const Store& store, const std::vector<Term<Store>>& terms,
                                  int count) {
    std::vector<double> statistics(static_cast<size_t>(count), 0.0);
    Workspace workspace;
    prepare_workspace(workspace, terms);
    compute_totals(store, terms, workspace, statistics);
    return statistics;
}

template <class Store>
void write_statistics_file(const std::string& path, const Model& model, const Store& store,
                           const std::vector<Term<Store>>& terms) {
    const std::vector<double> statistics = statistics_of(store, terms, model.parameter_count());
    OutFile out(path, OpenMode::truncate);
    write_statistics_report(out, parameter_labels(model, LabelStyle::report, LabelOrder::catalogue),
                            statistics);
    out.close();
}

// The SPSS syntax loads the table whose columns it names: a simulation's sample statistics
// file (its simulation file is the prose report), or the simulation file of a goodness of fit,
// which holds the sample's table.
inline void write_spss(const RunContext& context, const std::string& table) {
    write_spss_file(context.names.sim, context.model, table);
}

// What a matrix reader read without refusing it, one line each, on the run's console.
inline void say_notes(const RunContext& context, const MatrixNotes& notes, const char* what,
                      const std::string& path) {
    for (const std::string& line : matrix_note_lines(notes, what, path))
        std::fprintf(context.console, "%s\n", line.c_str());
}

// The degree a cap limits: a graph's degree, a digraph's out-degree.
template <class Store>
int32_t capped_degree(const Store& store, int v) {
    if constexpr (Store::kind == NetworkKind::graph) {
        return store.degree[static_cast<size_t>(v)];
    } else {
        return store.out_degree(v);
    }
}

// A cap below a degree the observed network already has could never hold: the chain would
// start outside the networks the cap allows.
template <class Store>
void check_degree_cap(const RunSettings& s, const Store& observed) {
    if (!s.degree_cap_given) return;
    int top = 0;
    for (int v = 1; v < observed.node_count; ++v)
        if (capped_degree(observed, v) > capped_degree(observed, top)) top = v;
    const int32_t degree = capped_degree(observed, top);
    if (degree <= s.degree_cap) return;
    const char* word = Store::kind == NetworkKind::graph ? "degree" : "out-degree";
    throw SettingError(format_message(
        "vexa: run file '%s', line %d (degree_cap): the cap %d is below the %s %d of node %d "
        "(row %d of network file '%s'); it must be at least the observed network's largest %s",
        s.run_file.c_str(), s.degree_cap_line, s.degree_cap, word, degree, top + 1, top + 1,
        s.network_file.c_str(), word));
}

// Everything a task needs besides the context: the network, the terms and the sampler's
// settings.
template <class Store>
struct TaskSetup {
    Store observed;
    std::vector<Term<Store>> terms;
    std::unique_ptr<DyadMask> mask;
    SamplerSettings sampler;
};

template <class Store>
void simulate(RunContext& context, TaskSetup<Store>& setup, const std::vector<double>& parameters) {
    using Traits = KindTraits<Store>;
    const RunSettings& s = context.settings;
    const OutputNames& names = context.names;
    const SamplingPlan plan = sampling_plan(s);
    const int p = static_cast<int>(parameters.size());
    write_spss(context, names.sample_statistics + ".txt");
    Chain<Store> chain = make_chain(setup.observed, setup.terms, p, setup.sampler, context.rng);
    run_burn_in(chain, parameters.data(), s.burn_in, context.seeds, context.progress);

    context.seeds.reseed(context.rng);
    const std::vector<ParameterLabel> labels =
        parameter_labels(context.model, LabelStyle::simulation);
    {
        OutFile report(names.simulation, OpenMode::truncate);
        write_simulation_heading(report, Store::kind, setup.observed.node_count, labels, parameters,
                                 plan);
        report.close();
        OutFile parameter_file(names.parameter, OpenMode::truncate);
        write_parameter_lines(parameter_file, labels, parameters);
        parameter_file.close();
    }
    const std::vector<ParameterLabel> columns = parameter_labels(context.model, LabelStyle::sample);
    OutFile statistics(names.sample_statistics + ".txt", OpenMode::truncate);
    write_sample_statistics_header(statistics, columns);
    OutFile accept(names.accept, OpenMode::truncate);
    write_accept_heading(accept, Store::kind);
    typename Traits::SampleFiles files(setup.observed, s, names);
    typename Traits::Scratch scratch;

    const double accepted = run_proposals(
        chain, parameters.data(), plan, context.progress, [&](double i, double interval_accepted) {
            recount_uncarried(chain);
            write_sample_statistics_row(statistics, i, chain.statistics, columns);
            if (Embedding* host = context.embedding) {
                host->sample_numbers.push_back(i);
                host->sample_statistics.emplace_back(chain.statistics.begin(),
                                                     chain.statistics.begin() + p);
                if (host->keep_networks) host->networks.push_back(matrix_of(setup.observed));
            }
            files.write_rows(setup.observed, scratch, nullptr);
            write_accept_row(accept, i, interval_accepted / plan.interval);
            if (s.outputs.pajek)
                Traits::write_sample_network(setup.observed, i, names, s.network_name);
        });
    write_accepted_total(accept, Store::kind, accepted);
    if (context.embedding) context.embedding->accepted = accepted;
    accept.close();
    statistics.close();
    files.close();
    OutFile report(names.simulation, OpenMode::append);
    write_accepted_total(report, Store::kind, accepted);
    report.close();
    write_statistics_file(names.end_statistics, context.model, setup.observed, setup.terms);
}

template <class Store>
void goodness_of_fit(RunContext& context, TaskSetup<Store>& setup,
                     const std::vector<double>& parameters, const GofPlan& gof) {
    const SamplingPlan& plan = gof.sampling;
    using Traits = KindTraits<Store>;
    const RunSettings& s = context.settings;
    const OutputNames& names = context.names;
    const Model& model = context.model;
    const int p = static_cast<int>(parameters.size());
    write_spss(context, names.simulation);
    Store working = setup.observed;
    Chain<Store> chain = make_chain(working, setup.terms, p, setup.sampler, context.rng);
    const double expected_samples = planned_samples(plan);
    if (expected_samples < 1.0) {
        throw SettingError(format_message(
            "vexa: goodness of fit keeps no sample: %.0f proposals at 1 sample per %.0f proposals "
            "(iterations must be at least sample_count)",
            plan.proposals, plan.interval));
    }
    run_burn_in(chain, parameters.data(), gof.burn_in, context.seeds, context.progress);

    context.seeds.reseed(context.rng);

    // The observed network's values, before sampling.
    const std::vector<double> observed_statistics = statistics_of(setup.observed, setup.terms, p);
    typename Traits::Scratch scratch;
    const SampleMeasures observed_measures = Traits::measure(setup.observed, scratch);
    Embedding* host = context.embedding;
    if (host) host->observed_profile = profile_of(setup.observed, scratch);
    {
        OutFile report(names.gof, OpenMode::append);
        write_gof_heading(report, Store::kind, parameter_labels(model, LabelStyle::simulation),
                          parameters, plan);
        if (gof.after_estimation) write_gof_plan_after_estimation(report, plan, gof.burn_in);
        report.close();
    }

    GofSample sample;
    sample.statistics.assign(static_cast<size_t>(p), {});
    sample.measures.assign(Traits::measure_names().size(), {});
    const size_t reserve = static_cast<size_t>(std::min(expected_samples, 1e7));
    for (auto& row : sample.statistics) row.reserve(reserve);

    const std::vector<ParameterLabel> columns = parameter_labels(model, LabelStyle::sample);
    OutFile statistics(names.sample_statistics + ".txt", OpenMode::truncate);
    write_sample_statistics_header(statistics, columns);
    typename Traits::SampleFiles files(working, s, names);
    typename Traits::GofExtras extras(setup.observed);
    std::unique_ptr<OutFile> accept;
    if (Traits::gof_writes_accept) {
        accept = std::make_unique<OutFile>(names.accept, OpenMode::truncate);
        write_accept_heading(*accept, Store::kind);
    }
    recount(chain);

    const double accepted = run_proposals(
        chain, parameters.data(), plan, context.progress, [&](double i, double interval_accepted) {
            if (accept) write_accept_row(*accept, i, interval_accepted / plan.interval);
            extras.record(working);
            recount_uncarried(chain);
            write_sample_statistics_row(statistics, i, chain.statistics, columns);
            for (size_t k = 0; k < static_cast<size_t>(p); ++k)
                sample.statistics[k].push_back(chain.statistics[k]);
            sample.numbers.push_back(i);
            const SampleMeasures measures = Traits::measure(working, scratch);
            if (host) host->sample_profiles.push_back(profile_of(working, scratch));
            for (size_t m = 0; m < measures.values.size(); ++m)
                sample.measures[m].push_back(measures.values[m]);
            sample.quartiles.push_back(measures.quartiles);
            files.write_rows(working, scratch, &measures);
            if (s.outputs.pajek) Traits::write_sample_network(working, i, names, s.network_name);
        });
    statistics.close();
    files.close();
    if (accept) {
        write_accepted_total(*accept, Store::kind, accepted);
        accept->close();
    }

    OutFile report(names.gof, OpenMode::append);
    write_gof_comparisons(report, Store::kind, accepted, plan.proposals,
                          parameter_labels(model, LabelStyle::gof), observed_statistics,
                          Traits::measure_names(), observed_measures.values, sample);
    extras.write(report);
    write_gof_quartiles(report, observed_measures.quartiles, sample);
    report.close();
    const Mahalanobis distance = mahalanobis(sample.statistics, observed_statistics);
    {
        OutFile table(names.simulation, OpenMode::truncate);
        write_gof_sample_table(table, columns, sample, distance);
        table.close();
    }
    OutFile tail(names.gof, OpenMode::append);
    write_gof_mahalanobis(tail, Store::kind, distance);
    tail.close();
    if (host) {
        host->gof_done = true;
        host->accepted = accepted;
        host->observed_statistics = observed_statistics;
        host->measure_names = Traits::measure_names();
        host->observed_measures = observed_measures;
        host->gof = std::move(sample);
        host->distance = distance;
    }
    if (Traits::gof_writes_end_statistics) {
        write_statistics_file(names.end_statistics, model, working, setup.terms);
    }
}

// Goodness of fit over the parameter sets of the run file's sets file: one draw per set, the
// end of a burn-in chain from the observed network under that set.
template <class Store>
void bayesian_goodness_of_fit(RunContext& context, TaskSetup<Store>& setup) {
    using Traits = KindTraits<Store>;
    const RunSettings& s = context.settings;
    const OutputNames& names = context.names;
    const Model& model = context.model;
    const int p = model.parameter_count();
    if (p == 0) {
        throw SettingError(format_message(
            "vexa: run file '%s' includes no effect, so there is no parameter set to draw under",
            s.run_file.c_str()));
    }
    const ParameterSets read = read_parameter_sets(s.parameter_sets_file, p, s.sample_count);
    const std::vector<std::vector<double>>& sets = read.sets;
    const int count = static_cast<int>(sets.size());
    if (count < s.sample_count) {
        std::fprintf(context.console,
                     "vexa: parameter sets file '%s' holds %d parameter sets where sample_count "
                     "asks for %d; all %d are used\n",
                     s.parameter_sets_file.c_str(), count, s.sample_count, count);
        std::fflush(context.console);
    }
    write_spss(context, context.names.simulation);

    const std::vector<double> observed_statistics = statistics_of(setup.observed, setup.terms, p);
    typename Traits::Scratch scratch;
    const SampleMeasures observed_measures = Traits::measure(setup.observed, scratch);
    {
        OutFile report(names.gof, OpenMode::append);
        write_bayesian_heading(report, parameter_labels(model, LabelStyle::simulation),
                               summarise_sets(sets, p), count, s.burn_in);
        report.close();
    }

    GofSample sample;
    sample.statistics.assign(static_cast<size_t>(p), {});
    sample.measures.assign(Traits::measure_names().size(), {});
    const std::vector<ParameterLabel> columns = parameter_labels(model, LabelStyle::sample);
    OutFile statistics(names.sample_statistics + ".txt", OpenMode::truncate);
    write_sample_statistics_header(statistics, columns);
    Store working = setup.observed;
    typename Traits::SampleFiles files(working, s, names);
    typename Traits::GofExtras extras(setup.observed);
    std::unique_ptr<OutFile> accept;
    if (Traits::gof_writes_accept) {
        accept = std::make_unique<OutFile>(names.accept, OpenMode::truncate);
        write_accept_heading(*accept, Store::kind);
    }
    Chain<Store> chain = make_chain(working, setup.terms, p, setup.sampler, context.rng);
    // A chain of b steps takes ceil(b) of them.
    const double steps_per_set = s.burn_in > 0.0 ? std::ceil(s.burn_in) : 0.0;
    int empty = 0;
    int complete = 0;
    const double accepted = run_parameter_sets(
        chain, setup.observed, sets, s.burn_in, context.seeds, [&](size_t d, double taken) {
            const double number = static_cast<double>(d + 1);
            context.progress.say("%.0f\t", number);
            if (accept)
                write_accept_row(*accept, number,
                                 steps_per_set > 0.0 ? taken / steps_per_set : 0.0);
            extras.record(working);
            write_sample_statistics_row(statistics, number, chain.statistics, columns);
            for (size_t k = 0; k < static_cast<size_t>(p); ++k)
                sample.statistics[k].push_back(chain.statistics[k]);
            sample.numbers.push_back(number);
            const SampleMeasures measures = Traits::measure(working, scratch);
            for (size_t m = 0; m < measures.values.size(); ++m)
                sample.measures[m].push_back(measures.values[m]);
            sample.quartiles.push_back(measures.quartiles);
            files.write_rows(working, scratch, &measures);
            if (s.outputs.pajek)
                Traits::write_sample_network(working, number, names, s.network_name);
            const Bound bound = bound_of(working);
            empty += bound == Bound::empty ? 1 : 0;
            complete += bound == Bound::complete ? 1 : 0;
        });
    context.progress.say("\nAccepted %.0f changes.\n", accepted);
    statistics.close();
    files.close();
    if (accept) {
        write_accepted_total(*accept, Store::kind, accepted);
        accept->close();
    }

    OutFile report(names.gof, OpenMode::append);
    write_bayesian_comparisons(report, Store::kind, accepted, steps_per_set * count,
                               parameter_labels(model, LabelStyle::gof), observed_statistics,
                               Traits::measure_names(), observed_measures.values, sample);
    extras.write(report);
    write_gof_quartiles(report, observed_measures.quartiles, sample);
    const Mahalanobis distance = mahalanobis(sample.statistics, observed_statistics);
    write_gof_mahalanobis(report, Store::kind, distance);
    write_bayesian_bounds(report, empty, complete);
    report.close();
    {
        OutFile table(names.simulation, OpenMode::truncate);
        write_gof_sample_table(table, columns, sample, distance);
        table.close();
    }
    if (empty + complete > 0) {
        std::fprintf(context.console,
                     "vexa: %d of %d draws ended at the empty network and %d at the complete "
                     "one: those parameter sets lie in a degenerate region\n",
                     empty, count, complete);
        std::fflush(context.console);
    }
    if (Traits::gof_writes_end_statistics) {
        write_statistics_file(names.end_statistics, model, working, setup.terms);
    }
}

template <class Store>
void estimate_model(RunContext& context, TaskSetup<Store>& setup, std::vector<double>& parameters) {
    const RunSettings& s = context.settings;
    const OutputNames& names = context.names;
    Model& model = context.model;
    if (parameters.empty()) {
        throw SettingError(format_message(
            "vexa: run file '%s' includes no effect, so there is nothing to estimate",
            s.run_file.c_str()));
    }
    KindTraits<Store>::adjust_start(model, setup.observed, parameters);
    EstimationSettings settings;
    settings.multiplication_factor = s.multiplication_factor;
    settings.subphase_count = s.subphase_count;
    settings.phase3_steps = s.phase3_steps;
    settings.start_a_value = s.start_a_value;
    {
        OutFile report(names.estimation, OpenMode::append);
        write_estimation_settings(report, s.network_name, settings, s.estimation_runs);
        report.close();
    }
    const int p = static_cast<int>(parameters.size());
    Store working = setup.observed;
    Chain<Store> chain = make_chain(working, setup.terms, p, setup.sampler, context.rng);
    Matrix D = make_matrix(p, p, 0.0);
    const std::vector<ParameterLabel> labels = parameter_labels(model, LabelStyle::summary);
    const std::vector<double> starting = parameters;
    {
        OutFile verdicts(names.convergence, OpenMode::truncate);
        verdicts.close();
    }

    bool converged = false;
    bool ended = false;
    EstimationRun last;
    for (int run = 0; run < s.estimation_runs && !converged; ++run) {
        // A run after the first starts from a clean D, even after a degenerate run left it
        // partly reduced.
        if (run > 0) D = make_matrix(p, p, 0.0);
        {
            OutFile report(names.estimation, OpenMode::append);
            print(report, "STOCHASTIC APPROXIMATION RUN %d\n\n", run + 1);
            report.close();
        }
        std::fprintf(context.console, "vexa: estimation run %d of %d\n", run + 1,
                     s.estimation_runs);
        std::fflush(context.console);
        last = estimate(chain, parameters, D, settings, context.seeds, context.progress);
        const EstimationRun& result = last;
        {
            OutFile report(names.estimation, OpenMode::append);
            write_estimation_run(report, result, labels);
            report.close();
        }
        if (!result.degenerate) {
            OutFile covariance(names.covariance, OpenMode::truncate);
            write_covariance_matrix(covariance, result.covariance);
            covariance.close();
        }
        KindTraits<Store>::after_run(context, result);
        // The verdict, not the quoted flag, decides: a run converges when its t-ratios are small
        // and its draws are enough to tell.
        ConvergenceCheck check;
        if (result.degenerate) {
            check.verdict = Verdict::degenerate;
        } else {
            check = check_convergence(result.phase3_draws_matrix, result.observed,
                                      s.multiplication_factor);
        }
        converged = check.verdict == Verdict::converged;
        if (Embedding* host = context.embedding) {
            host->runs.push_back(result);
            host->checks.push_back(check);
        }
        if (run + 1 >= s.estimation_runs || converged) {
            write_statistics_file(names.end_statistics, model, working, setup.terms);
            ended = true;
        }
        working = setup.observed;
        recount(chain);
        {
            OutFile report(names.estimation, OpenMode::append);
            print(report, "\n\n");
            report.close();
        }
        OutFile verdicts(names.convergence, OpenMode::append);
        if (result.degenerate) {
            const std::string advice = degeneracy_advice(result, labels);
            std::fprintf(context.console, "vexa: run %d found the model degenerate: %s\n", run + 1,
                         advice.c_str());
            print(verdicts, "Run %d\nverdict\tdegenerate\nreason\t%s\n\n", run + 1, advice.c_str());
            // A runaway parameter is no place to start the next run from.
            parameters = starting;
        } else {
            std::fprintf(context.console, "vexa: run %d %s\n", run + 1,
                         convergence_summary(check, labels).c_str());
            write_convergence_block(verdicts, format_message("Run %d", run + 1).c_str(), check,
                                    labels);
        }
        verdicts.close();
        std::fflush(context.console);
        if (converged) {
            OutFile changes(names.change_statistics, OpenMode::truncate);
            OutFile logodds(names.logodds, OpenMode::truncate);
            write_change_statistics_and_logodds(setup.observed, setup.terms, parameters,
                                                parameter_labels(model, LabelStyle::column),
                                                changes, logodds);
            changes.close();
            logodds.close();
        }
    }
    if (converged && context.confirm) {
        Store fresh = setup.observed;
        Chain<Store> fresh_chain = make_chain(fresh, setup.terms, p, setup.sampler, context.rng);
        const Confirmation confirmation =
            confirm_estimate(fresh_chain, parameters, last.steps_per_draw, last.phase3_draws_matrix,
                             s.multiplication_factor, context.seeds, context.progress);
        const char* answer = confirmation.confirmed ? "confirmed" : "not confirmed";
        if (context.embedding) context.embedding->confirmed = confirmation.confirmed ? 1 : 0;
        std::fprintf(
            context.console, "vexa: the long-chain check at the estimate: %s\n",
            confirmation_summary(confirmation.confirmed, confirmation.check, labels).c_str());
        OutFile verdicts(names.convergence, OpenMode::append);
        const std::string heading = format_message(
            "Long-chain check at the estimate: %d draws, one every %.0f steps, after %.0f steps of "
            "burn-in",
            confirmation.draws, confirmation.thinning, confirmation.burn_in);
        write_convergence_block(verdicts, heading.c_str(), confirmation.check, labels);
        print(verdicts, "check\t%s: %s\n", answer,
              confirmation.confirmed
                  ? "no t-ratio lies significantly above 0.1"
                  : "the long chain speaks against convergence at this estimate");
        verdicts.close();
    }
    if (!ended) write_statistics_file(names.end_statistics, model, working, setup.terms);
    unpack(model, parameters);
    if (context.embedding) {
        context.embedding->converged = converged;
        context.embedding->estimates = parameters;
    }
    write_update_files(model, "");
    if (s.gof_after_estimation && converged) {
        KindTraits<Store>::before_gof_after_estimation(context);
        // The estimation's chain is done with: its store goes before goodness of fit makes its
        // own, so that the run never holds more than the observed network and one copy.
        working = Store();
        const std::vector<double> estimates = pack(model);
        goodness_of_fit(context, setup, estimates, gof_plan_after_estimation(last.steps_per_draw));
    }
}

}  // namespace task_detail

// Runs the task of the context's run file on a network of the store type.
template <class Store>
void run_task(RunContext& context) {
    using Traits = KindTraits<Store>;
    const RunSettings& s = context.settings;
    std::vector<double> parameters = pack(context.model);
    const int n = s.node_count;
    if (n < 1) {
        throw SettingError(
            format_message("vexa: run file '%s': node_count %d is below 1", s.run_file.c_str(), n));
    }
    // The plan reckons with dense stores; the sparse ones grow with the ties they are given.
    if constexpr (!std::is_same_v<Store, SparseGraph> && !std::is_same_v<Store, SparseDigraph>) {
        check_task_memory(s, Store::kind, static_cast<int>(parameters.size()),
                          available_memory_bytes());
    }
    task_detail::TaskSetup<Store> setup;
    MatrixNotes notes;
    if (s.task == Task::simulation) {
        setup.observed = Traits::random_start(context);
    } else if (context.embedding != nullptr && !context.embedding->adjacency.empty()) {
        from_matrix(context.embedding->adjacency, n, setup.observed);
    } else {
        setup.observed = Traits::read(s.network_file, n, &notes);
    }
    task_detail::say_notes(context, notes, "network", s.network_file);
    if (s.task != Task::simulation) task_detail::check_degree_cap(s, setup.observed);
    setup.terms = make_terms<Store>(context.model);
    task_detail::write_statistics_file(context.names.start_statistics, context.model,
                                       setup.observed, setup.terms);
    if (s.constraint_given) {
        MatrixNotes constraint_notes;
        setup.mask = std::make_unique<DyadMask>(
            read_dyad_mask(s.constraint_file, n, Store::kind, &constraint_notes));
        task_detail::say_notes(context, constraint_notes, "constraint", s.constraint_file);
    }
    setup.sampler.proposal = s.proposal;
    setup.sampler.max_degree = s.degree_cap;
    setup.sampler.mask = setup.mask.get();
    check_proposals_possible(setup.observed, setup.sampler);

    switch (s.task) {
        case Task::simulation: task_detail::simulate(context, setup, parameters); break;
        case Task::estimation: task_detail::estimate_model(context, setup, parameters); break;
        case Task::goodness_of_fit:
            task_detail::goodness_of_fit(context, setup, parameters, task_detail::gof_plan(s));
            break;
        case Task::bayesian_goodness_of_fit:
            task_detail::bayesian_goodness_of_fit(context, setup);
            break;
    }
}

}  // namespace vexa
