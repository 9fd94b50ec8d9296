#include "report/gof_files.h"

#include <vector>

#include "base/text_file.h"
#include "report/bayesian_report.h"
#include "report/digraph_files.h"
#include "report/gof_report.h"
#include "report/simulation_report.h"
#include "report/statistics_report.h"

namespace vexa {

namespace {

// The sample by sample, each row by slot.
std::vector<std::vector<double>> rows_of(const GofSample& sample) {
    std::vector<std::vector<double>> rows(sample.numbers.size(),
                                          std::vector<double>(sample.statistics.size(), 0.0));
    for (size_t k = 0; k < sample.statistics.size(); ++k) {
        for (size_t r = 0; r < rows.size(); ++r) rows[r][k] = sample.statistics[k][r];
    }
    return rows;
}

// A network with missing dyads compares the sample with the mean of networks drawn given its
// observed dyads.
void write_given_line(FILE* out, const GofRecord& record) {
    if (record.given_draws == 0) return;
    print(out,
          "The observed network has %lld missing dyads: its values below are the means of %d "
          "networks drawn given the observed dyads%s.\n",
          static_cast<long long>(record.missing_dyads), record.given_draws,
          record.sets ? " at the mean of the parameter sets" : "");
}

void write_heading(FILE* out, const Model& model, const GofRecord& record) {
    const std::vector<ParameterLabel> labels = parameter_labels(model, LabelStyle::simulation);
    if (record.sets) {
        write_bayesian_heading(out, labels, record.sets->moments, record.sets->count,
                               record.burn_in);
        write_given_line(out, record);
        return;
    }
    write_gof_heading(out, record.kind, labels, record.parameters, record.plan);
    if (record.after_estimation) write_gof_plan_after_estimation(out, record.plan, record.burn_in);
    write_given_line(out, record);
}

void write_comparisons(FILE* out, const Model& model, const GofRecord& record) {
    const std::vector<ParameterLabel> labels = parameter_labels(model, LabelStyle::gof);
    const std::vector<std::string>& names = measure_names(record.kind);
    const std::vector<double>& measures = record.observed_measures.values;
    if (record.sets) {
        write_bayesian_comparisons(out, record.kind, record.accepted, record.proposals, labels,
                                   record.observed_statistics, names, measures, record.sample);
    } else {
        write_gof_comparisons(out, record.kind, record.accepted, record.proposals, labels,
                              record.observed_statistics, names, measures, record.sample);
    }
    if (record.kind == NetworkKind::digraph)
        write_triad_census_block(out, record.observed_census, record.census);
    write_gof_quartiles(out, record.observed_measures.quartiles, record.sample);
}

}  // namespace

void write_gof_files(const OutputNames& names, const Model& model, const GofRecord& record) {
    const std::vector<ParameterLabel> columns = parameter_labels(model, LabelStyle::sample);
    OutFile report(names.gof, OpenMode::append);
    write_heading(report, model, record);
    write_comparisons(report, model, record);
    write_gof_mahalanobis(report, record.kind, record.distance);
    if (record.sets) write_bayesian_bounds(report, record.sets->empty, record.sets->complete);
    report.close();

    write_sample_statistics_file(names.sample_statistics + ".txt", columns, record.sample.numbers,
                                 rows_of(record.sample));
    OutFile table(names.simulation, OpenMode::truncate);
    write_gof_sample_table(table, columns, record.sample, record.distance);
    table.close();
    if (record.kind == NetworkKind::digraph) {
        OutFile accept(names.accept, OpenMode::truncate);
        write_accept_heading(accept, record.kind);
        for (size_t r = 0; r < record.sample.numbers.size(); ++r)
            write_accept_row(accept, record.sample.numbers[r], record.acceptance_rates[r]);
        write_accepted_total(accept, record.kind, record.accepted);
        accept.close();
    } else {
        write_statistics_file(names.end_statistics, model, record.end_statistics);
    }
}

}  // namespace vexa
