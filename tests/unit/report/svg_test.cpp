// The SVG writer against hand-worked cases: the scales, the round ticks, the box summary and the
// coordinates of one box-plot panel, worked out on paper from the layout.

#include "report/svg.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "report/html_plots.h"

namespace vexa {
namespace {

TEST(Svg, ScalesTicksAndBoxesByHand) {
    EXPECT_DOUBLE_EQ((Scale{0.0, 10.0, 100.0, 200.0})(2.5), 125.0);
    // A y axis runs upwards: 0 at the bottom (300), 100 at the top (100).
    EXPECT_DOUBLE_EQ((Scale{0.0, 100.0, 300.0, 100.0})(25.0), 250.0);
    // A domain of no width puts everything in the middle rather than dividing by zero.
    EXPECT_DOUBLE_EQ((Scale{5.0, 5.0, 0.0, 10.0})(7.0), 5.0);

    // 97 / 5 = 19.4 -> step 20; -0.3 .. 0.7 over 4 -> 0.25 -> step 0.5.
    EXPECT_EQ(nice_ticks(0.0, 97.0, 5), (std::vector<double>{0, 20, 40, 60, 80, 100}));
    EXPECT_EQ(nice_ticks(-0.3, 0.7, 4), (std::vector<double>{-0.5, 0.0, 0.5, 1.0}));
    EXPECT_EQ(nice_ticks(20.0, 40.0, 2), (std::vector<double>{20, 30, 40}));
    EXPECT_EQ(nice_ticks(3.0, 3.0, 4), std::vector<double>{3.0});
    // 0.8 / 4 is 0.2 but for the last bit: still steps of 0.2, not of 0.5 (which would put
    // ticks outside the plotted range).
    const std::vector<double> fifths = nice_ticks(-2.4, -1.6, 4);
    ASSERT_EQ(fifths.size(), 5u);
    for (size_t k = 0; k < 5; ++k)
        EXPECT_NEAR(fifths[k], -2.4 + 0.2 * static_cast<double>(k), 1e-12);

    // 1 2 3 4 100: quartiles at positions 1, 2, 3 of the sorted values; the box 2..4 reaches
    // 1.5 x 2 = 3 beyond it, so 100 lies outside the upper whisker, which stops at 4.
    const BoxSummary box = box_summary({100, 1, 4, 2, 3});
    EXPECT_DOUBLE_EQ(box.q1, 2.0);
    EXPECT_DOUBLE_EQ(box.median, 3.0);
    EXPECT_DOUBLE_EQ(box.q3, 4.0);
    EXPECT_DOUBLE_EQ(box.low_whisker, 1.0);
    EXPECT_DOUBLE_EQ(box.high_whisker, 4.0);
    EXPECT_DOUBLE_EQ(box.high, 100.0);
    EXPECT_DOUBLE_EQ(box.mean, 22.0);
    // Between order statistics: 1 2 3 4 has its first quartile at 0.75 of the way from 1 to 2.
    const BoxSummary even = box_summary({4, 3, 2, 1});
    EXPECT_DOUBLE_EQ(even.q1, 1.75);
    EXPECT_DOUBLE_EQ(even.median, 2.5);
    EXPECT_DOUBLE_EQ(even.q3, 3.25);
    EXPECT_EQ(box_summary({}).count, 0u);

    EXPECT_EQ(thinned_indices(5, 3), (std::vector<size_t>{0, 2, 4}));
    EXPECT_EQ(thinned_indices(2, 3), (std::vector<size_t>{0, 1}));
    EXPECT_EQ(html_escape("a<b & \"c\""), "a&lt;b &amp; &quot;c&quot;");
}

TEST(Svg, OneBoxPanelsCoordinates) {
    // The first panel of a grid sits at (0, 30); its plot area starts 52 px in and 40 px down,
    // 200 px wide and 180 - 40 - 18 = 122 px high. The data 1 .. 100 with the observed 50 get
    // ticks 0, 50, 100, so y(v) = 192 - 1.22 v.
    const std::vector<double> sample{100, 1, 4, 2, 3};
    BoxItem item;
    item.name = "edge";
    item.observed = 50.0;
    item.sample = &sample;
    item.note = "t = 0.5";
    item.attributes = "data-name=\"edge\"";
    const std::string svg = box_grid({item}, "boxes");
    // The observed value, 8 px in from either side of the area (52 + 8 and 252 - 8).
    EXPECT_NE(svg.find("<line x1=\"60.00\" y1=\"131.00\" x2=\"244.00\" y2=\"131.00\" "
                       "stroke=\"#d62728\" stroke-width=\"2.00\" class=\"observed\"/>"),
              std::string::npos)
        << svg;
    // The box from q3 = 4 (y 187.12) to q1 = 2 (y 189.56), 28 px either side of x = 152.
    EXPECT_NE(svg.find("<rect x=\"124.00\" y=\"187.12\" width=\"56.00\" height=\"2.44\""),
              std::string::npos);
    // The median 3 at y 188.34, the upper whisker ends at 4, not at the outlying 100.
    EXPECT_NE(svg.find("y1=\"188.34\" x2=\"180.00\" y2=\"188.34\""), std::string::npos);
    EXPECT_NE(svg.find("<line x1=\"152.00\" y1=\"187.12\" x2=\"152.00\" y2=\"187.12\""),
              std::string::npos);
    // The middle tick's grid line and label.
    EXPECT_NE(svg.find("<line x1=\"52.00\" y1=\"131.00\" x2=\"252.00\" y2=\"131.00\" "
                       "stroke=\"#e4e4e4\""),
              std::string::npos);
    EXPECT_NE(svg.find(">50</text>"), std::string::npos);
    EXPECT_NE(svg.find("<g class=\"box\" data-name=\"edge\">"), std::string::npos);
}

}  // namespace
}  // namespace vexa
