#include "entry/graph_tasks.h"

#include <cmath>
#include <memory>

#include "base/errors.h"
#include "base/text_file.h"
#include "effects/graph_catalogue.h"
#include "effects/parameter_labels.h"
#include "entry/parameter_vector.h"
#include "estimation/estimation.h"
#include "numeric/matrix.h"
#include "report/logodds.h"
#include "report/spss.h"
#include "report/statistics_report.h"
#include "report/update_files.h"
#include "sampler/graph_sampler.h"
#include "simulation/graph_simulation.h"

namespace vexa {

namespace {

void write_statistics_file(const std::string& path, Graph& graph, const std::vector<Term>& terms) {
    compute_totals(graph, terms);
    OutFile out(path, OpenMode::truncate);
    write_graph_statistics(out, graph, terms);
    out.close();
}

void write_spss(const RunContext& context) {
    write_spss_file(context.names.sim, context.model, context.names.simulation);
}

SimulationFiles simulation_files(const RunContext& context) {
    const OutputNames& names = context.names;
    SimulationFiles files;
    files.report = names.simulation;
    files.parameter = names.parameter;
    files.sample_prefix = names.sample_statistics;
    files.accept = names.accept;
    files.gof = names.gof;
    files.pajek = names.pajek;
    files.degree_distribution = names.degree_distribution;
    files.geodesic_distribution = names.geodesic_distribution;
    files.geodesic_quartiles = names.geodesic_quartiles;
    files.cluster_giant = names.cluster_giant;
    files.triangle_distribution = names.triangle_distribution;
    files.twopath_distribution = names.twopath_distribution;
    files.et0nt_distribution = names.et0nt_distribution;
    files.network_name = context.settings.network_name;
    return files;
}

SimulationOptions simulation_options(const RunContext& context) {
    const RunSettings& s = context.settings;
    SimulationOptions options;
    options.proposals = s.iterations;
    options.interval = s.thinning_interval;
    options.degree_distribution = s.degree_distribution_output == 1;
    options.geodesic = s.geodesic_output == 1;
    options.cluster_giant = s.cluster_giant_output == 1;
    options.triangle_distribution = s.triangle_distribution_output == 1;
    options.twopath_distribution = s.twopath_distribution_output == 1;
    options.et0nt_distribution = s.et0nt_distribution_output == 1;
    options.networks = s.pajek_output == 1;
    return options;
}

void run_goodness_of_fit(RunContext& context, Graph& observed, const std::vector<Term>& terms,
                         const std::vector<double>& parameters, GraphSampler& sampler) {
    write_spss(context);
    Graph working = create(observed.node_count, static_cast<int>(parameters.size()), observed.clique_depth);
    copy(observed, working, static_cast<int>(parameters.size()));
    run_sampler(working, sampler, parameters.data(), context.settings.burn_in, context.rng, context.seeds);
    graph_goodness_of_fit(observed, working, sampler, parameters, context.model, simulation_options(context),
                          simulation_files(context), context.rng, context.seeds, context.console);
    write_statistics_file(context.names.end_statistics, working, terms);
}

void run_estimation(RunContext& context, Graph& observed, const std::vector<Term>& terms,
                    std::vector<double>& parameters, GraphSampler& sampler) {
    const RunSettings& s = context.settings;
    Model& model = context.model;
    if (parameters.empty()) {
        throw SettingError(format_message("vexa: run file '%s' includes no effect, so there is nothing to estimate",
                                          s.run_file.c_str()));
    }
    // An edge effect started at exactly 0 starts at the observed log-odds of a tie instead.
    const EffectSetting& edge = model.structural[static_cast<size_t>(GraphEffect::edge)];
    if (edge.slot != -1 && edge.value == 0.0) {
        const double d = density(observed);
        const double log_odds = std::log(d / (1.0 - d));
        if (std::isfinite(log_odds)) parameters[static_cast<size_t>(edge.slot)] = log_odds;
    }
    {
        OutFile report(context.names.estimation, OpenMode::append);
        std::fprintf(report, "STOCHASTIC ESTIMATION FOR NETWORK %s\n", s.network_name.c_str());
        std::fputs("ESTIMATION SETTINGS\n", report);
        std::fprintf(report, "Number of sub-phases in estimation (phase 2) = %d\n", s.subphase_count);
        std::fprintf(report, "starting a-value in estimation (phase 2) = %f\n", static_cast<double>(s.start_a_value));
        std::fprintf(report, "Multiplication factor for estimation (phase 2) = %d\n", s.multiplication_factor);
        std::fprintf(report, "Number of steps in final simulation (phase 3) = %d\n", s.phase3_steps);
        std::fprintf(report, "Number of estimation runs = %d\n\n", s.estimation_runs);
        report.close();
    }
    const int p = static_cast<int>(parameters.size());
    Graph working = create(observed.node_count, p, observed.clique_depth);
    copy(observed, working, p);
    Matrix D = make_matrix(p, p, 0.0);
    EstimationSettings settings;
    settings.multiplication_factor = s.multiplication_factor;
    settings.subphase_count = s.subphase_count;
    settings.phase3_steps = s.phase3_steps;
    settings.start_a_value = s.start_a_value;
    EstimationOutput output;
    output.report_path = context.names.estimation;
    output.covariance_path = context.names.covariance;
    output.labels = graph_parameter_labels(model, LabelStyle::summary);
    output.console = context.console;

    bool converged = false;
    bool ended = false;
    for (int run = 0; run < s.estimation_runs && !converged; ++run) {
        // A run after the first starts from a clean D, even after a degenerate run left it
        // partly reduced.
        if (run > 0) D = make_matrix(p, p, 0.0);
        {
            OutFile report(context.names.estimation, OpenMode::append);
            std::fprintf(report, "STOCHASTIC APPROXIMATION RUN %d\n\n", run + 1);
            report.close();
        }
        std::fprintf(context.console, "vexa: estimation run %d of %d\n", run + 1, s.estimation_runs);
        const EstimationResult result =
            estimate_graph(working, parameters, D, sampler, settings, output, context.rng, context.seeds);
        converged = result.converged;
        if (run + 1 >= s.estimation_runs || converged) {
            write_statistics_file(context.names.end_statistics, working, terms);
            ended = true;
        }
        copy(observed, working, p);
        {
            OutFile report(context.names.estimation, OpenMode::append);
            std::fputs("\n\n", report);
            report.close();
        }
        if (result.degenerate) {
            std::fprintf(context.console, "vexa: run %d found the model degenerate\n", run + 1);
        } else {
            std::fprintf(context.console, "vexa: run %d %s\n", run + 1,
                         converged ? "converged" : "did not converge (a t-ratio is 0.1 or more)");
        }
        if (converged) {
            OutFile changes(context.names.change_statistics, OpenMode::truncate);
            OutFile logodds(context.names.logodds, OpenMode::truncate);
            write_change_statistics_and_logodds(observed, terms, parameters,
                                                graph_parameter_labels(model, LabelStyle::column),
                                                changes, logodds);
            changes.close();
            logodds.close();
        }
    }
    if (!ended) write_statistics_file(context.names.end_statistics, working, terms);
    unpack(model, parameters);
    write_update_files(model, "");
    if (s.gof_after_estimation == 1 && converged) {
        std::vector<double> estimates = pack(model);
        run_goodness_of_fit(context, observed, terms, estimates, sampler);
    }
}

}  // namespace

void run_graph_task(RunContext& context) {
    const RunSettings& s = context.settings;
    Model& model = context.model;
    std::vector<double> parameters = pack(model);
    const int p = static_cast<int>(parameters.size());
    const int n = s.node_count;
    const int depth = model.clique_order;
    if (n < 1) {
        throw SettingError(format_message("vexa: run file '%s': node_count %d is below 1", s.run_file.c_str(), n));
    }
    Graph observed;
    if (s.task == 1) {
        const double target = std::trunc(static_cast<double>(n) * (n - 1) * s.initial_density * 0.5);
        if (!(target >= 0.0) || target > static_cast<double>(n) * (n - 1) / 2.0) {
            throw SettingError(format_message(
                "vexa: run file '%s': initial_density %g asks for %.0f ties, but %d nodes have only "
                "%.0f dyads",
                s.run_file.c_str(), static_cast<double>(s.initial_density), target, n,
                static_cast<double>(n) * (n - 1) / 2.0));
        }
        observed = random_graph(n, static_cast<int64_t>(target), p, depth, context.rng, context.seeds);
    } else {
        observed = read_graph(s.network_file, n, p, depth);
    }
    const std::vector<Term> terms = graph_terms(model);
    write_statistics_file(context.names.start_statistics, observed, terms);
    std::unique_ptr<Graph> mask;
    if (s.constraint_given == 1) {
        mask = std::make_unique<Graph>(read_graph(s.constraint_file, n, 0, 0));
    }
    GraphSampler sampler = make_graph_sampler(terms, p, s.degree_cap, s.sampler_variant == 1, mask.get());
    check_proposals_possible(observed, sampler);

    switch (s.task) {
        case 1: {
            write_spss(context);
            run_sampler(observed, sampler, parameters.data(), s.burn_in, context.rng, context.seeds);
            simulate_graph(observed, sampler, parameters, model, simulation_options(context),
                           simulation_files(context), context.rng, context.seeds, context.console);
            write_statistics_file(context.names.end_statistics, observed, terms);
            break;
        }
        case 2:
            run_estimation(context, observed, terms, parameters, sampler);
            break;
        case 3:
            run_goodness_of_fit(context, observed, terms, parameters, sampler);
            break;
        default:
            break;
    }
}

}  // namespace vexa
