#pragma once
// Parameter sets around an estimate: draws from the normal distribution with the estimates as
// mean and the estimation's covariance matrix, written one vector per line, ready for the
// goodness of fit over parameter sets (task 4).

#include <string>
#include <vector>

#include "entry/run_context.h"
#include "model/model.h"

namespace vexa {

// The included effects' values as the update files in `directory` ("" the working directory)
// give them, in parameter-vector order. Throws InputFileError naming the file when a file
// cannot be read or an included effect has no entry (or no number) in it.
std::vector<double> read_update_estimates(const Model& model, const std::string& directory);

// Reads the estimation's run file for its model and output names, takes the estimates and the
// covariance matrix from the last summary table of its estimation report, matched to the
// model by label (a report of another model is refused, naming the effects), and writes `count`
// draws to `sets_path`, one tab-separated vector per line. Throws VexaError for every problem (no
// estimation run file, files missing, a covariance that is not one).
void draw_parameter_sets(const std::string& run_file, int count, const std::string& sets_path,
                         const RunOptions& options);

// The command line's entry for the above: one clear line on the options' console for every
// failure. Returns 0 when the sets were written and 1 otherwise; never throws.
int draw_parameter_sets_entry(const std::string& run_file, int count, const std::string& sets_path,
                              const RunOptions& options) noexcept;

}  // namespace vexa
