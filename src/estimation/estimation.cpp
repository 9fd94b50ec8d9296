#include "estimation/estimation.h"

namespace vexa::estimation_detail {

void accumulate_covariance(Matrix& D, Matrix& draws, const std::vector<double>& mean,
                           std::vector<double>& variance) {
    const int p = D.rows;
    for (int i = 0; i < draws.rows; ++i) {
        double* row = draws[i];
        for (int j = 0; j < p; ++j) row[j] -= mean[static_cast<size_t>(j)];
    }
    for (int i = 0; i < draws.rows; ++i) {
        const double* row = draws[i];
        for (int j = 0; j < p; ++j) {
            double* d = D[j];
            for (int k = 0; k < p; ++k) d[k] += row[j] * row[k];
        }
    }
    const double count = draws.rows;
    for (int j = 0; j < p; ++j) {
        for (int k = 0; k < p; ++k) {
            D[j][k] /= count;
            if (j == k) variance[static_cast<size_t>(j)] = D[j][k];
        }
    }
}

}  // namespace vexa::estimation_detail
