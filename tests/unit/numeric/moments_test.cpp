#include "numeric/moments.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "numeric/rng.h"

namespace vexa {
namespace {

TEST(Moments, HandWorkedArrays) {
    // {1,2,3,4,10}: mean 4; deviations -3 -2 -1 0 6; squares 50, so variance 50/4 = 12.5;
    // cubes 180, so skew = (180/5) / 12.5^1.5.
    const std::vector<double> values{1, 2, 3, 4, 10};
    const Moments m = moments(values.data(), 5);
    EXPECT_DOUBLE_EQ(m.mean, 4.0);
    EXPECT_DOUBLE_EQ(m.variance, 12.5);
    EXPECT_DOUBLE_EQ(m.stddev, std::sqrt(12.5));
    EXPECT_DOUBLE_EQ(m.skew, 36.0 / std::pow(12.5, 1.5));
    const std::vector<double> mirrored{-1, -2, -3, -4, -10};
    EXPECT_DOUBLE_EQ(moments(mirrored.data(), 5).skew, -m.skew);

    const std::vector<int32_t> constant{3, 3, 3, 3};
    const Moments flat = moments(constant.data(), 4);
    EXPECT_EQ(flat.mean, 3.0);
    EXPECT_EQ(flat.stddev, 0.0);
    EXPECT_EQ(flat.skew, 0.0);

    const double single = 7.5;
    const Moments one = moments(&single, 1);
    EXPECT_EQ(one.mean, 7.5);
    EXPECT_EQ(one.stddev, 0.0);
    EXPECT_EQ(one.skew, 0.0);

    const Moments none = moments(static_cast<const double*>(nullptr), 0);
    EXPECT_EQ(none.mean, 0.0);
    EXPECT_EQ(none.stddev, 0.0);
}

TEST(Moments, IntegerAndDoubleVersionsAgree) {
    Rng rng;
    rng.seed(31);
    for (const int n : {2, 3, 10, 257}) {
        std::vector<int32_t> ints;
        std::vector<double> doubles;
        for (int k = 0; k < n; ++k) {
            ints.push_back(rng.next() % 50 - 10);
            doubles.push_back(static_cast<double>(ints.back()));
        }
        const Moments a = moments(ints.data(), n);
        const Moments b = moments(doubles.data(), n);
        EXPECT_EQ(a.mean, b.mean);
        EXPECT_EQ(a.stddev, b.stddev);
        EXPECT_EQ(a.skew, b.skew);
    }
}

TEST(Moments, PairsOfTheUpperTriangle) {
    // Above the diagonal: 1 2 3 / 4 10 / 4, i.e. {1,2,3,4,10,4}: mean 4, squares 50 over
    // 5 = 10, cubes 180 over 6 = 30. The diagonal and lower triangle (99) must be ignored.
    const std::vector<int32_t> matrix{99, 1,  2,  3,   //
                                      99, 99, 4,  10,  //
                                      99, 99, 99, 4,   //
                                      99, 99, 99, 99};
    const Moments m = pair_moments(matrix.data(), 4);
    EXPECT_DOUBLE_EQ(m.mean, 4.0);
    EXPECT_DOUBLE_EQ(m.stddev, std::sqrt(10.0));
    EXPECT_DOUBLE_EQ(m.skew, 30.0 / std::pow(10.0, 1.5));

    const std::vector<int32_t> two{0, 5, 6, 0};  // one pair
    EXPECT_EQ(pair_moments(two.data(), 2).mean, 5.0);
    EXPECT_EQ(pair_moments(two.data(), 2).stddev, 0.0);
    const int32_t lone = 8;
    EXPECT_EQ(pair_moments(&lone, 1).mean, 0.0);  // no pairs at all
}

}  // namespace
}  // namespace vexa
