#pragma once
// The estimation report: the settings echo, each run's phases, the summary table (estimates,
// standard errors, t-ratios; "*" marks a significant estimate of a converged run) and the
// covariance matrix; and the covariance file.

#include <cstdio>
#include <string>
#include <vector>

#include "estimation/estimation.h"
#include "model/parameter_labels.h"

namespace vexa {

// "STOCHASTIC ESTIMATION FOR NETWORK <name>", "ESTIMATION SETTINGS" and the five settings.
void write_estimation_settings(FILE* out, const std::string& network_name,
                               const EstimationSettings& settings, int32_t estimation_runs);

// One run's phases, and, unless it was degenerate, its summary and covariance matrix.
// `labels` in summary style; `converged`: the verdict on the run was "converged", so its
// significant estimates may be starred.
void write_estimation_run(FILE* out, const EstimationRun& run,
                          const std::vector<ParameterLabel>& labels, bool converged);

// The summary table as the report ends a run. A star is a claim that the estimate is
// significant, which only a converged run can make: a run that did not converge gets none,
// whatever its t-ratios.
void write_estimation_summary(FILE* out, const std::vector<ParameterLabel>& labels,
                              const std::vector<double>& theta,
                              const std::vector<double>& standard_errors,
                              const std::vector<double>& t_ratios, bool converged);

// The rows of a matrix, "%f\t" each, "\n" after each row and one more after the last.
void write_covariance_matrix(FILE* out, const Matrix& covariance);

}  // namespace vexa
