#pragma once
// Starting from an earlier run's estimates: an estimation report (its last summary table and
// the covariance matrix after it) or an update file, matched to a run file's model by the
// label of each effect, never by position, so that a file of another model is refused rather
// than read into the wrong effects.

#include <string>
#include <vector>

#include "model/model.h"
#include "numeric/matrix.h"

namespace vexa {

// The last summary table of an estimation report: the effects' labels as the report prints
// them ("AS(2.00)", "Grade_matching"), their estimates, and the covariance matrix in the same
// order (0 x 0 when the report has none after the table). Throws InputFileError naming the
// file when it cannot be read or holds no summary table.
struct ReportEstimates {
    std::vector<std::string> labels;
    std::vector<double> estimates;
    Matrix covariance;
};
ReportEstimates read_report_estimates(const std::string& path);

// A report's estimates and covariance in the model's parameter order. Throws SettingError,
// one line naming `what` and the run file, for every effect of the model the report does not
// estimate and every effect it estimates that the model leaves out.
struct MatchedEstimates {
    std::vector<double> estimates;
    Matrix covariance;
};
MatchedEstimates match_report(const Model& model, const ReportEstimates& report,
                              const std::string& what, const std::string& run_file);

// The model's included effects take the estimates of `path`, an estimation report or one of
// the update files (whose siblings in its folder give the other sections). Throws as
// match_report does; an update file lists every effect, so only the model's missing ones can be
// named. Returns how many effects took an estimate.
int take_estimates(Model& model, const std::string& path, const std::string& run_file);

}  // namespace vexa
