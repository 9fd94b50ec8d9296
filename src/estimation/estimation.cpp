#include "estimation/estimation.h"

#include "estimation/estimate_model.h"

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

namespace vexa {

const char* degeneracy_text(Degeneracy why) {
    switch (why) {
        case Degeneracy::singular: return "the statistics do not vary under these parameters";
        case Degeneracy::runaway: return "a parameter ran away";
        case Degeneracy::extreme_network:
            return "the chain reached the empty or the complete network";
        case Degeneracy::fixed_statistic: return "a statistic did not vary in phase 3";
        case Degeneracy::far_statistic: return "a statistic stayed far from its observed value";
        case Degeneracy::none: break;
    }
    return "none";
}

ConvergenceCheck verdict_on(const EstimationRun& run, int32_t multiplication_factor) {
    if (run.degenerate) {
        ConvergenceCheck check;
        check.verdict = Verdict::degenerate;
        return check;
    }
    return check_convergence(run.phase3_draws_matrix, run.observed, multiplication_factor);
}

}  // namespace vexa
