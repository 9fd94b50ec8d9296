#include "report/svg.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace vexa {

double Scale::operator()(double value) const {
    if (!(high > low)) return (from + to) / 2.0;
    return from + (value - low) / (high - low) * (to - from);
}

std::vector<double> nice_ticks(double low, double high, int count) {
    if (!std::isfinite(low) || !std::isfinite(high)) return {0.0};
    if (high < low) std::swap(low, high);
    if (high == low) return {low};
    const double raw = (high - low) / std::max(1, count);
    const double magnitude = std::pow(10.0, std::floor(std::log10(raw)));
    const double scaled = raw / magnitude;
    // The slack keeps a step that is 2 but for rounding (0.8 / 4) from becoming 5.
    constexpr double slack = 1.0 + 1e-9;
    const double step = (scaled <= slack         ? 1.0
                         : scaled <= 2.0 * slack ? 2.0
                         : scaled <= 5.0 * slack ? 5.0
                                                 : 10.0) *
                        magnitude;
    // A hair of slack so that a bound already on a tick does not add a step for rounding.
    const double first = std::floor(low / step + 1e-9);
    const double last = std::ceil(high / step - 1e-9);
    std::vector<double> ticks;
    for (double k = first; k <= last; k += 1.0) {
        const double value = k * step;
        // -0 and the last bits of k x step are noise on an axis label.
        ticks.push_back(std::fabs(value) < step * 1e-9 ? 0.0 : value);
    }
    return ticks;
}

namespace {

// Type 7: linear interpolation between the order statistics around (n - 1) p.
double quantile(const std::vector<double>& sorted, double share) {
    const double h = static_cast<double>(sorted.size() - 1) * share;
    const auto below = static_cast<size_t>(std::floor(h));
    const size_t above = std::min(below + 1, sorted.size() - 1);
    return sorted[below] + (h - static_cast<double>(below)) * (sorted[above] - sorted[below]);
}

}  // namespace

BoxSummary box_summary(std::vector<double> values) {
    BoxSummary box;
    box.count = values.size();
    if (values.empty()) return box;
    std::sort(values.begin(), values.end());
    box.q1 = quantile(values, 0.25);
    box.median = quantile(values, 0.5);
    box.q3 = quantile(values, 0.75);
    const double reach = 1.5 * (box.q3 - box.q1);
    box.low = values.front();
    box.high = values.back();
    box.low_whisker = *std::lower_bound(values.begin(), values.end(), box.q1 - reach);
    box.high_whisker = *(std::upper_bound(values.begin(), values.end(), box.q3 + reach) - 1);
    double sum = 0.0;
    for (const double value : values) sum += value;
    box.mean = sum / static_cast<double>(values.size());
    return box;
}

std::string svg_number(double value) {
    char buffer[64];
    // No "-0.00" for a coordinate that rounds to zero from below.
    const double shown = std::fabs(value) < 0.005 ? 0.0 : value;
    std::snprintf(buffer, sizeof buffer, "%.2f", shown);
    return buffer;
}

std::string html_escape(const std::string& text) {
    std::string out;
    for (const char c : text) {
        switch (c) {
            case '&': out += "&amp;"; break;
            case '<': out += "&lt;"; break;
            case '>': out += "&gt;"; break;
            case '"': out += "&quot;"; break;
            default: out += c;
        }
    }
    return out;
}

void Svg::open(double width, double height, const std::string& title) {
    text += "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + svg_number(width) +
            "\" height=\"" + svg_number(height) + "\" viewBox=\"0 0 " + svg_number(width) + " " +
            svg_number(height) + "\" role=\"img\"><title>" + html_escape(title) + "</title>\n";
}

void Svg::close() { text += "</svg>\n"; }

void Svg::line(double x1, double y1, double x2, double y2, const char* colour, double width,
               const char* extra) {
    text += "<line x1=\"" + svg_number(x1) + "\" y1=\"" + svg_number(y1) + "\" x2=\"" +
            svg_number(x2) + "\" y2=\"" + svg_number(y2) + "\" stroke=\"" + colour +
            "\" stroke-width=\"" + svg_number(width) + "\"" + extra + "/>\n";
}

void Svg::rect(double x, double y, double width, double height, const char* fill,
               const char* stroke, const char* extra) {
    text += "<rect x=\"" + svg_number(x) + "\" y=\"" + svg_number(y) + "\" width=\"" +
            svg_number(std::max(0.0, width)) + "\" height=\"" + svg_number(std::max(0.0, height)) +
            "\" fill=\"" + fill + "\" stroke=\"" + stroke + "\"" + extra + "/>\n";
}

void Svg::circle(double x, double y, double radius, const char* fill, const char* extra) {
    text += "<circle cx=\"" + svg_number(x) + "\" cy=\"" + svg_number(y) + "\" r=\"" +
            svg_number(radius) + "\" fill=\"" + fill + "\"" + extra + "/>\n";
}

void Svg::polyline(const std::vector<double>& xs, const std::vector<double>& ys, const char* colour,
                   double width, const char* extra) {
    text += "<polyline fill=\"none\" stroke=\"";
    text += colour;
    text += "\" stroke-width=\"" + svg_number(width) + "\" points=\"";
    for (size_t k = 0; k < xs.size() && k < ys.size(); ++k) {
        if (k > 0) text += ' ';
        text += svg_number(xs[k]) + "," + svg_number(ys[k]);
    }
    text += "\"";
    text += extra;
    text += "/>\n";
}

void Svg::label(double x, double y, const std::string& words, const char* anchor, double size,
                const char* extra) {
    text += "<text x=\"" + svg_number(x) + "\" y=\"" + svg_number(y) + "\" text-anchor=\"" +
            anchor + "\" font-size=\"" + svg_number(size) + "\"" + extra + ">" +
            html_escape(words) + "</text>\n";
}

void Svg::begin_group(const std::string& attributes) { text += "<g " + attributes + ">\n"; }

void Svg::end_group() { text += "</g>\n"; }

PlotArea plot_area(double left, double top, double width, double height, double x_low,
                   double x_high, double y_low, double y_high) {
    if (!std::isfinite(y_low) || !std::isfinite(y_high)) y_low = y_high = 0.0;
    if (y_high == y_low) {
        // A flat sample still needs a box to sit in.
        const double pad = std::max(1.0, std::fabs(y_low) * 0.1);
        y_low -= pad;
        y_high += pad;
    }
    PlotArea area{left, top, width, height, {}, {}, nice_ticks(y_low, y_high, 4)};
    area.x = Scale{x_low, x_high, left, left + width};
    area.y = Scale{area.y_ticks.front(), area.y_ticks.back(), top + height, top};
    return area;
}

void draw_y_axis(Svg& svg, const PlotArea& area) {
    for (const double value : area.y_ticks) {
        const double y = area.y(value);
        svg.line(area.left, y, area.left + area.width, y, "#e4e4e4", 1.0);
        char words[32];
        std::snprintf(words, sizeof words, "%.6g", value);
        svg.label(area.left - 4.0, y + 3.5, words, "end", 10.0);
    }
}

void draw_frame(Svg& svg, const PlotArea& area) {
    svg.rect(area.left, area.top, area.width, area.height, "none", "#888888");
}

void draw_x_ends(Svg& svg, const PlotArea& area) {
    char words[32];
    const double y = area.top + area.height + 12.0;
    std::snprintf(words, sizeof words, "%.6g", area.x.low);
    svg.label(area.left, y, words, "start", 9.5);
    std::snprintf(words, sizeof words, "%.6g", area.x.high);
    svg.label(area.left + area.width, y, words, "end", 9.5);
}

}  // namespace vexa
