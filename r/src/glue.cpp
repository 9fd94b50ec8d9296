// The bridge between R and the engine: builds a task request from R lists, runs it, and turns
// the engine's result records into R lists. The engine's failures come back as one line,
// which the R side raises as an error; nothing here lets an engine error reach R as a crash.

#include <R_ext/Utils.h>
#include <Rcpp.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "base/errors.h"
#include "entry/api.h"
#include "entry/effect_aliases.h"
#include "estimation/diagnostics.h"
#include "report/convergence_report.h"
#include "simulation/gof_task.h"

namespace {

using Rcpp::List;
using Rcpp::Named;
using Rcpp::NumericMatrix;
using Rcpp::NumericVector;

// The progress of a run on an R progress bar: the R function `update` takes the share done.
// The engine's events move it: an estimation by the steps of each run's phases (runs count
// equally), a simulation or goodness of fit by the steps of its burn-in and its sampling.
struct BarState {
    SEXP update = R_NilValue;
    bool estimation = false;
    double runs = 1.0;       // estimation: the runs allowed
    double run = 0.0;        // estimation: the run under way, from 1
    double burn_in = 0.0;    // sampling tasks: steps of the burn-in
    double proposals = 0.0;  // sampling tasks: steps of the sampling
    double shown = -1.0;
};

void check_interrupt_once(void*) { R_CheckUserInterrupt(); }

// Whether the user asked R to stop, without letting R jump out of the engine's frames.
bool interrupt_pending() { return R_ToplevelExec(check_interrupt_once, nullptr) == FALSE; }

void stop_if_interrupted() {
    if (interrupt_pending()) throw vexa::VexaError("vexa: the run was interrupted");
}

void show(BarState& bar, double share) {
    share = std::min(1.0, std::max(0.0, share));
    if (bar.update == R_NilValue || share - bar.shown < 0.005) return;
    bar.shown = share;
    Rcpp::Function update(bar.update);
    update(share);
}

void bar_steps(BarState& bar, const vexa::StepsDone& e) {
    stop_if_interrupted();
    const double part = e.total > 0.0 ? e.done / e.total : 0.0;
    if (bar.estimation) {
        if (e.stage == vexa::Stage::phase1 || e.stage == vexa::Stage::phase2 ||
            e.stage == vexa::Stage::phase3)
            show(bar, (bar.run - 1.0 + part) / bar.runs);
        return;
    }
    const double total = std::max(1.0, bar.burn_in + bar.proposals);
    if (e.stage == vexa::Stage::burn_in) show(bar, part * bar.burn_in / total);
    if (e.stage == vexa::Stage::sampling) show(bar, (bar.burn_in + part * bar.proposals) / total);
}

// The observer that moves the bar and lets the user interrupt the run.
vexa::Observer bar_observer(BarState& bar) {
    vexa::Observer observer;
    observer.steps_done = [&bar](const vexa::StepsDone& e) { bar_steps(bar, e); };
    observer.sample_drawn = [](const vexa::SampleDrawn&) { stop_if_interrupted(); };
    observer.run_started = [&bar](const vexa::RunStarted& e) {
        stop_if_interrupted();
        bar.run = e.run;
    };
    return observer;
}

double number(const List& list, const char* name, double fallback) {
    if (!list.containsElementNamed(name)) return fallback;
    SEXP value = list[name];
    if (Rf_isNull(value) || Rf_length(value) < 1) return fallback;
    return Rcpp::as<double>(value);
}

int32_t whole(const List& list, const char* name, int32_t fallback) {
    return static_cast<int32_t>(number(list, name, fallback));
}

NumericVector vector_of(const std::vector<double>& values) {
    return NumericVector(values.begin(), values.end());
}

NumericMatrix matrix_of_rows(const std::vector<std::vector<double>>& rows, size_t columns) {
    NumericMatrix m(static_cast<int>(rows.size()), static_cast<int>(columns));
    for (size_t r = 0; r < rows.size(); ++r) {
        for (size_t c = 0; c < columns && c < rows[r].size(); ++c)
            m(static_cast<int>(r), static_cast<int>(c)) = rows[r][c];
    }
    return m;
}

NumericMatrix matrix_of(const vexa::Matrix& source, int rows, int columns) {
    NumericMatrix m(rows, columns);
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < columns; ++c) m(r, c) = source[r][c];
    }
    return m;
}

// Rows of per-sample counts, padded with zeros to the longest.
template <class Get>
NumericMatrix profile_rows(const std::vector<vexa::NetworkProfile>& profiles, Get&& get) {
    size_t columns = 0;
    for (const auto& p : profiles) columns = std::max(columns, get(p).size());
    NumericMatrix m(static_cast<int>(profiles.size()), static_cast<int>(columns));
    for (size_t r = 0; r < profiles.size(); ++r) {
        const auto& values = get(profiles[r]);
        for (size_t c = 0; c < values.size(); ++c)
            m(static_cast<int>(r), static_cast<int>(c)) = static_cast<double>(values[c]);
    }
    return m;
}

template <class Values>
NumericVector counts_of(const Values& values) {
    NumericVector out(values.size());
    for (size_t k = 0; k < values.size(); ++k)
        out[static_cast<R_xlen_t>(k)] = static_cast<double>(values[k]);
    return out;
}

List profile_list(const vexa::NetworkProfile& p) {
    return List::create(
        Named("degree") = counts_of(p.degree), Named("in_degree") = counts_of(p.in_degree),
        Named("geodesics") = counts_of(p.geodesics), Named("triads") = counts_of(p.triads));
}

List estimation_runs(const vexa::EstimationRecord& e,
                     const std::vector<vexa::ParameterLabel>& labels, int p) {
    List runs(e.runs.size());
    for (size_t k = 0; k < e.runs.size(); ++k) {
        const vexa::EstimationRun& run = e.runs[k];
        const vexa::ConvergenceCheck& check = e.checks[k];
        std::vector<std::vector<double>> trace;
        trace.push_back(run.starting);
        if (!run.after_phase1.empty()) trace.push_back(run.after_phase1);
        for (const vexa::Subphase& s : run.subphases) trace.push_back(s.parameters);
        std::vector<double> gains{NAN};
        if (!run.after_phase1.empty()) gains.push_back(NAN);
        for (const vexa::Subphase& s : run.subphases) gains.push_back(s.gain);
        const bool finished = !run.degenerate;
        List one = List::create(
            Named("observed") = vector_of(run.observed),
            Named("trace") = matrix_of_rows(trace, static_cast<size_t>(p)),
            Named("gains") = vector_of(gains), Named("steps_per_draw") = run.steps_per_draw,
            Named("degenerate") = vexa::named_degenerate(run), Named("stage") = run.stage,
            Named("culprit") = run.culprit + 1,
            Named("estimates") = finished ? vector_of(run.estimates) : NumericVector(),
            Named("standard_errors") = finished ? vector_of(run.standard_errors) : NumericVector(),
            Named("t_ratios") = finished ? vector_of(run.t_ratios) : NumericVector(),
            Named("covariance") = finished ? matrix_of(run.covariance, p, p) : NumericMatrix(0, 0),
            Named("verdict") = std::string(vexa::verdict_text(check.verdict)),
            Named("largest_t") = check.largest_t, Named("overall_ratio") = check.overall_ratio,
            Named("effective_sizes") = vector_of(check.effective_sizes),
            Named("check_t_ratios") = vector_of(check.t_ratios),
            Named("suggested_factor") = check.suggested_factor);
        one["automatic"] = run.automatic;
        one["phase3_draws"] = run.phase3_draws;
        // Phase 3's draws of the statistics, one row per draw as drawn (row i from chain
        // i mod phase3_chains), for the diagnostics of the chain.
        const vexa::Matrix& draws = run.phase3_draws_matrix;
        one["draws"] = matrix_of(draws, static_cast<int>(draws.rows), static_cast<int>(draws.cols));
        one["phase3_chains"] = run.phase3_chains;
        // Why a degenerate run stopped and what to change, in the words the console uses.
        one["advice"] = run.astray       ? vexa::astray_text(run, labels)
                        : run.degenerate ? vexa::degeneracy_advice(run, labels)
                                         : std::string();
        runs[static_cast<R_xlen_t>(k)] = one;
    }
    return runs;
}

List goodness_of_fit(const vexa::TaskResult& result) {
    if (!result.records.gof) return List();
    const vexa::GofRecord& e = *result.records.gof;
    const vexa::GofSample& g = e.sample;
    NumericMatrix statistics(static_cast<int>(g.numbers.size()),
                             static_cast<int>(g.statistics.size()));
    for (size_t k = 0; k < g.statistics.size(); ++k) {
        for (size_t r = 0; r < g.statistics[k].size(); ++r)
            statistics(static_cast<int>(r), static_cast<int>(k)) = g.statistics[k][r];
    }
    NumericMatrix measures(static_cast<int>(g.numbers.size()), static_cast<int>(g.measures.size()));
    for (size_t k = 0; k < g.measures.size(); ++k) {
        for (size_t r = 0; r < g.measures[k].size(); ++r)
            measures(static_cast<int>(r), static_cast<int>(k)) = g.measures[k][r];
    }
    NumericMatrix quartiles(static_cast<int>(g.quartiles.size()), 3);
    for (size_t r = 0; r < g.quartiles.size(); ++r) {
        quartiles(static_cast<int>(r), 0) = g.quartiles[r].g25;
        quartiles(static_cast<int>(r), 1) = g.quartiles[r].g50;
        quartiles(static_cast<int>(r), 2) = g.quartiles[r].g75;
    }
    const vexa::GeodesicQuartiles& oq = e.observed_measures.quartiles;
    const auto degree = [](const vexa::NetworkProfile& p) -> const std::vector<int32_t>& {
        return p.degree;
    };
    const auto in_degree = [](const vexa::NetworkProfile& p) -> const std::vector<int32_t>& {
        return p.in_degree;
    };
    const auto geodesics = [](const vexa::NetworkProfile& p) -> const std::vector<int64_t>& {
        return p.geodesics;
    };
    const auto triads = [](const vexa::NetworkProfile& p) -> const std::vector<double>& {
        return p.triads;
    };
    // The comparisons as the engine makes them: statistics, then the descriptive measures.
    std::vector<double> obs, mean, sd, t;
    const auto add = [&](double observed, const std::vector<double>& sample) {
        const vexa::Comparison c = vexa::compare(observed, sample);
        obs.push_back(c.observed);
        mean.push_back(c.mean);
        sd.push_back(c.stddev);
        t.push_back(c.t);
    };
    for (size_t k = 0; k < g.statistics.size(); ++k) add(e.observed_statistics[k], g.statistics[k]);
    for (size_t k = 0; k < g.measures.size(); ++k)
        add(e.observed_measures.values[k], g.measures[k]);
    std::vector<double> q_median, q_range, q_lower, q_higher;
    const int32_t observed_q[3] = {oq.g25, oq.g50, oq.g75};
    for (int k = 0; k < 3; ++k) {
        std::vector<int32_t> sample;
        for (const vexa::GeodesicQuartiles& q : g.quartiles)
            sample.push_back(k == 0 ? q.g25 : k == 1 ? q.g50 : q.g75);
        const vexa::QuartileComparison c = vexa::compare_quartile(observed_q[k], sample);
        q_median.push_back(c.median);
        q_range.push_back(c.range);
        q_lower.push_back(c.lower);
        q_higher.push_back(c.higher);
    }
    const List comparisons =
        List::create(Named("observed") = vector_of(obs), Named("mean") = vector_of(mean),
                     Named("sd") = vector_of(sd), Named("t") = vector_of(t));
    const List quartile_table =
        List::create(Named("observed") = NumericVector::create(oq.g25, oq.g50, oq.g75),
                     Named("median") = vector_of(q_median), Named("iqr") = vector_of(q_range),
                     Named("below") = vector_of(q_lower), Named("above") = vector_of(q_higher));
    List out = List::create(
        Named("sample_numbers") = vector_of(g.numbers),
        Named("observed") = vector_of(e.observed_statistics), Named("statistics") = statistics,
        Named("measure_names") = Rcpp::wrap(result.measure_names),
        Named("observed_measures") = vector_of(e.observed_measures.values),
        Named("measures") = measures,
        Named("observed_quartiles") = NumericVector::create(oq.g25, oq.g50, oq.g75),
        Named("quartiles") = quartiles, Named("mahalanobis_available") = e.distance.available,
        Named("mahalanobis") = e.distance.observed_distance,
        Named("mahalanobis_closer") = e.distance.closer_percent,
        Named("mahalanobis_sample") = vector_of(e.distance.sample_forms),
        Named("observed_profile") = profile_list(result.observed_profile),
        Named("degree") = profile_rows(result.sample_profiles, degree),
        Named("in_degree") = profile_rows(result.sample_profiles, in_degree),
        Named("geodesics") = profile_rows(result.sample_profiles, geodesics),
        Named("triads") = profile_rows(result.sample_profiles, triads));
    out["comparisons"] = comparisons;
    out["quartile_table"] = quartile_table;
    return out;
}

// The proposal the R side names (vexa_settings turns the numbers a user may give into names).
vexa::Proposal proposal_named(const std::string& name) {
    if (name == "swap") return vexa::Proposal::swap;
    if (name == "receiver_move") return vexa::Proposal::receiver_move;
    if (name == "tie_no_tie") return vexa::Proposal::tie_no_tie;
    if (name == "closure") return vexa::Proposal::closure;
    return vexa::Proposal::toggle;
}

void set_options(vexa::RunOptions& options, SEXP seed, bool check, int sampler) {
    if (!Rf_isNull(seed)) {
        options.fixed_seed = true;
        options.seed = static_cast<uint32_t>(Rcpp::as<double>(seed));
    }
    options.confirm = check;
    options.sampler_code = sampler;
}

}  // namespace

// [[Rcpp::export(.vexa_task)]]
List vexa_task(List request, SEXP seed, SEXP progress) {
    vexa::TaskRequest r;
    vexa::RunSettings& s = r.settings;
    const List settings = request["settings"];
    s.run_file = Rcpp::as<std::string>(request["what"]);
    const std::string task = Rcpp::as<std::string>(request["task"]);
    s.task = task == "simulation"   ? vexa::Task::simulation
             : task == "estimation" ? vexa::Task::estimation
             : task == "bayes"      ? vexa::Task::bayesian_goodness_of_fit
                                    : vexa::Task::goodness_of_fit;
    s.network_kind =
        Rcpp::as<bool>(request["directed"]) ? vexa::NetworkKind::digraph : vexa::NetworkKind::graph;
    s.node_count = whole(request, "n", 0);
    s.network_name = Rcpp::as<std::string>(request["name"]);
    if (settings.containsElementNamed("output_dir") && !Rf_isNull(settings["output_dir"])) {
        s.output_directory = Rcpp::as<std::string>(settings["output_dir"]);
        r.write_files = true;
    }
    s.initial_density = static_cast<float>(number(request, "density", 0.0));
    s.proposal = proposal_named(Rcpp::as<std::string>(settings["sampler"]));
    if (!Rf_isNull(settings["degree_cap"])) {
        s.degree_cap_given = true;
        s.degree_cap = whole(settings, "degree_cap", 9999);
    }
    s.subphase_count = whole(settings, "subphases", 5);
    s.start_a_value = static_cast<float>(number(settings, "gain", 0.1));
    s.multiplication_factor = whole(settings, "multiplication_factor", 2);
    s.phase3_steps = whole(settings, "phase3_steps", 500);
    s.estimation_runs = whole(settings, "runs", 1);
    s.burn_in = number(settings, "burn_in", 0.0);
    s.iterations = number(settings, "iterations", 0.0);
    s.sample_count = whole(settings, "samples", 0);
    if (!Rf_isNull(request["adjacency"]))
        r.adjacency = Rcpp::as<std::vector<double>>(request["adjacency"]);
    if (request.containsElementNamed("constraint") && !Rf_isNull(request["constraint"]))
        r.constraint = Rcpp::as<std::vector<double>>(request["constraint"]);
    if (request.containsElementNamed("parameter_sets")) {
        const List sets = request["parameter_sets"];
        for (R_xlen_t k = 0; k < sets.size(); ++k)
            r.parameter_sets.push_back(Rcpp::as<std::vector<double>>(sets[k]));
    }

    const List effects = request["effects"];
    const Rcpp::CharacterVector names = effects["name"];
    const NumericVector values = effects["value"];
    const NumericVector lambdas = effects["lambda"];
    for (R_xlen_t k = 0; k < names.size(); ++k) {
        vexa::EffectChoice choice;
        choice.name = Rcpp::as<std::string>(names[k]);
        choice.value = values[k];
        choice.lambda = static_cast<float>(lambdas[k]);
        r.effects.push_back(choice);
    }
    const List attributes = request["attributes"];
    for (R_xlen_t k = 0; k < attributes.size(); ++k) {
        const List a = attributes[k];
        vexa::AttributeColumn column;
        column.name = Rcpp::as<std::string>(a["name"]);
        column.kind = static_cast<vexa::AttributeKind>(Rcpp::as<int>(a["kind"]));
        column.values = Rcpp::as<std::vector<double>>(a["values"]);
        const Rcpp::LogicalVector missing = a["missing"];
        for (const int m : missing) column.missing.push_back(m == TRUE ? 1 : 0);
        r.attributes.push_back(std::move(column));
    }
    if (!Rf_isNull(request["covariate"])) {
        const List c = request["covariate"];
        r.covariate_given = true;
        r.covariate_name = Rcpp::as<std::string>(c["name"]);
        r.covariate = Rcpp::as<std::vector<double>>(c["values"]);
    }
    // A sampler the user named binds the automatic mode too; one left unnamed (-1) lets it
    // choose the proposal for the network.
    set_options(r.options, seed, Rcpp::as<bool>(settings["check"]),
                whole(settings, "sampler_code", -1));
    r.options.automatic =
        request.containsElementNamed("automatic") && Rcpp::as<bool>(request["automatic"]);
    r.options.chains = whole(settings, "chains", 0);
    r.options.threads = whole(settings, "threads", 0);
    if (settings.containsElementNamed("method") &&
        Rcpp::as<std::string>(settings["method"]) == "ee")
        r.options.method = vexa::EstimationMethod::equilibrium_expectation;
    r.keep_networks = Rcpp::as<bool>(request["keep_networks"]);
    if (request.containsElementNamed("save_network") && !Rf_isNull(request["save_network"]))
        r.options.save_network = Rcpp::as<std::string>(request["save_network"]);

    BarState bar;
    bar.update = progress;
    bar.estimation = s.task == vexa::Task::estimation;
    bar.runs = std::max(1, s.estimation_runs);
    bar.burn_in = s.burn_in;
    bar.proposals = s.iterations;
    r.observer = bar_observer(bar);

    const vexa::TaskResult result = vexa::run_request(r);
    const vexa::TaskRecords& records = result.records;
    const int p = static_cast<int>(result.labels.size());
    Rcpp::CharacterVector labels(p), gof_labels(p), columns(p);
    for (const vexa::ParameterLabel& label : result.labels) {
        if (label.position >= 0 && label.position < p)
            labels[label.position] = vexa::labelled(label);
    }
    for (size_t k = 0; k < result.gof_labels.size() && k < static_cast<size_t>(p); ++k) {
        gof_labels[static_cast<R_xlen_t>(k)] = result.gof_labels[k];
        columns[static_cast<R_xlen_t>(k)] = result.sample_columns[k];
    }
    List networks(result.networks.size());
    const int n = s.node_count;
    for (size_t k = 0; k < result.networks.size(); ++k) {
        Rcpp::IntegerMatrix m(n, n);
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < n; ++j)
                m(i, j) = result.networks[k][static_cast<size_t>(i) * static_cast<size_t>(n) +
                                             static_cast<size_t>(j)];
        }
        networks[static_cast<R_xlen_t>(k)] = m;
    }
    List out = List::create(Named("error") = result.error, Named("console") = result.console,
                            Named("labels") = labels, Named("gof_labels") = gof_labels,
                            Named("columns") = columns, Named("networks") = networks);
    // Where each effect of the request sits in the parameter vector (from 1), which follows the
    // run file's order of the effects, not the order they were given in.
    out["slots"] = Rcpp::IntegerVector(result.slots.begin(), result.slots.end()) + 1;
    if (records.estimation) {
        const vexa::EstimationRecord& e = *records.estimation;
        out["runs"] = estimation_runs(e, result.labels, p);
        out["converged"] = e.converged;
        out["reported_run"] = e.reported_run;
        out["confirmed"] = e.confirmation ? (e.confirmation->confirmed ? 1 : 0) : -1;
        out["estimates"] = vector_of(e.estimates);
    }
    if (records.simulation) {
        const vexa::SimulationRecord& sim = *records.simulation;
        out["sample_numbers"] = vector_of(sim.sample_numbers);
        out["sample_statistics"] = matrix_of_rows(sim.sample_statistics, static_cast<size_t>(p));
        out["accepted"] = sim.accepted;
    }
    out["gof"] = goodness_of_fit(result);
    return out;
}

// [[Rcpp::export(.vexa_run_file)]]
List vexa_run_file(std::string run_file, SEXP seed, bool check, int sampler, bool automatic,
                   int chains, int threads, bool equilibrium) {
    vexa::RunOptions options;
    set_options(options, seed, check, sampler);
    options.automatic = automatic;
    if (equilibrium) options.method = vexa::EstimationMethod::equilibrium_expectation;
    options.chains = chains;
    options.threads = threads;
    // Moves no bar, but lets the user interrupt the run.
    BarState bar;
    const vexa::Observer interrupts = bar_observer(bar);
    options.observer = &interrupts;
    const vexa::FileRunResult result = vexa::run_file_request(run_file, options);
    return List::create(Named("error") = result.error, Named("console") = result.console,
                        Named("output_dir") = result.output_directory,
                        Named("name") = result.network_name,
                        Named("not_converged") = result.not_converged);
}

// Every effect of the network kind and every other name a term may take, with what it counts.
// [[Rcpp::export(.vexa_effect_table)]]
List vexa_effect_table(bool directed) {
    const std::vector<vexa::EffectEntry> entries =
        vexa::effect_entries(directed ? vexa::NetworkKind::digraph : vexa::NetworkKind::graph);
    Rcpp::CharacterVector name, kind, argument, maps_to, meaning, attribute_kind;
    for (const vexa::EffectEntry& e : entries) {
        name.push_back(e.name);
        kind.push_back(e.kind);
        argument.push_back(e.argument);
        maps_to.push_back(e.maps_to);
        meaning.push_back(e.meaning);
        attribute_kind.push_back(e.attribute_kind);
    }
    return List::create(Named("name") = name, Named("kind") = kind, Named("argument") = argument,
                        Named("maps_to") = maps_to, Named("meaning") = meaning,
                        Named("attribute_kind") = attribute_kind);
}

// The effect a term names: a vexa effect or another name for one. `attributes` gives the kind
// (0 binary, 1 continuous, 2 categorical) of each attribute by name. Returns the effect's name
// and lambda, or an error line.
// [[Rcpp::export(.vexa_resolve_term)]]
List vexa_resolve_term(std::string name, SEXP number, std::string attribute,
                       Rcpp::IntegerVector attributes, std::string covariate, bool directed) {
    vexa::AliasTerm term;
    term.name = std::move(name);
    if (!Rf_isNull(number)) {
        term.has_number = true;
        term.number = Rcpp::as<double>(number);
    }
    term.attribute = std::move(attribute);
    std::vector<vexa::AttributeColumn> columns;
    const Rcpp::CharacterVector names = attributes.hasAttribute("names")
                                            ? Rcpp::CharacterVector(attributes.names())
                                            : Rcpp::CharacterVector();
    for (R_xlen_t k = 0; k < attributes.size() && k < names.size(); ++k) {
        vexa::AttributeColumn column;
        column.name = Rcpp::as<std::string>(names[k]);
        column.kind = static_cast<vexa::AttributeKind>(attributes[k]);
        columns.push_back(std::move(column));
    }
    const vexa::NetworkKind kind = directed ? vexa::NetworkKind::digraph : vexa::NetworkKind::graph;
    try {
        const vexa::EffectChoice choice = vexa::resolve_term(term, kind, columns, covariate);
        return List::create(Named("error") = "", Named("name") = choice.name,
                            Named("lambda") = static_cast<double>(choice.lambda));
    } catch (const vexa::VexaError& error) {
        return List::create(Named("error") = std::string(error.what()));
    }
}
