#pragma once
// A small SVG writer for the plots of the HTML report: linear scales from data to pixels,
// tick values at round numbers, box-plot summaries, and the few shapes the plots draw, each
// appended to a string as one element. Coordinates are written with two decimals, so that the
// same record gives the same bytes on every system.

#include <string>
#include <vector>

namespace vexa {

// The linear map of [low, high] onto [from, to] (pixels; `to` may lie below `from`, as a y
// axis runs upwards). A domain of no width maps every value to the middle of the range.
struct Scale {
    double low = 0.0, high = 1.0;
    double from = 0.0, to = 1.0;
    double operator()(double value) const;
};

// Round tick values (1, 2 or 5 times a power of ten) covering [low, high], about `count` of
// them; the first at or below low, the last at or above high. One value when low == high.
std::vector<double> nice_ticks(double low, double high, int count);

// What a box plot draws of a sample: the quartiles (linear interpolation between order
// statistics, the type most statistics programs take by default), the whiskers at the most
// extreme values within 1.5 interquartile ranges of the box, and the mean.
struct BoxSummary {
    double q1 = 0.0, median = 0.0, q3 = 0.0;
    double low_whisker = 0.0, high_whisker = 0.0;
    double low = 0.0, high = 0.0;  // the sample's extremes
    double mean = 0.0;
    size_t count = 0;
};
BoxSummary box_summary(std::vector<double> values);

// A number as the plots print it: "%.2f" for coordinates, and text escaped for HTML.
std::string svg_number(double value);
std::string html_escape(const std::string& text);

// The shapes. `extra` is appended inside the element as it stands (attributes such as
// data-* values or a class), so it must be well formed.
struct Svg {
    std::string text;

    void open(double width, double height, const std::string& title);
    void close();
    void line(double x1, double y1, double x2, double y2, const char* colour, double width,
              const char* extra = "");
    void rect(double x, double y, double width, double height, const char* fill, const char* stroke,
              const char* extra = "");
    void circle(double x, double y, double radius, const char* fill, const char* extra = "");
    void polyline(const std::vector<double>& xs, const std::vector<double>& ys, const char* colour,
                  double width, const char* extra = "");
    // anchor: "start", "middle" or "end".
    void label(double x, double y, const std::string& words, const char* anchor, double size,
               const char* extra = "");
    void begin_group(const std::string& attributes);
    void end_group();
};

// A plot area inside an SVG: the pixel box the data are drawn in and the scales onto it.
struct PlotArea {
    double left = 0.0, top = 0.0, width = 0.0, height = 0.0;
    Scale x, y;
    std::vector<double> y_ticks;  // the y scale runs from the first to the last
};

// A plot area at (left, top) of the given size for the data box [x_low, x_high] x [y_low,
// y_high], the y scale widened to round ticks.
PlotArea plot_area(double left, double top, double width, double height, double x_low,
                   double x_high, double y_low, double y_high);

// The y axis of an area: its ticks, their values and light grid lines across.
void draw_y_axis(Svg& svg, const PlotArea& area);
// The frame of an area.
void draw_frame(Svg& svg, const PlotArea& area);
// The x scale's two ends, under the area's corners.
void draw_x_ends(Svg& svg, const PlotArea& area);

}  // namespace vexa
