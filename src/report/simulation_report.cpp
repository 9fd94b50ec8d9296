#include "report/simulation_report.h"

#include "base/text_file.h"
#include "report/statistics_report.h"

namespace vexa {

namespace {

const char* networks(NetworkKind kind) {
    return kind == NetworkKind::digraph ? "digraphs" : "graphs";
}

}  // namespace

void write_parameter_lines(FILE* out, const std::vector<ParameterLabel>& labels,
                           const std::vector<double>& parameters) {
    for (const ParameterLabel& label : labels) {
        print(out, "%s\t%.5f\n", labelled(label).c_str(),
              parameters[static_cast<size_t>(label.position)]);
    }
}

void write_simulation_heading(FILE* out, NetworkKind kind, int node_count,
                              const std::vector<ParameterLabel>& labels,
                              const std::vector<double>& parameters, const SamplingPlan& plan) {
    if (kind == NetworkKind::digraph) {
        print(out, "Simulation result for digraph with %d of vertices.\nParameter Values of:\n",
              node_count);
    } else {
        print(out, "Simulation started for graph with %d vertices\nParameter Values:\n",
              node_count);
    }
    write_parameter_lines(out, labels, parameters);
    print(out, "Proposed %.0f %s.\nSamples are picked up at 1 per %.0f %s.\n", plan.proposals,
          networks(kind), plan.interval, networks(kind));
}

void write_accepted_total(FILE* out, NetworkKind kind, double accepted) {
    print(out, "Accepted %.0f proposed %s.", accepted, networks(kind));
}

void write_sample_statistics_header(FILE* out, const std::vector<ParameterLabel>& columns) {
    print(out, "id\t");
    for (const ParameterLabel& column : columns) print(out, "%s\t", column.name.c_str());
    print(out, "\n");
}

void write_sample_statistics_row(FILE* out, double sample, const std::vector<double>& statistics,
                                 const std::vector<ParameterLabel>& columns) {
    print(out, "%.0f\t", sample);
    for (const ParameterLabel& column : columns) {
        const double value = statistics[static_cast<size_t>(column.position)];
        if (column.integral) {
            print(out, "%.0f\t", value);
        } else {
            print(out, "%.2f\t", value);
        }
    }
    print(out, "\n");
}

void write_accept_heading(FILE* out, NetworkKind kind) {
    print(out, kind == NetworkKind::digraph ? "Acceptance Rate(Digraph)\n"
                                            : "Acceptance Rate (non-Digraph)\n");
}

void write_accept_row(FILE* out, double sample, double rate) {
    print(out, "%8.0f\t%8.4f\n", sample, rate);
}

void write_sample_statistics_file(const std::string& path,
                                  const std::vector<ParameterLabel>& columns,
                                  const std::vector<double>& numbers,
                                  const std::vector<std::vector<double>>& rows) {
    OutFile out(path, OpenMode::truncate);
    write_sample_statistics_header(out, columns);
    for (size_t r = 0; r < rows.size(); ++r)
        write_sample_statistics_row(out, numbers[r], rows[r], columns);
    out.close();
}

void write_simulation_files(const OutputNames& names, const Model& model, int node_count,
                            const SimulationRecord& record) {
    const NetworkKind kind = model.kind;
    const std::vector<ParameterLabel> labels = parameter_labels(model, LabelStyle::simulation);
    OutFile report(names.simulation, OpenMode::truncate);
    write_simulation_heading(report, kind, node_count, labels, record.parameters, record.plan);
    write_accepted_total(report, kind, record.accepted);
    report.close();
    OutFile parameter_file(names.parameter, OpenMode::truncate);
    write_parameter_lines(parameter_file, labels, record.parameters);
    parameter_file.close();
    write_sample_statistics_file(names.sample_statistics + ".txt",
                                 parameter_labels(model, LabelStyle::sample), record.sample_numbers,
                                 record.sample_statistics);
    OutFile accept(names.accept, OpenMode::truncate);
    write_accept_heading(accept, kind);
    for (size_t r = 0; r < record.sample_numbers.size(); ++r)
        write_accept_row(accept, record.sample_numbers[r], record.acceptance_rates[r]);
    write_accepted_total(accept, kind, record.accepted);
    accept.close();
    write_statistics_file(names.end_statistics, model, record.end_statistics);
}

}  // namespace vexa
