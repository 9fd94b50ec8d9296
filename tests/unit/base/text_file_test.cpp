// Numbers as the reports print them: the same text on every system, a NaN's sign included.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "base/text_file.h"

namespace vexa {
namespace {

TEST(FixedText, ReadsTheSameOnEverySystem) {
    volatile double zero = 0.0;
    const double quiet = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(fixed_text(std::copysign(quiet, -1.0), 3), "-nan");
    EXPECT_EQ(fixed_text(std::copysign(quiet, 1.0), 3), "nan");
    // A t-ratio of a statistic that never moved: 0 / 0, whose sign the hardware sets.
    const double ratio = zero / zero;
    EXPECT_EQ(fixed_text(ratio, 3), std::signbit(ratio) ? "-nan" : "nan");
    EXPECT_EQ(fixed_text(1.0 / zero, 3), "inf");
    EXPECT_EQ(fixed_text(-1.0 / zero, 3), "-inf");
    EXPECT_EQ(fixed_text(1.0005, 3), "1.000");  // 1.000499999... in binary
    EXPECT_EQ(fixed_text(2.0005, 3), "2.001");  // 2.000500000...1 in binary
    EXPECT_EQ(fixed_text(-0.0004, 3), "-0.000");
    EXPECT_EQ(fixed_text(12345.6789, 0), "12346");
}

}  // namespace
}  // namespace vexa
