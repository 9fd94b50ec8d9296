#pragma once
// The files of an estimation as its runs end: the settings echo and each run's block of the
// estimation report, the covariance file, and the verdict on each run (and on the long-chain
// check) in the convergence file. Written run by run, so that a long estimation's report can
// be read while its next run computes.

#include <string>
#include <vector>

#include "estimation/estimate_model.h"
#include "model/parameter_labels.h"
#include "report/output_names.h"

namespace vexa {

// The settings echo, appended to the estimation report, and the convergence file emptied.
void write_estimation_start(const OutputNames& names, const std::string& network_name,
                            const EstimationSettings& settings, int32_t runs);

// One run's block of the estimation report, its covariance file (unless it was degenerate)
// and its verdict. `labels` in summary style.
void write_estimation_run_files(const OutputNames& names, const std::vector<ParameterLabel>& labels,
                                int32_t run, const EstimationRun& record,
                                const ConvergenceCheck& check);

// The long-chain check's block of the convergence file.
// When no run converged, the convergence file's last line names the run whose estimates are
// reported and why. The same sentence is what the console says.
std::string reported_run_text(const EstimationRecord& record);
void write_reported_run(const OutputNames& names, const EstimationRecord& record);

void write_confirmation_block(const OutputNames& names, const std::vector<ParameterLabel>& labels,
                              const Confirmation& confirmation);

// An observer that writes each run's files as it ends, and the check's block.
Observer estimation_file_observer(const OutputNames& names,
                                  const std::vector<ParameterLabel>& labels);

}  // namespace vexa
