#include "report/statistics_report.h"

#include <string>

#include "base/text_file.h"

namespace vexa {

void write_graph_statistics(FILE* out, const Graph& graph, const std::vector<Term>& terms) {
    print(out, "\n***This graph contains:****\n");
    for (const Term& term : terms) {
        const GraphEffectRow& row = graph_row(term.effect);
        const std::string label = effect_label(row.report_name, row.alternating(), term.lambda);
        const double value = graph.statistics[static_cast<size_t>(term.slot)];
        if (row.integral) {
            print(out, "%s\t%.0f\n", label.c_str(), value);
        } else {
            print(out, "%s\t%.5f\n", label.c_str(), value);
        }
    }
}

}  // namespace vexa
