#include "report/html_plots.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>

#include "report/svg.h"

namespace vexa {

namespace {

constexpr double panel_width = 270.0;
constexpr double panel_height = 180.0;
constexpr double margin_left = 52.0;
constexpr double margin_top = 40.0;
constexpr double margin_bottom = 18.0;

// The rows a grid of `count` panels takes, `columns` to a row.
int rows_for(size_t count, int columns) {
    return static_cast<int>((count + static_cast<size_t>(columns) - 1) /
                            static_cast<size_t>(columns));
}

double grid_height(size_t count, int columns) {
    return 30.0 + panel_height * std::max(1, rows_for(count, columns));
}

// The top left corner of panel k.
void panel_corner(size_t k, int columns, double& left, double& top) {
    const size_t row = k / static_cast<size_t>(columns);  // whole rows above the panel
    left = panel_width * static_cast<double>(k % static_cast<size_t>(columns));
    top = 30.0 + panel_height * static_cast<double>(row);
}

// A box and its whiskers at x, `half` wide either side, on the area's y scale.
void draw_box(Svg& svg, const PlotArea& area, double x, double half, const BoxSummary& box) {
    const auto& y = area.y;
    svg.line(x, y(box.low_whisker), x, y(box.q1), sample_colour, 1.0);
    svg.line(x, y(box.q3), x, y(box.high_whisker), sample_colour, 1.0);
    svg.line(x - half / 2, y(box.low_whisker), x + half / 2, y(box.low_whisker), sample_colour,
             1.0);
    svg.line(x - half / 2, y(box.high_whisker), x + half / 2, y(box.high_whisker), sample_colour,
             1.0);
    svg.rect(x - half, y(box.q3), 2 * half, y(box.q1) - y(box.q3), "#dce6f2", sample_colour,
             " class=\"quartiles\"");
    svg.line(x - half, y(box.median), x + half, y(box.median), sample_colour, 2.0,
             " class=\"median\"");
}

void draw_box_panel(Svg& svg, const BoxItem& item, double left, double top) {
    const BoxSummary box =
        box_summary(item.sample != nullptr ? *item.sample : std::vector<double>{});
    const double y_low = std::min(box.low, item.observed);
    const double y_high = std::max(box.high, item.observed);
    const PlotArea area =
        plot_area(left + margin_left, top + margin_top, panel_width - 70.0,
                  panel_height - margin_top - margin_bottom, 0.0, 1.0, y_low, y_high);
    svg.begin_group("class=\"box\" " + item.attributes);
    svg.label(left + panel_width / 2, top + 14.0, item.name, "middle", 12.0,
              " font-weight=\"bold\"");
    svg.label(left + panel_width / 2, top + 28.0, item.note, "middle", 10.5,
              item.flagged ? " fill=\"#d62728\"" : "");
    draw_y_axis(svg, area);
    svg.rect(area.left, area.top, area.width, area.height, "none",
             item.flagged ? observed_colour : "#888888");
    const double middle = area.x(0.5);
    if (box.count > 0) draw_box(svg, area, middle, 28.0, box);
    // The values beyond the whiskers, each distinct one once.
    std::set<double> outliers;
    if (item.sample != nullptr) {
        for (const double value : *item.sample)
            if (value < box.low_whisker || value > box.high_whisker) outliers.insert(value);
    }
    for (const double value : outliers)
        svg.circle(middle, area.y(value), 1.8, sample_colour, " fill-opacity=\"0.6\"");
    const double y = area.y(item.observed);
    svg.line(area.left + 8.0, y, area.left + area.width - 8.0, y, observed_colour, 2.0,
             " class=\"observed\"");
    svg.circle(middle, y, 3.5, observed_colour);
    svg.end_group();
}

}  // namespace

std::string box_grid(const std::vector<BoxItem>& items, const std::string& title) {
    constexpr int columns = 4;
    Svg svg;
    svg.open(panel_width * columns, grid_height(items.size(), columns), title);
    svg.label(4.0, 18.0, title, "start", 14.0, " font-weight=\"bold\"");
    for (size_t k = 0; k < items.size(); ++k) {
        double left = 0.0, top = 0.0;
        panel_corner(k, columns, left, top);
        draw_box_panel(svg, items[k], left, top);
    }
    svg.close();
    return svg.text;
}

std::string distribution_chart(const DistributionPlot& plot) {
    const size_t n = plot.categories.size();
    const double width = std::max(560.0, std::min(1080.0, 80.0 + 26.0 * static_cast<double>(n)));
    Svg svg;
    svg.open(width, 260.0, plot.title);
    svg.label(4.0, 18.0, plot.title, "start", 14.0, " font-weight=\"bold\"");
    std::vector<BoxSummary> boxes;
    double low = 0.0, high = 0.0;
    for (size_t c = 0; c < n; ++c) {
        boxes.push_back(
            box_summary(c < plot.samples.size() ? plot.samples[c] : std::vector<double>{}));
        high = std::max(high, boxes.back().high);
        if (c < plot.observed.size()) high = std::max(high, plot.observed[c]);
        low = std::min(low, boxes.back().low);
    }
    const PlotArea area =
        plot_area(56.0, 30.0, width - 70.0, 190.0, -0.5, static_cast<double>(n) - 0.5, low, high);
    draw_y_axis(svg, area);
    draw_frame(svg, area);
    const double half = std::min(9.0, area.width / static_cast<double>(std::max<size_t>(n, 1)) / 3);
    std::vector<double> xs, ys;
    for (size_t c = 0; c < n; ++c) {
        const double x = area.x(static_cast<double>(c));
        char head[200];
        std::snprintf(head, sizeof head,
                      "class=\"dist\" data-kind=\"%s\" data-category=\"%s\" data-mean=\"%.10g\" "
                      "data-count=\"%zu\"",
                      plot.kind.c_str(), html_escape(plot.categories[c]).c_str(), boxes[c].mean,
                      boxes[c].count);
        std::string attributes = head;
        if (c < plot.observed.size()) {
            char observed[48];
            std::snprintf(observed, sizeof observed, " data-observed=\"%.10g\"", plot.observed[c]);
            attributes += observed;
        }
        svg.begin_group(attributes);
        if (boxes[c].count > 0) draw_box(svg, area, x, half, boxes[c]);
        svg.label(x, area.top + area.height + 13.0, plot.categories[c], "middle", 9.5);
        svg.end_group();
        if (c < plot.observed.size()) {
            xs.push_back(x);
            ys.push_back(area.y(plot.observed[c]));
        }
    }
    svg.polyline(xs, ys, observed_colour, 1.5, " class=\"observed\"");
    for (size_t k = 0; k < xs.size(); ++k) svg.circle(xs[k], ys[k], 3.0, observed_colour);
    svg.close();
    return svg.text;
}

std::vector<size_t> thinned_indices(size_t count, size_t most) {
    std::vector<size_t> kept;
    if (count == 0 || most == 0) return kept;
    if (count <= most) {
        for (size_t k = 0; k < count; ++k) kept.push_back(k);
        return kept;
    }
    // Evenly spaced over [0, count - 1], both ends kept.
    for (size_t k = 0; k < most; ++k) kept.push_back(k * (count - 1) / (most - 1));
    return kept;
}

namespace {

void draw_trace_panel(Svg& svg, const TraceLine& line, double left, double top) {
    double y_low = line.has_reference ? line.reference : 0.0;
    double y_high = y_low;
    if (!line.ys.empty()) {
        const auto [lo, hi] = std::minmax_element(line.ys.begin(), line.ys.end());
        y_low = std::min(y_low, *lo);
        y_high = std::max(y_high, *hi);
        if (!line.has_reference) y_low = *lo;
    }
    const double x_low = line.xs.empty() ? 0.0 : line.xs.front();
    const double x_high = line.xs.empty() ? 1.0 : line.xs.back();
    const PlotArea area =
        plot_area(left + margin_left, top + margin_top, panel_width - 70.0,
                  panel_height - margin_top - margin_bottom, x_low, x_high, y_low, y_high);
    svg.begin_group("class=\"trace\" " + line.attributes);
    svg.label(left + panel_width / 2, top + 16.0, line.name, "middle", 12.0,
              " font-weight=\"bold\"");
    draw_y_axis(svg, area);
    draw_frame(svg, area);
    draw_x_ends(svg, area);
    std::vector<double> xs, ys;
    for (const size_t k : thinned_indices(std::min(line.xs.size(), line.ys.size()), 400)) {
        xs.push_back(area.x(line.xs[k]));
        ys.push_back(area.y(line.ys[k]));
    }
    svg.polyline(xs, ys, sample_colour, 1.0);
    if (line.has_reference) {
        const double y = area.y(line.reference);
        svg.line(area.left, y, area.left + area.width, y, observed_colour, 1.5,
                 " class=\"observed\"");
    }
    svg.end_group();
}

}  // namespace

std::string trace_grid(const std::vector<TraceLine>& lines, const std::string& title,
                       const std::string& x_name, int columns) {
    Svg svg;
    svg.open(panel_width * columns, grid_height(lines.size(), columns) + 16.0, title);
    svg.label(4.0, 18.0, title + " (x: " + x_name + ")", "start", 14.0, " font-weight=\"bold\"");
    for (size_t k = 0; k < lines.size(); ++k) {
        double left = 0.0, top = 0.0;
        panel_corner(k, columns, left, top);
        draw_trace_panel(svg, lines[k], left, top);
    }
    svg.close();
    return svg.text;
}

namespace {

void draw_histogram_panel(Svg& svg, const TraceLine& line, double left, double top) {
    constexpr int bins = 20;
    double lo = line.ys.empty() ? 0.0 : *std::min_element(line.ys.begin(), line.ys.end());
    double hi = line.ys.empty() ? 1.0 : *std::max_element(line.ys.begin(), line.ys.end());
    if (line.has_reference) {
        lo = std::min(lo, line.reference);
        hi = std::max(hi, line.reference);
    }
    if (!(hi > lo)) hi = lo + 1.0;
    std::vector<double> counts(bins, 0.0);
    for (const double y : line.ys) {
        const int b = std::min(bins - 1, static_cast<int>((y - lo) / (hi - lo) * bins));
        counts[static_cast<size_t>(std::max(0, b))] += 1.0;
    }
    const PlotArea area = plot_area(left + margin_left, top + margin_top, panel_width - 70.0,
                                    panel_height - margin_top - margin_bottom, lo, hi, 0.0,
                                    *std::max_element(counts.begin(), counts.end()));
    svg.begin_group("class=\"histogram\" " + line.attributes);
    svg.label(left + panel_width / 2, top + 16.0, line.name, "middle", 12.0,
              " font-weight=\"bold\"");
    draw_y_axis(svg, area);
    draw_frame(svg, area);
    draw_x_ends(svg, area);
    const double step = (hi - lo) / bins;
    for (int b = 0; b < bins; ++b) {
        const double x0 = area.x(lo + step * b);
        const double x1 = area.x(lo + step * (b + 1));
        const double y = area.y(counts[static_cast<size_t>(b)]);
        svg.rect(x0, y, x1 - x0, area.y(0.0) - y, "#dce6f2", sample_colour);
    }
    if (line.has_reference) {
        const double x = area.x(line.reference);
        svg.line(x, area.top, x, area.top + area.height, observed_colour, 2.0,
                 " class=\"observed\"");
    }
    svg.end_group();
}

}  // namespace

std::string histogram_grid(const std::vector<TraceLine>& lines, const std::string& title,
                           int columns) {
    Svg svg;
    svg.open(panel_width * columns, grid_height(lines.size(), columns), title);
    svg.label(4.0, 18.0, title, "start", 14.0, " font-weight=\"bold\"");
    for (size_t k = 0; k < lines.size(); ++k) {
        double left = 0.0, top = 0.0;
        panel_corner(k, columns, left, top);
        draw_histogram_panel(svg, lines[k], left, top);
    }
    svg.close();
    return svg.text;
}

std::string bar_chart(const std::vector<Bar>& bars, const std::string& title, double limit) {
    constexpr double row = 20.0, name_width = 200.0, bar_width = 600.0;
    Svg svg;
    const double height = 50.0 + row * static_cast<double>(bars.size());
    svg.open(name_width + bar_width + 80.0, height, title);
    svg.label(4.0, 18.0, title, "start", 14.0, " font-weight=\"bold\"");
    const Scale x{0.0, 1.0, name_width, name_width + bar_width};
    for (size_t k = 0; k < bars.size(); ++k) {
        const double y = 30.0 + row * static_cast<double>(k);
        const Bar& bar = bars[k];
        svg.begin_group("class=\"bar\" " + bar.attributes);
        svg.label(name_width - 6.0, y + 13.0, bar.name, "end", 11.0);
        svg.rect(x(0.0), y + 3.0, x(std::clamp(bar.value, 0.0, 1.0)) - x(0.0), row - 6.0,
                 bar.value < limit ? observed_colour : sample_colour, "none");
        char words[32];
        std::snprintf(words, sizeof words, "%.3f", bar.value);
        svg.label(x(std::clamp(bar.value, 0.0, 1.0)) + 4.0, y + 13.0, words, "start", 10.0);
        svg.end_group();
    }
    const double bottom = 30.0 + row * static_cast<double>(bars.size());
    svg.line(x(limit), 26.0, x(limit), bottom, "#333333", 1.0, " stroke-dasharray=\"4 3\"");
    svg.line(x(0.0), bottom, x(1.0), bottom, "#888888", 1.0);
    for (const double tick : {0.0, 0.25, 0.5, 0.75, 1.0}) {
        char words[16];
        std::snprintf(words, sizeof words, "%g", tick);
        svg.label(x(tick), bottom + 13.0, words, "middle", 10.0);
    }
    svg.close();
    return svg.text;
}

std::string interval_chart(const std::vector<Interval>& rows, const std::string& title) {
    constexpr double row = 24.0, name_width = 200.0, plot_width = 600.0;
    double low = 0.0, high = 0.0;
    for (const Interval& r : rows) {
        if (!std::isfinite(r.centre)) continue;
        const double reach = std::isfinite(r.half_width) ? r.half_width : 0.0;
        low = std::min(low, r.centre - reach);
        high = std::max(high, r.centre + reach);
    }
    const std::vector<double> ticks = nice_ticks(low, high, 6);
    const Scale x{ticks.front(), ticks.back(), name_width, name_width + plot_width};
    const double bottom = 30.0 + row * static_cast<double>(rows.size());
    Svg svg;
    svg.open(name_width + plot_width + 40.0, bottom + 24.0, title);
    svg.label(4.0, 18.0, title, "start", 14.0, " font-weight=\"bold\"");
    for (const double tick : ticks) {
        svg.line(x(tick), 26.0, x(tick), bottom, tick == 0.0 ? "#555555" : "#e4e4e4", 1.0,
                 tick == 0.0 ? " stroke-dasharray=\"4 3\"" : "");
        char words[32];
        std::snprintf(words, sizeof words, "%.6g", tick);
        svg.label(x(tick), bottom + 14.0, words, "middle", 10.0);
    }
    for (size_t k = 0; k < rows.size(); ++k) {
        const Interval& r = rows[k];
        const double y = 30.0 + row * (static_cast<double>(k) + 0.5);
        svg.begin_group("class=\"interval\" " + r.attributes);
        svg.label(name_width - 8.0, y + 4.0, r.name, "end", 11.0);
        if (std::isfinite(r.centre)) {
            const char* colour = r.marked ? "#1b7a1b" : "#888888";
            if (std::isfinite(r.half_width))
                svg.line(x(r.centre - r.half_width), y, x(r.centre + r.half_width), y, colour, 2.0);
            svg.circle(x(r.centre), y, 4.0, colour);
        }
        svg.end_group();
    }
    svg.close();
    return svg.text;
}

}  // namespace vexa
