#pragma once
// The plots of the HTML report, each a whole SVG element in a string: a grid of box plots
// (one panel per statistic, the observed value marked), distributions against the sample (a
// box per degree, distance or triad class), traces and histograms. Each plotted item carries
// its values as data-* attributes, so that a reader of the file (a checking script) can set
// them beside the text reports without measuring pixels.

#include <string>
#include <vector>

namespace vexa {

// The colours every plot shares: the observed network in red, the sample in blue-grey.
inline constexpr const char* observed_colour = "#d62728";
inline constexpr const char* sample_colour = "#4a78a8";

// One panel of a box grid: a statistic's sample with its observed value.
struct BoxItem {
    std::string name;
    double observed = 0.0;
    const std::vector<double>* sample = nullptr;
    std::string note;        // the line under the name ("t = 0.52")
    bool flagged = false;    // drawn with a red frame: the model does not reproduce it
    std::string attributes;  // data-* attributes of the panel's group, as they stand
};
std::string box_grid(const std::vector<BoxItem>& items, const std::string& title);

// A distribution against the sample: for each category (a degree, a distance, a triad class)
// a box of the sampled counts and the observed count as a red point, joined by a red line.
// `samples[c]` holds category c's count in every sampled network.
struct DistributionPlot {
    std::string title;
    std::string kind;  // data-kind of every category's group ("degree", "geodesic", ...)
    std::vector<std::string> categories;
    std::vector<double> observed;  // empty: no observed network (a simulation)
    std::vector<std::vector<double>> samples;
};
std::string distribution_chart(const DistributionPlot& plot);

// Lines over a common x axis, each named, with an optional horizontal reference per line (the
// observed value); `attributes` per line, as they stand.
struct TraceLine {
    std::string name;
    std::vector<double> xs, ys;
    bool has_reference = false;
    double reference = 0.0;
    std::string attributes;
};
// One small panel per line, `columns` to a row.
std::string trace_grid(const std::vector<TraceLine>& lines, const std::string& title,
                       const std::string& x_name, int columns);

// A histogram panel per line's ys (its xs unused), with the reference marked.
std::string histogram_grid(const std::vector<TraceLine>& lines, const std::string& title,
                           int columns);

// Horizontal bars of values in [0, 1] (posterior predictive p-values) with a line at `limit`.
struct Bar {
    std::string name;
    double value = 0.0;
    std::string attributes;
};
std::string bar_chart(const std::vector<Bar>& bars, const std::string& title, double limit);

// Points with intervals about them (estimates with two standard errors either side), one row
// each, against a dashed line at 0; a marked row (significant) in green.
struct Interval {
    std::string name;
    double centre = 0.0;
    double half_width = 0.0;  // not finite: no interval
    bool marked = false;
    std::string attributes;
};
std::string interval_chart(const std::vector<Interval>& rows, const std::string& title);

// At most `most` points of a long series, evenly spaced, the last one kept: a trace of 20,000
// draws drawn point by point would weigh megabytes and show no more.
std::vector<size_t> thinned_indices(size_t count, size_t most);

}  // namespace vexa
