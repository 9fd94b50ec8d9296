#pragma once
// Three-phase stochastic approximation of a graph model (a Robbins-Monro scheme). Phase 1
// estimates the covariance of the statistics under the starting parameters and inverts it;
// phase 2 moves the parameters until the simulated statistics cross their observed values, in
// sub-phases of halving gain; phase 3 simulates at the estimates for the standard errors and
// the convergence t-ratios. One call is one estimation run; the driver repeats runs.

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "effects/parameter_labels.h"
#include "network/graph.h"
#include "numeric/matrix.h"
#include "numeric/rng.h"
#include "sampler/graph_sampler.h"

namespace vexa {

struct EstimationSettings {
    int32_t multiplication_factor = 2;  // m: sampler steps per draw scale with it
    int32_t subphase_count = 5;         // S
    int32_t phase3_steps = 500;         // N3
    float start_a_value = 0.1f;         // a, held in single precision throughout
};

struct EstimationOutput {
    std::string report_path;      // appended to phase by phase
    std::string covariance_path;  // rewritten with the final covariance matrix
    std::vector<ParameterLabel> labels;  // summary labels, in report order
    FILE* console = nullptr;      // progress lines; null for none
};

struct EstimationResult {
    bool converged = false;
    bool degenerate = false;
    std::vector<double> standard_errors;
    std::vector<double> t_ratios;
    Matrix covariance;  // the inverted phase-3 matrix
};

// One run on `graph` (its statistics vector must hold the observed totals), continuing from
// theta and the caller's matrix D (zero at the first run). Writes the report as it goes.
EstimationResult estimate_graph(Graph& graph, std::vector<double>& theta, Matrix& D,
                                GraphSampler& sampler, const EstimationSettings& settings,
                                const EstimationOutput& output, Rng& rng, SeedSource& seeds);

// Writes the summary table and the covariance matrix as the report ends them.
void write_estimation_summary(FILE* out, const std::vector<ParameterLabel>& labels,
                              const std::vector<double>& theta,
                              const std::vector<double>& standard_errors,
                              const std::vector<double>& t_ratios);
void write_covariance_matrix(FILE* out, const Matrix& covariance);

}  // namespace vexa
