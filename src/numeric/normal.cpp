#include "numeric/normal.h"

#include <cmath>
#include <cstddef>

#include "base/errors.h"

namespace vexa {

double standard_normal(Rng& rng) {
    // 1/32768, not 1/32767: u and v range over [-1, 1 - 2/32768]. Draws depend on it.
    constexpr double scale = 1.0 / 32768.0;
    double u = 0.0;
    double s = 0.0;
    do {
        u = 2.0 * static_cast<double>(rng.next()) * scale - 1.0;
        const double v = 2.0 * static_cast<double>(rng.next()) * scale - 1.0;
        s = v * v + u * u;
    } while (s > 1.0 || s == 0.0);
    return u * std::sqrt(-2.0 * std::log(s) / s);
}

Matrix multivariate_normal_batch(const std::vector<double>& mean, const Matrix& covariance,
                                 int count, Rng& rng, SeedSource& seeds) {
    const int p = static_cast<int>(mean.size());
    if (covariance.rows != p || covariance.cols != p) {
        throw SettingError(
            format_message("vexa: the covariance matrix is %d x %d but the mean has %d entries",
                           covariance.rows, covariance.cols, p));
    }
    if (count < 0) {
        throw SettingError(
            format_message("vexa: cannot draw %d multivariate normal vectors", count));
    }
    seeds.reseed(rng);
    const Matrix root = symmetric_sqrt(covariance);
    Matrix draws = make_matrix(count, p, 0.0);
    std::vector<double> z(static_cast<std::size_t>(p), 0.0);
    for (int row = 0; row < count; ++row) {
        for (double& value : z) value = standard_normal(rng);
        double* out = draws[row];
        for (int j = 0; j < p; ++j) {
            double sum = 0.0;
            for (int k = 0; k < p; ++k) sum += root[k][j] * z[static_cast<std::size_t>(k)];
            out[j] = mean[static_cast<std::size_t>(j)] + sum;
        }
    }
    return draws;
}

}  // namespace vexa
