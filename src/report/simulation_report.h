#pragma once
// The files of a simulation and of the sampling part of goodness of fit: the simulation
// report's heading and closing line, the parameter file, the sample statistics table and the
// acceptance rates. Each network kind words them its own way ("graphs", "digraphs").

#include <cstdio>
#include <vector>

#include "model/model.h"
#include "model/parameter_labels.h"
#include "network/network_kind.h"
#include "report/output_names.h"
#include "simulation/sampling.h"
#include "simulation/simulate.h"

namespace vexa {

// One line per parameter, "label\t%.5f" (with its lambda for an alternating effect);
// `labels` in simulation style.
void write_parameter_lines(FILE* out, const std::vector<ParameterLabel>& labels,
                           const std::vector<double>& parameters);

// The heading of the simulation report: the network's size, the parameters and the plan.
void write_simulation_heading(FILE* out, NetworkKind kind, int node_count,
                              const std::vector<ParameterLabel>& labels,
                              const std::vector<double>& parameters, const SamplingPlan& plan);
// "Accepted %.0f proposed graphs." (or digraphs), without a line end: it closes the report
// and the accept file.
void write_accepted_total(FILE* out, NetworkKind kind, double accepted);

// The sample statistics table: "id" and one column per statistic (`columns` in sample style),
// then one row per sample: counts "%.0f", weighted statistics "%.2f".
void write_sample_statistics_header(FILE* out, const std::vector<ParameterLabel>& columns);
void write_sample_statistics_row(FILE* out, double sample, const std::vector<double>& statistics,
                                 const std::vector<ParameterLabel>& columns);

// The acceptance file: its heading, then per sample its proposal and the interval's rate.
void write_accept_heading(FILE* out, NetworkKind kind);
void write_accept_row(FILE* out, double sample, double rate);

// The files of a simulation of `node_count` nodes: the report, the parameter file, the sample
// statistics, the acceptance rates and the end statistics.
void write_simulation_files(const OutputNames& names, const Model& model, int node_count,
                            const SimulationRecord& record);

// The sample statistics file: the header, then a row per sample (`rows` by sample, by slot).
void write_sample_statistics_file(const std::string& path,
                                  const std::vector<ParameterLabel>& columns,
                                  const std::vector<double>& numbers,
                                  const std::vector<std::vector<double>>& rows);

}  // namespace vexa
