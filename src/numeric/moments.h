#pragma once
// Moments of a sample: mean; standard deviation with divisor n - 1; skewness as the third
// central moment over n divided by the cube of that standard deviation (0 when it is 0).
// The mixed divisors are intended. A sample of one value has standard deviation 0.

#include <cstdint>

namespace vexa {

struct Moments {
    double mean = 0.0;
    double stddev = 0.0;
    double skew = 0.0;
    double variance = 0.0;
};

Moments moments(const double* values, int count);
Moments moments(const int32_t* values, int count);
// Over the n(n-1)/2 entries [a][b], a < b, of a row-major n x n integer matrix.
Moments pair_moments(const uint16_t* matrix, int n);

}  // namespace vexa
