#include "numeric/moments.h"

#include <cmath>
#include <cstddef>

namespace vexa {

namespace {

// Two passes over any sequence given by an index function.
template <typename At>
Moments moments_of(At at, long long count) {
    Moments m;
    if (count <= 0) return m;
    double sum = 0.0;
    for (long long k = 0; k < count; ++k) sum += at(k);
    m.mean = sum / static_cast<double>(count);
    double squares = 0.0;
    double cubes = 0.0;
    for (long long k = 0; k < count; ++k) {
        const double d = at(k) - m.mean;
        squares += d * d;
        cubes += d * d * d;
    }
    m.variance = count > 1 ? squares / static_cast<double>(count - 1) : 0.0;
    m.stddev = std::sqrt(m.variance);
    m.skew =
        m.stddev == 0.0 ? 0.0 : cubes / static_cast<double>(count) / m.stddev / m.stddev / m.stddev;
    return m;
}

}  // namespace

Moments moments(const double* values, int count) {
    return moments_of([values](long long k) { return values[k]; }, count);
}

Moments moments(const int32_t* values, int count) {
    return moments_of([values](long long k) { return static_cast<double>(values[k]); }, count);
}

Moments pair_moments(const uint16_t* matrix, int n) {
    // Index k runs over the pairs a < b row by row.
    const size_t nodes = static_cast<size_t>(n);
    std::size_t a = 0;
    std::size_t b = 1;
    long long last = -1;
    auto at = [&](long long k) {
        if (k != last + 1) {  // restart the walk for the second pass
            a = 0;
            b = 1;
        }
        last = k;
        const double value = static_cast<double>(matrix[a * nodes + b]);
        if (++b == nodes) {
            ++a;
            b = a + 1;
        }
        return value;
    };
    const long long pairs = static_cast<long long>(n) * (n - 1) / 2;
    return moments_of(at, pairs);
}

}  // namespace vexa
