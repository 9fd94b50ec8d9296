#include "report/statistics_report.h"

#include "base/text_file.h"

namespace vexa {

void write_statistics_report(FILE* out, const std::vector<ParameterLabel>& labels,
                             const std::vector<double>& statistics) {
    print(out, "\n***This graph contains:****\n");
    for (const ParameterLabel& label : labels) {
        const double value = statistics[static_cast<size_t>(label.position)];
        if (label.integral) {
            print(out, "%s\t%.0f\n", labelled(label).c_str(), value);
        } else {
            print(out, "%s\t%.5f\n", labelled(label).c_str(), value);
        }
    }
}

void write_statistics_file(const std::string& path, const Model& model,
                           const std::vector<double>& statistics) {
    OutFile out(path, OpenMode::truncate);
    write_statistics_report(out, parameter_labels(model, LabelStyle::report, LabelOrder::catalogue),
                            statistics);
    out.close();
}

}  // namespace vexa
