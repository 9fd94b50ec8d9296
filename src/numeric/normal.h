#pragma once
// Normal random draws from the run's generator: single standard normals by the polar method
// and batches of multivariate normal vectors, used to draw parameter vectors around an
// estimate.

#include <vector>

#include "numeric/matrix.h"
#include "numeric/rng.h"

namespace vexa {

// Polar method: u = 2 * draw / 32768 - 1, then v likewise, s = v*v + u*u, drawn again while
// s > 1 or s == 0 (s exactly 1 is kept and gives 0); returns u * sqrt(-2 ln(s) / s). The
// pair's second deviate is dropped, so every call starts from a fresh pair.
double standard_normal(Rng& rng);

// count x p matrix (p = mean.size()) whose rows are independent draws from the normal
// distribution with the given mean and covariance. The generator is reseeded from seeds
// first; the square root of the covariance is computed once; entry j of a row is
// mean[j] + sum_k S[k][j] * z[k] with z fresh standard normals. Throws SettingError for a
// covariance whose size differs from the mean's, a negative count, or a covariance that
// symmetric_sqrt rejects.
Matrix multivariate_normal_batch(const std::vector<double>& mean, const Matrix& covariance,
                                 int count, Rng& rng, SeedSource& seeds);

}  // namespace vexa
