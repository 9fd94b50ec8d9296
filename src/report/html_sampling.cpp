// The sections of the HTML report drawn from samples: goodness of fit (plain and Bayesian) and
// simulation.
#include <algorithm>
#include <cmath>

#include "base/errors.h"
#include "model/parameter_labels.h"
#include "numeric/moments.h"
#include "report/html_plots.h"
#include "report/html_report.h"
#include "report/svg.h"
#include "simulation/bayesian_gof.h"
#include "simulation/measures.h"

namespace vexa {

namespace {

// One statistic or measure of a goodness of fit, as the text report compares it.
struct Compared {
    std::string name;
    double observed = 0.0;
    const std::vector<double>* sample = nullptr;
};

std::vector<Compared> compared_of(const Model& model, const GofRecord& record) {
    std::vector<Compared> all;
    for (const ParameterLabel& label : parameter_labels(model, LabelStyle::gof)) {
        const auto k = static_cast<size_t>(label.position);
        all.push_back(
            {labelled(label), record.observed_statistics[k], &record.sample.statistics[k]});
    }
    const std::vector<std::string>& names = measure_names(record.kind);
    for (size_t m = 0; m < names.size() && m < record.sample.measures.size(); ++m)
        all.push_back({names[m], record.observed_measures.values[m], &record.sample.measures[m]});
    return all;
}

std::vector<BoxItem> box_items(const std::vector<Compared>& all, bool bayesian) {
    std::vector<BoxItem> items;
    for (const Compared& c : all) {
        const Comparison comparison = compare(c.observed, *c.sample);
        const double p = bayesian ? posterior_predictive_p(c.observed, *c.sample) : 0.0;
        BoxItem item;
        item.name = c.name;
        item.observed = c.observed;
        item.sample = c.sample;
        item.note = format_message("observed %.4g, t = %.2f", c.observed, comparison.t);
        if (bayesian) item.note += format_message(", p = %.3f", p);
        item.flagged = bayesian ? p < posterior_p_limit : !(std::fabs(comparison.t) <= gof_t_limit);
        item.attributes = format_message(
            "data-name=\"%s\" data-observed=\"%s\" data-mean=\"%s\" data-sd=\"%s\" data-t=\"%s\"",
            html_escape(c.name).c_str(), data_number(c.observed).c_str(),
            data_number(comparison.mean).c_str(), data_number(comparison.stddev).c_str(),
            data_number(comparison.t).c_str());
        if (bayesian) item.attributes += " data-p=\"" + data_number(p) + "\"";
        items.push_back(std::move(item));
    }
    return items;
}

// Category c's value in a count vector, 0 beyond its end.
template <class Count>
double entry(const std::vector<Count>& counts, size_t c) {
    return c < counts.size() ? static_cast<double>(counts[c]) : 0.0;
}

// Counts by degree, 0 to the largest degree of the observed network or of any sample.
DistributionPlot degree_plot(const HtmlReport& report, bool in_degrees, const char* title,
                             const char* kind) {
    const auto pick = [&](const NetworkProfile& p) -> const std::vector<int32_t>& {
        return in_degrees ? p.in_degree : p.degree;
    };
    size_t top = pick(*report.observed_profile).size();
    for (const NetworkProfile& p : *report.sample_profiles) top = std::max(top, pick(p).size());
    DistributionPlot plot{title, kind, {}, {}, {}};
    for (size_t d = 0; d < std::max<size_t>(top, 1); ++d) {
        plot.categories.push_back(std::to_string(d));
        plot.observed.push_back(entry(pick(*report.observed_profile), d));
        std::vector<double> values;
        for (const NetworkProfile& p : *report.sample_profiles) values.push_back(entry(pick(p), d));
        plot.samples.push_back(std::move(values));
    }
    return plot;
}

// The pairs at distance d, d = 1 .. size - 2, then the pairs without a path (the profile's
// last entry).
double geodesic_count(const std::vector<int64_t>& geodesics, size_t d, bool unreached) {
    if (geodesics.size() < 2) return 0.0;
    if (unreached) return static_cast<double>(geodesics.back());
    return d + 1 < geodesics.size() ? static_cast<double>(geodesics[d]) : 0.0;
}

DistributionPlot geodesic_plot(const HtmlReport& report) {
    size_t longest = report.observed_profile->geodesics.size();
    for (const NetworkProfile& p : *report.sample_profiles)
        longest = std::max(longest, p.geodesics.size());
    const char* title = report.model->kind == NetworkKind::digraph
                            ? "Geodesic distribution: ordered pairs by directed distance"
                            : "Geodesic distribution: pairs by distance";
    DistributionPlot plot{title, "geodesic", {}, {}, {}};
    const size_t distances = longest >= 2 ? longest - 2 : 0;
    for (size_t c = 1; c <= distances + 1; ++c) {
        const bool unreached = c == distances + 1;
        plot.categories.push_back(unreached ? "no path" : std::to_string(c));
        plot.observed.push_back(geodesic_count(report.observed_profile->geodesics, c, unreached));
        std::vector<double> values;
        for (const NetworkProfile& p : *report.sample_profiles)
            values.push_back(geodesic_count(p.geodesics, c, unreached));
        plot.samples.push_back(std::move(values));
    }
    return plot;
}

DistributionPlot triad_plot(const GofRecord& record) {
    DistributionPlot plot{"Triad census: triples of nodes by class", "triad", {}, {}, {}};
    for (size_t c = 0; c < triad_class_count; ++c) {
        plot.categories.emplace_back(triad_class_names[c]);
        plot.observed.push_back(record.observed_census.counts[c]);
        std::vector<double> values;
        for (const TriadCensus& census : record.census) values.push_back(census.counts[c]);
        plot.samples.push_back(std::move(values));
    }
    return plot;
}

std::string distributions(const HtmlReport& report, const GofRecord& record) {
    std::string html;
    const bool profiles = report.observed_profile != nullptr && report.sample_profiles != nullptr &&
                          !report.sample_profiles->empty();
    const bool digraph = record.kind == NetworkKind::digraph;
    if (profiles) {
        html += distribution_chart(degree_plot(report, false,
                                               digraph ? "Out-degree distribution: nodes by "
                                                         "out-degree"
                                                       : "Degree distribution: nodes by degree",
                                               digraph ? "out-degree" : "degree"));
        if (digraph) {
            html += distribution_chart(degree_plot(
                report, true, "In-degree distribution: nodes by in-degree", "in-degree"));
        }
        html += distribution_chart(geodesic_plot(report));
    }
    if (digraph && !record.census.empty()) html += distribution_chart(triad_plot(record));
    if (html.empty()) return html;
    return "<h3>Distributions</h3>\n<p class=\"note\">Boxes: the sampled networks' counts; red: "
           "the observed network's.</p>\n" +
           html;
}

std::string sets_table(const Model& model, const ParameterSetsSummary& sets) {
    std::string html = format_message(
        "<p>The parameters over the %d sets used (%d draws ended at the empty network, %d at the "
        "complete one):</p>\n<table><tr><th>effect</th><th>mean</th><th>standard "
        "deviation</th></tr>\n",
        sets.count, sets.empty, sets.complete);
    for (const ParameterLabel& label : parameter_labels(model, LabelStyle::simulation)) {
        const Moments& m = sets.moments[static_cast<size_t>(label.position)];
        html += format_message("<tr><td>%s</td><td>%.5f</td><td>%.5f</td></tr>\n",
                               html_escape(labelled(label)).c_str(), m.mean, m.stddev);
    }
    return html + "</table>\n";
}

std::string p_value_chart(const std::vector<Compared>& all) {
    std::vector<Bar> bars;
    for (const Compared& c : all) {
        const double p = posterior_predictive_p(c.observed, *c.sample);
        bars.push_back({c.name, p,
                        format_message("data-name=\"%s\" data-p=\"%s\"",
                                       html_escape(c.name).c_str(), data_number(p).c_str())});
    }
    return bar_chart(bars, "Posterior predictive p-values (dashed: 0.05)", posterior_p_limit);
}

}  // namespace

std::string gof_section(const HtmlReport& report, const GofRecord& record) {
    const bool bayesian = record.sets.has_value();
    const std::vector<Compared> all = compared_of(*report.model, record);
    std::string html =
        bayesian ? "<h2>Bayesian goodness of fit</h2>\n" : "<h2>Goodness of fit</h2>\n";
    html += format_message("<p>%zu sampled networks%s.", record.sample.numbers.size(),
                           bayesian ? ", one per parameter set" : "");
    if (record.distance.available) {
        html += format_message(
            " Mahalanobis distance of the observed statistics from the sample: %.3f; %.0f%% of "
            "the sampled networks lie closer.",
            record.distance.observed_distance, record.distance.closer_percent);
    }
    html += "</p>\n";
    html += bayesian ? format_message(
                           "<p class=\"note\">A posterior predictive p-value below %.2g (red) "
                           "marks a statistic the model does not reproduce, even allowing for "
                           "the parameters' uncertainty.</p>\n",
                           posterior_p_limit)
                     : format_message(
                           "<p class=\"note\">t = (observed - sample mean) / sample standard "
                           "deviation. A |t| above %.0f (a red frame) marks a statistic the model "
                           "does not reproduce: the observed value lies outside about the middle "
                           "95 %% of the sample.</p>\n",
                           gof_t_limit);
    if (bayesian) html += sets_table(*report.model, *record.sets) + p_value_chart(all);
    html += box_grid(box_items(all, bayesian),
                     "Statistics and measures: the sample's boxes, the observed value in red");
    html +=
        "<p class=\"note\">Box: the middle half of the sample, with its median; whiskers: "
        "the furthest values within 1.5 box lengths.</p>\n";
    return html + distributions(report, record);
}

std::string simulation_section(const Model& model, const SimulationRecord& record) {
    std::string html = format_message(
        "<h2>Simulation</h2>\n<p>%zu sampled networks, one every %.0f proposals after a "
        "burn-in of %.0f; acceptance rate %.4f.</p>\n",
        record.sample_statistics.size(), record.plan.interval, record.burn_in,
        record.plan.proposals > 0.0 ? record.accepted / record.plan.proposals : 0.0);
    std::vector<TraceLine> lines;
    for (const ParameterLabel& label : parameter_labels(model, LabelStyle::sample)) {
        const auto k = static_cast<size_t>(label.position);
        TraceLine line{label.name, record.sample_numbers, {}, false, 0.0, ""};
        for (const std::vector<double>& row : record.sample_statistics) line.ys.push_back(row[k]);
        const Moments m = moments(line.ys.data(), static_cast<int>(line.ys.size()));
        line.attributes =
            format_message("data-name=\"%s\" data-mean=\"%s\" data-sd=\"%s\" data-count=\"%zu\"",
                           html_escape(line.name).c_str(), data_number(m.mean).c_str(),
                           data_number(m.stddev).c_str(), line.ys.size());
        lines.push_back(std::move(line));
    }
    html += trace_grid(lines, "Each statistic over the samples", "proposal", 4);
    html +=
        "<p class=\"note\">A trace that drifts rather than scatters about a level says the "
        "burn-in or the spacing of the samples was too short.</p>\n";
    for (TraceLine& line : lines) line.attributes = "data-name=\"" + html_escape(line.name) + "\"";
    html += histogram_grid(lines, "Each statistic's distribution over the samples", 4);
    return html;
}

}  // namespace vexa
