#include "numeric/moments.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

namespace vexa {
namespace {

// {1,2,3,4,10}: mean 4; deviations -3 -2 -1 0 6; squares 50, so the variance is 50/4 = 12.5;
// cubes 180, so the skew is (180/5) / 12.5^1.5. Mirrored, the skew changes sign; {1,2} gives 1.5,
// 1/2 and 0; a constant, a single value and no values give 0. Integer and double arrays alike.
TEST(Moments, HandWorkedArrays) {
    struct Case {
        std::vector<int32_t> values;
        double mean, variance, skew;
    };
    const double skew = 36.0 / std::pow(12.5, 1.5);
    for (const Case& c : std::vector<Case>{{{1, 2, 3, 4, 10}, 4, 12.5, skew},
                                           {{-1, -2, -3, -4, -10}, -4, 12.5, -skew},
                                           {{3, 3, 3, 3}, 3, 0, 0},
                                           {{1, 2}, 1.5, 0.5, 0},
                                           {{7}, 7, 0, 0},
                                           {{}, 0, 0, 0}}) {
        const std::vector<double> doubles(c.values.begin(), c.values.end());
        const int n = static_cast<int>(c.values.size());
        for (const Moments& m : {moments(c.values.data(), n), moments(doubles.data(), n)}) {
            EXPECT_DOUBLE_EQ(m.mean, c.mean) << n;
            EXPECT_DOUBLE_EQ(m.variance, c.variance) << n;
            EXPECT_DOUBLE_EQ(m.stddev, std::sqrt(c.variance)) << n;
            EXPECT_DOUBLE_EQ(m.skew, c.skew) << n;
        }
    }
}

TEST(Moments, PairsOfTheUpperTriangle) {
    // Above the diagonal: 1 2 3 / 4 10 / 4, i.e. {1,2,3,4,10,4}: mean 4, squares 50 over 5 = 10,
    // cubes 180 over 6 = 30. The diagonal and the lower triangle (99) are not read.
    const std::vector<uint16_t> matrix{99, 1, 2, 3, 99, 99, 4, 10, 99, 99, 99, 4, 99, 99, 99, 99};
    const Moments m = pair_moments(matrix.data(), 4);
    EXPECT_DOUBLE_EQ(m.mean, 4.0);
    EXPECT_DOUBLE_EQ(m.stddev, std::sqrt(10.0));
    EXPECT_DOUBLE_EQ(m.skew, 30.0 / std::pow(10.0, 1.5));
    EXPECT_EQ(pair_moments(matrix.data(), 1).mean, 0.0);  // no pairs at all
}

}  // namespace
}  // namespace vexa
