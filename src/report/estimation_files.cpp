#include "report/estimation_files.h"

#include "base/errors.h"
#include "base/text_file.h"
#include "report/convergence_report.h"
#include "report/estimation_report.h"

namespace vexa {

void write_estimation_start(const OutputNames& names, const std::string& network_name,
                            const EstimationSettings& settings, int32_t runs) {
    OutFile report(names.estimation, OpenMode::append);
    write_estimation_settings(report, network_name, settings, runs);
    report.close();
    OutFile verdicts(names.convergence, OpenMode::truncate);
    verdicts.close();
}

void write_estimation_run_files(const OutputNames& names, const std::vector<ParameterLabel>& labels,
                                int32_t run, const EstimationRun& record,
                                const ConvergenceCheck& check) {
    OutFile report(names.estimation, OpenMode::append);
    print(report, "STOCHASTIC APPROXIMATION RUN %d\n\n", run);
    write_estimation_run(report, record, labels, check.verdict == Verdict::converged);
    print(report, "\n\n");
    report.close();
    if (!record.degenerate) {
        OutFile covariance(names.covariance, OpenMode::truncate);
        write_covariance_matrix(covariance, record.covariance);
        covariance.close();
    }
    OutFile verdicts(names.convergence, OpenMode::append);
    if (record.astray) {
        print(verdicts, "Run %d\nverdict\tnot converged\nreason\t%s\n\n", run,
              astray_text(record, labels).c_str());
    } else if (record.degenerate) {
        print(verdicts, "Run %d\nverdict\tdegenerate\nreason\t%s\n\n", run,
              degeneracy_advice(record, labels).c_str());
    } else {
        write_convergence_block(
            verdicts, format_message("Run %d", run).c_str(), check, labels,
            method_lines(record) + automatic_choices(record) + chain_lines(record));
    }
    verdicts.close();
}

std::string reported_run_text(const EstimationRecord& record) {
    if (record.converged || record.runs.empty()) return "";
    int degenerate = 0;
    for (const EstimationRun& run : record.runs) degenerate += named_degenerate(run);
    // Runs that found the model degenerate amid runs that did not converge speak of the
    // model, not of the settings: more steps will not help.
    const std::string model = degenerate == 0
                                  ? ""
                                  : format_message(
                                        "; %d of %d runs found the model degenerate, so the model "
                                        "is likely degenerate on this network",
                                        degenerate, static_cast<int>(record.runs.size()));
    if (record.reported_run == 0)
        return format_message("no run converged%s: the estimates reported are the starting values",
                              model.c_str());
    const size_t k = static_cast<size_t>(record.reported_run - 1);
    return format_message(
        "no run converged%s: the estimates reported are those of run %d, whose largest t-ratio "
        "(%.3f) was the smallest",
        model.c_str(), record.reported_run, record.checks[k].largest_t);
}

void write_reported_run(const OutputNames& names, const EstimationRecord& record) {
    const std::string text = reported_run_text(record);
    if (text.empty()) return;
    OutFile verdicts(names.convergence, OpenMode::append);
    print(verdicts, "reported\t%s\n", text.c_str());
    verdicts.close();
}

void write_confirmation_block(const OutputNames& names, const std::vector<ParameterLabel>& labels,
                              const Confirmation& confirmation) {
    OutFile verdicts(names.convergence, OpenMode::append);
    const std::string heading = format_message(
        "Long-chain check at the estimate: %d draws, one every %.0f steps, after %.0f steps of "
        "burn-in",
        confirmation.draws, confirmation.thinning, confirmation.burn_in);
    write_convergence_block(verdicts, heading.c_str(), confirmation.check, labels);
    print(verdicts, "check\t%s: %s\n", confirmation.confirmed ? "confirmed" : "not confirmed",
          confirmation.confirmed ? "no t-ratio lies significantly above 0.1"
                                 : "the long chain speaks against convergence at this estimate");
    verdicts.close();
}

Observer estimation_file_observer(const OutputNames& names,
                                  const std::vector<ParameterLabel>& labels) {
    Observer observer;
    observer.run_ended = [names, labels](const RunEnded& e) {
        write_estimation_run_files(names, labels, e.run, e.record, e.check);
    };
    observer.check_ended = [names, labels](const CheckEnded& e) {
        write_confirmation_block(names, labels, e.confirmation);
    };
    return observer;
}

}  // namespace vexa
