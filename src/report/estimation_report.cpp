#include "report/estimation_report.h"

#include <cmath>

#include "base/text_file.h"

namespace vexa {

namespace {

// The line a run that stopped ends its report with: a path taken to have gone astray is not a
// verdict on the model.
const char* stopped_line(const EstimationRun& run) {
    return run.astray ? "Not converged: the parameters went astray; the next run starts again "
                        "with half the gain\n"
                      : "Degenerate Model!\n";
}

void print_values(FILE* out, const char* heading, const std::vector<double>& values) {
    print(out, "%s", heading);
    for (const double value : values) print(out, "%f\t", value);
    print(out, "\n");
}

}  // namespace

void write_estimation_settings(FILE* out, const std::string& network_name,
                               const EstimationSettings& settings, int32_t estimation_runs) {
    print(out, "STOCHASTIC ESTIMATION FOR NETWORK %s\n", network_name.c_str());
    print(out, "ESTIMATION SETTINGS\n");
    print(out, "Number of sub-phases in estimation (phase 2) = %d\n", settings.subphase_count);
    print(out, "starting a-value in estimation (phase 2) = %f\n",
          static_cast<double>(settings.start_a_value));
    print(out, "Multiplication factor for estimation (phase 2) = %d\n",
          settings.multiplication_factor);
    print(out, "Number of steps in final simulation (phase 3) = %d\n", settings.phase3_steps);
    print(out, "Number of estimation runs = %d\n\n", estimation_runs);
}

void write_estimation_run(FILE* out, const EstimationRun& run,
                          const std::vector<ParameterLabel>& labels, bool converged) {
    print_values(out, "original statistics:", run.observed);
    print_values(out, "starting parameters:", run.starting);
    print(out,
          "Phase1 started with the following setup:\n"
          "a = %f\nnum of steps = %d\nnum of iterations in each step = %f\n"
          "************************************\n",
          static_cast<double>(run.gain), run.phase1_draws, run.phase1_steps_per_draw);
    print_values(out, "mean statistics in phase1:", run.phase1_means);
    // A degenerate run ends its report where it stopped.
    if (run.degenerate && run.stage == 1) {
        print(out, "Degenerate Model!\n");
        return;
    }
    print_values(out, "END PHASE1 parameter:", run.after_phase1);
    print(out, "Phase 2 started\n");
    for (size_t k = 0; k < run.subphases.size(); ++k) {
        const Subphase& subphase = run.subphases[k];
        print(out, "\n\nSubphase %zu started with a valued %f\n", k,
              static_cast<double>(subphase.gain));
        print(out, "\nSubphase %zu has gone up to %d steps\n", k, subphase.steps);
        print(out, "Parameter after Subphase %zu:", k);
        for (const double value : subphase.parameters) print(out, "%8.5f\t", value);
        print(out, "\n");
    }
    if (run.degenerate && run.stage == 2) {
        print(out, "%s", stopped_line(run));
        return;
    }
    print_values(out, "END PHASE2 parameter:", run.after_phase2);
    print(out,
          "Phase3 started with the following setup:\n"
          "num of steps = %d\nnum of iterations in each step = %f\n"
          "***************************************\n",
          run.phase3_draws, run.steps_per_draw);
    print_values(out, "mean statistics in phase3:", run.phase3_means);
    if (run.degenerate) {
        print(out, "%s", stopped_line(run));
        return;
    }
    write_estimation_summary(out, labels, run.estimates, run.standard_errors, run.t_ratios,
                             converged);
    print(out, "\nEstimated Covariance Matrix\n");
    write_covariance_matrix(out, run.covariance);
}

void write_estimation_summary(FILE* out, const std::vector<ParameterLabel>& labels,
                              const std::vector<double>& theta,
                              const std::vector<double>& standard_errors,
                              const std::vector<double>& t_ratios, bool converged) {
    print(out,
          "\nEstimation Result for Network SUMMARY (parameter, standard error, t-statistics)\n");
    print(out,
          "NOTE: t-statistics = (observation - sample mean)/standard error\n"
          "effects\testimates\tstderr\tt-ratio\n");
    for (const ParameterLabel& label : labels) {
        const size_t k = static_cast<size_t>(label.position);
        const double estimate = theta[k];
        const double se = standard_errors[k];
        const double t = t_ratios[k];
        print(out, "%s\t%f\t%.5f\t%.5f\t", labelled(label).c_str(), estimate, se, t);
        // Significant: |t| below 0.1 and the estimate beyond two standard errors.
        const bool starred = converged && std::fabs(t) < 0.1 && std::fabs(estimate) > 2.0 * se;
        print(out, starred ? "*\n" : "\n");
    }
}

void write_covariance_matrix(FILE* out, const Matrix& covariance) {
    for (int i = 0; i < covariance.rows; ++i) {
        for (int j = 0; j < covariance.cols; ++j) print(out, "%f\t", covariance[i][j]);
        print(out, "\n");
    }
    print(out, "\n");
}

}  // namespace vexa
