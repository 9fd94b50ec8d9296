#include "report/html_report.h"

#include <cmath>

#include "base/errors.h"
#include "base/text_file.h"
#include "model/parameter_labels.h"
#include "report/convergence_report.h"
#include "report/html_plots.h"
#include "report/svg.h"

namespace vexa {

std::string data_number(double value) {
    if (std::isnan(value)) return "nan";
    return format_message("%.10g", value);
}

namespace {

// Plain, local styling: system fonts only, so nothing is fetched.
constexpr const char* page_style =
    "body{font-family:sans-serif;margin:24px;color:#222;max-width:1120px}"
    "h1{font-size:22px}h2{font-size:18px;border-bottom:1px solid #ccc;padding-bottom:4px;"
    "margin-top:32px}"
    "table{border-collapse:collapse;margin:8px 0}td,th{border:1px solid #ccc;padding:3px 8px;"
    "text-align:right;font-size:13px}th{background:#f2f2f2}td:first-child{text-align:left}.runs "
    "td:nth-child(2){text-align:left}"
    ".verdict{padding:10px 14px;border-radius:4px;font-size:15px}"
    ".good{background:#e3f3e3;border:1px solid #6a6}.bad{background:#fbe4e4;border:1px solid "
    "#c66}"
    ".note{font-size:13px;color:#555}.misfit{color:#d62728;font-weight:bold}svg{display:block;"
    "margin:6px 0}";

// The run whose numbers the page reports: the reported run, else the last.
size_t shown_run(const EstimationRecord& record) {
    if (record.reported_run > 0) return static_cast<size_t>(record.reported_run - 1);
    return record.runs.size() - 1;
}

std::string run_verdict(const EstimationRecord& record, size_t k,
                        const std::vector<ParameterLabel>& labels) {
    const EstimationRun& run = record.runs[k];
    if (run.astray) return "not converged: " + astray_text(run, labels);
    if (run.degenerate) return "degenerate: " + degeneracy_advice(run, labels);
    return convergence_summary(record.checks[k], labels);
}

const char* verdict_word(const EstimationRun& run, const ConvergenceCheck& check) {
    if (run.astray) return "not converged";
    if (run.degenerate) return "degenerate";
    return verdict_text(check.verdict);
}

std::string thresholds_text() {
    return format_message(
        "<p class=\"note\">A run converges when every convergence t-ratio (observed statistic "
        "minus the mean of the phase-3 draws, over their standard deviation) lies below %.2g in "
        "size and the overall maximum convergence ratio (the largest t-ratio over every "
        "combination of the statistics) below %.2g. With fewer than %.0f effective draws of a "
        "statistic the t-ratios are too noisy to tell: the verdict is then \"converged but "
        "noisy\". An estimate is marked significant when its run converged and it lies more than "
        "two standard errors from 0.</p>\n",
        t_ratio_limit, overall_ratio_limit, enough_effective_draws);
}

// The star of the text report: a converged run, a small t-ratio, two standard errors.
bool significant(const EstimationRecord& record, double estimate, double se, double t) {
    return record.converged && std::fabs(t) < 0.1 && std::fabs(estimate) > 2.0 * se;
}

std::string estimates_table(const EstimationRecord& record,
                            const std::vector<ParameterLabel>& labels) {
    const EstimationRun& run = record.runs[shown_run(record)];
    const bool have_errors = !run.degenerate && run.standard_errors.size() == run.estimates.size();
    std::string html =
        "<table class=\"estimates\"><tr><th>effect</th><th>estimate</th><th>standard "
        "error</th><th>estimate / s.e.</th><th>convergence t-ratio</th><th>significant</th></tr>\n";
    for (const ParameterLabel& label : labels) {
        const auto k = static_cast<size_t>(label.position);
        const double estimate = record.estimates[k];
        const double se = have_errors ? run.standard_errors[k] : std::nan("");
        const double t = have_errors ? run.t_ratios[k] : std::nan("");
        const bool starred = significant(record, estimate, se, t);
        html += format_message(
            "<tr class=\"estimate\" data-effect=\"%s\" data-estimate=\"%s\" data-se=\"%s\" "
            "data-t=\"%s\" data-significant=\"%d\"><td>%s</td><td>%.4f</td><td>%s</td>"
            "<td>%s</td><td>%s</td><td>%s</td></tr>\n",
            html_escape(labelled(label)).c_str(), data_number(estimate).c_str(),
            data_number(se).c_str(), data_number(t).c_str(), starred ? 1 : 0,
            html_escape(labelled(label)).c_str(), estimate,
            have_errors ? fixed_text(se, 4).c_str() : "-",
            have_errors ? fixed_text(estimate / se, 2).c_str() : "-",
            have_errors ? fixed_text(t, 3).c_str() : "-", starred ? "yes *" : "no");
    }
    return html + "</table>\n";
}

std::string runs_table(const EstimationRecord& record, const std::vector<ParameterLabel>& labels) {
    std::string html =
        "<table class=\"runs\"><tr><th>run</th><th>verdict</th><th>largest |t|</th><th>overall "
        "ratio</th><th>smallest effective draws</th></tr>\n";
    for (size_t k = 0; k < record.runs.size(); ++k) {
        const ConvergenceCheck& check = record.checks[k];
        const char* word = verdict_word(record.runs[k], check);
        html += format_message(
            "<tr class=\"run\" data-run=\"%zu\" data-verdict=\"%s\" data-largest-t=\"%s\" "
            "data-overall=\"%s\"><td>%zu</td><td>%s</td><td>%.3f</td><td>%.3f</td><td>%.0f</td>"
            "</tr>\n",
            k + 1, word, data_number(check.largest_t).c_str(),
            data_number(check.overall_ratio).c_str(), k + 1,
            html_escape(run_verdict(record, k, labels)).c_str(), check.largest_t,
            check.overall_ratio, check.smallest_effective_size);
    }
    return html + "</table>\n";
}

std::vector<Interval> estimate_intervals(const EstimationRecord& record,
                                         const std::vector<ParameterLabel>& labels) {
    const EstimationRun& run = record.runs[shown_run(record)];
    const bool have_errors = !run.degenerate && run.standard_errors.size() == run.estimates.size();
    std::vector<Interval> rows;
    for (const ParameterLabel& label : labels) {
        const auto k = static_cast<size_t>(label.position);
        const double estimate = record.estimates[k];
        const double se = have_errors ? run.standard_errors[k] : std::nan("");
        const double t = have_errors ? run.t_ratios[k] : std::nan("");
        rows.push_back({labelled(label), estimate, 2.0 * se, significant(record, estimate, se, t),
                        format_message("data-effect=\"%s\" data-estimate=\"%s\" data-se=\"%s\"",
                                       html_escape(labelled(label)).c_str(),
                                       data_number(estimate).c_str(), data_number(se).c_str())});
    }
    return rows;
}

// Each parameter's path through phase 2: the start, after phase 1, after every sub-phase.
std::vector<TraceLine> phase2_paths(const EstimationRun& run,
                                    const std::vector<ParameterLabel>& labels,
                                    const std::vector<double>& estimates) {
    std::vector<const std::vector<double>*> points{&run.starting};
    if (!run.after_phase1.empty()) points.push_back(&run.after_phase1);
    for (const Subphase& subphase : run.subphases) points.push_back(&subphase.parameters);
    std::vector<TraceLine> lines;
    for (const ParameterLabel& label : labels) {
        const auto k = static_cast<size_t>(label.position);
        TraceLine line{labelled(label), {}, {}, true, estimates[k], ""};
        for (size_t s = 0; s < points.size(); ++s) {
            if (k >= points[s]->size()) continue;
            line.xs.push_back(static_cast<double>(s));
            line.ys.push_back((*points[s])[k]);
        }
        line.attributes = format_message("data-name=\"%s\" data-phase=\"2\" data-points=\"%zu\"",
                                         html_escape(line.name).c_str(), line.ys.size());
        lines.push_back(std::move(line));
    }
    return lines;
}

// Each statistic's phase-3 draws in the order drawn, against its observed value.
std::vector<TraceLine> phase3_traces(const EstimationRun& run,
                                     const std::vector<ParameterLabel>& labels) {
    std::vector<TraceLine> lines;
    const Matrix& draws = run.phase3_draws_matrix;
    for (const ParameterLabel& label : labels) {
        const auto k = static_cast<int>(label.position);
        if (k >= draws.cols || static_cast<size_t>(k) >= run.observed.size()) continue;
        TraceLine line{labelled(label), {}, {}, true, run.observed[static_cast<size_t>(k)], ""};
        for (int r = 0; r < draws.rows; ++r) {
            line.xs.push_back(static_cast<double>(r + 1));
            line.ys.push_back(draws[r][k]);
        }
        line.attributes =
            format_message("data-name=\"%s\" data-phase=\"3\" data-observed=\"%s\"",
                           html_escape(line.name).c_str(), data_number(line.reference).c_str());
        lines.push_back(std::move(line));
    }
    return lines;
}

}  // namespace

std::string estimation_section(const Model& model, const EstimationRecord& record) {
    const std::vector<ParameterLabel> labels = parameter_labels(model, LabelStyle::summary);
    std::string html = "<h2>Estimation</h2>\n";
    if (record.runs.empty()) return html + "<p>No estimation run took place.</p>\n";
    const size_t k = shown_run(record);
    const EstimationRun& run = record.runs[k];
    html += format_message(
        "<p class=\"verdict %s\" data-verdict=\"%s\" data-converged=\"%d\">Run %zu of %zu: "
        "%s.</p>\n",
        record.converged ? "good" : "bad", verdict_word(run, record.checks[k]),
        record.converged ? 1 : 0, k + 1, record.runs.size(),
        html_escape(run_verdict(record, k, labels)).c_str());
    if (!record.converged) {
        html +=
            "<p class=\"note\">No run converged: the estimates below are not to be trusted "
            "and carry no significance.</p>\n";
    }
    if (record.confirmation) {
        html += "<p class=\"note\">Long-chain check at the estimate: " +
                html_escape(confirmation_summary(record.confirmation->confirmed,
                                                 record.confirmation->check, labels)) +
                ".</p>\n";
    }
    html += thresholds_text();
    html += "<h3>Estimates</h3>\n" + estimates_table(record, labels);
    html += interval_chart(estimate_intervals(record, labels),
                           "Estimates with two standard errors either side (green: significant)");
    html += "<h3>Runs</h3>\n" + runs_table(record, labels);
    if (!run.subphases.empty()) {
        html += trace_grid(phase2_paths(run, labels, record.estimates),
                           format_message("Phase 2 of run %zu: each parameter's path", k + 1),
                           "0 start, 1 after phase 1, then after each sub-phase", 4);
        html +=
            "<p class=\"note\">The red line is the estimate reported. A path that still "
            "climbs or falls in the last sub-phases has not settled.</p>\n";
    }
    if (run.phase3_draws_matrix.rows > 0) {
        html += trace_grid(phase3_traces(run, labels),
                           format_message("Phase 3 of run %zu: each statistic's draws", k + 1),
                           "draw", 4);
        html +=
            "<p class=\"note\">The red line is the observed statistic; at a converged "
            "estimate the draws scatter around it without drifting.</p>\n";
    }
    return html;
}

void write_html_report(FILE* out, const HtmlReport& report) {
    const std::string title = "vexa: " + report.task + " of " + report.network_name;
    print(out,
          "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n<title>%s</title>\n"
          "<style>%s</style></head>\n<body>\n<h1>%s</h1>\n",
          html_escape(title).c_str(), page_style, html_escape(title).c_str());
    if (report.model != nullptr) {
        print(out, "<p class=\"note\">%s, %d nodes, %d parameters.</p>\n",
              report.model->kind == NetworkKind::digraph ? "Directed network" : "Network",
              report.node_count, report.model->parameter_count());
        if (report.estimation != nullptr)
            print(out, "%s", estimation_section(*report.model, *report.estimation).c_str());
        if (report.gof != nullptr) print(out, "%s", gof_section(report, *report.gof).c_str());
        if (report.simulation != nullptr)
            print(out, "%s", simulation_section(*report.model, *report.simulation).c_str());
    }
    print(out, "</body></html>\n");
}

void write_html_file(const std::string& path, const HtmlReport& report) {
    OutFile out(path, OpenMode::truncate);
    write_html_report(out, report);
    out.close();
}

}  // namespace vexa
