#include "entry/html_output.h"

#include <type_traits>
#include <variant>

#include "report/html_report.h"

namespace vexa {

Observer html_collector(HtmlCollection& collection) {
    Observer collector;
    collector.sample_drawn = [&collection](const SampleDrawn& e) {
        std::visit(
            [&](const auto* store) {
                using Store = std::remove_cvref_t<decltype(*store)>;
                if (auto* scratch = std::get_if<ScratchOf<Store>*>(&e.measured))
                    collection.samples.push_back(trimmed(profile_of(*store, **scratch)));
            },
            e.network);
    };
    return collector;
}

void write_html_output(const RunContext& context, const HtmlCollection& collection) {
    const RunSettings& s = context.settings;
    const TaskRecords& records = collection.records;
    HtmlReport report;
    report.model = &context.model;
    report.network_name = s.network_name;
    report.task = task_name(s.task);
    report.node_count = s.node_count;
    if (records.estimation) report.estimation = &*records.estimation;
    if (records.gof) report.gof = &*records.gof;
    if (records.simulation) report.simulation = &*records.simulation;
    if (s.task != Task::simulation) {
        report.observed_profile = &collection.observed;
        report.sample_profiles = &collection.samples;
    }
    write_html_file(context.names.html, report);
    std::fprintf(context.console, "vexa: the HTML report is in %s\n", context.names.html.c_str());
}

}  // namespace vexa
