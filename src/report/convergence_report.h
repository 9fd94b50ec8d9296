#pragma once
// The verdict on an estimation run, beside the quoted estimation report: per statistic its
// t-ratio and effective sample size, the largest t-ratio, the overall maximum convergence
// ratio and the verdict in words, with a plain warning when the draws are too few to judge
// and the reason when the model is degenerate. Also what the command line says of it.

#include <cstdio>
#include <string>
#include <vector>

#include "estimation/diagnostics.h"
#include "estimation/estimation.h"
#include "model/parameter_labels.h"

namespace vexa {

// One sentence on why a degenerate run stopped and what a user can do; `labels` in summary style.
std::string degeneracy_advice(const EstimationRun& run, const std::vector<ParameterLabel>& labels);

// Why a run that stopped was not taken to show a degenerate model (run.astray), and what the
// next run does.
std::string astray_text(const EstimationRun& run, const std::vector<ParameterLabel>& labels);

// One sentence on the check: its verdict and figures, and the warning and suggested
// multiplication factor when the effective sample sizes are below enough.
std::string convergence_summary(const ConvergenceCheck& check,
                                const std::vector<ParameterLabel>& labels);

// One sentence on the long-chain check: confirmed or not, with its figures.
std::string confirmation_summary(bool confirmed, const ConvergenceCheck& check,
                                 const std::vector<ParameterLabel>& labels);

// A run's block of the convergence file: "Run %d", the table, the figures, `details` (lines
// of its own) and the verdict.
void write_convergence_block(FILE* out, const char* heading, const ConvergenceCheck& check,
                             const std::vector<ParameterLabel>& labels,
                             const std::string& details = "");

// The automatic mode's choices for a run, as lines of the convergence file ("" for a run of
// the plain mode): the steps per draw and why, the phase-3 draws, their cap and what they
// reached.
std::string automatic_choices(const EstimationRun& run);

// How many chains drew phase 3, as a line of the convergence file ("" for one chain).
std::string chain_lines(const EstimationRun& run);

// The method of phase 2, as a line of the convergence file ("" for stochastic approximation).
std::string method_lines(const EstimationRun& run);

}  // namespace vexa
