#pragma once
// Estimation of a network with missing dyads, assumed missing at random. The observed
// statistics are then unknown; what the method solves instead is
//   E[s(Y) | observed dyads, theta] = E[s(Y) | theta],
// the score equation of the likelihood of the observed dyads. A second chain, the given chain,
// toggles only the missing dyads (the observed ones fixed) under the same parameters and runs
// beside the run's chain through the three phases:
// - phase 1: the Jacobian of E[s | theta] - E[s | observed, theta] is Cov(s) - Cov(s |
//   observed), the information of the observed dyads; the given chain's covariance is taken
//   off the run chain's before inverting (less of it where the difference of the two
//   estimates would not be positive definite: a smaller step, never one turned around);
// - phase 2: each iteration moves the given chain one draw on, and its statistics stand where
//   the observed ones stand for a complete network;
// - phase 3: the given chain's draws at the estimate give the target the t-ratios measure
//   against (their mean) and the missing information (their covariance), taken off the
//   covariance of the run chain's draws before it is inverted into the estimates' covariance.
// Written against the run's state (phases.h) so that the phases call in at three points.

#include <algorithm>
#include <cmath>
#include <vector>

#include "network/missing_dyads.h"
#include "numeric/matrix.h"
#include "sampler/runs.h"

namespace vexa::estimation_detail {

// The given chain's steps per draw: each missing dyad proposed about as often as a dyad of the
// run chain's draw, and at least once.
template <class R>
double given_steps(const R& r) {
    const auto& chain = *r.given;
    const double missing = static_cast<double>(chain.settings.missing->count());
    const double dyads = dyad_count(chain.store->node_count, chain.settings.missing->kind);
    return std::max(4.0 * missing, std::ceil(r.K * missing / dyads));
}

// `draws` draws of the given chain at the run's parameters after a burn-in of a tenth of them
// (at least ten draws): their mean into `mean`, their covariance returned.
template <class R>
Matrix given_covariance(R& r, int draws, std::vector<double>& mean) {
    auto& chain = *r.given;
    const double K = given_steps(r);
    const int p = r.p;
    run_steps(chain, r.theta.data(), std::max(10.0, 0.1 * draws) * K);
    Matrix rows = make_matrix(draws, p, 0.0);
    mean.assign(r.count, 0.0);
    for (int i = 0; i < draws; ++i) {
        run_steps(chain, r.theta.data(), K);
        for (int k = 0; k < p; ++k) {
            rows[i][k] = chain.statistics[static_cast<size_t>(k)];
            mean[static_cast<size_t>(k)] += rows[i][k] / draws;
        }
    }
    Matrix covariance = make_matrix(p, p, 0.0);
    for (int i = 0; i < draws; ++i)
        for (int j = 0; j < p; ++j)
            for (int k = 0; k < p; ++k)
                covariance[j][k] += (rows[i][j] - mean[static_cast<size_t>(j)]) *
                                    (rows[i][k] - mean[static_cast<size_t>(k)]) / draws;
    return covariance;
}

// Whether a symmetric matrix is positive definite (its Cholesky factorisation succeeds with
// every pivot clear of rounding).
inline bool positive_definite(const Matrix& a) {
    const int p = a.rows;
    Matrix l = make_matrix(p, p, 0.0);
    for (int j = 0; j < p; ++j) {
        double pivot = a[j][j];
        for (int k = 0; k < j; ++k) pivot -= l[j][k] * l[j][k];
        if (!(pivot > 1e-9 * std::fabs(a[j][j]))) return false;
        l[j][j] = std::sqrt(pivot);
        for (int i = j + 1; i < p; ++i) {
            double sum = a[i][j];
            for (int k = 0; k < j; ++k) sum -= l[i][k] * l[j][k];
            l[i][j] = sum / l[j][j];
        }
    }
    return true;
}

// D less the given chain's covariance. Both are estimates, and where the missing dyads carry
// much of the information their difference can come out indefinite, which would turn a step
// of phase 2 (or a variance of phase 3) around: then the largest share of the given
// covariance (a half, a quarter, ...) that leaves it positive definite is taken off, and none
// at worst. D holds the run chain's covariance.
inline void take_off_given(Matrix& D, const Matrix& given) {
    for (double share = 1.0; share >= 1.0 / 64.0; share *= 0.5) {
        Matrix difference = D;
        for (int j = 0; j < D.rows; ++j)
            for (int k = 0; k < D.cols; ++k) difference[j][k] -= share * given[j][k];
        if (positive_definite(difference)) {
            D = std::move(difference);
            return;
        }
    }
}

// Phase 1: the given chain's covariance over as many draws as the run chain's, taken off D.
template <class R>
void given_phase1(R& r, int draws) {
    if (r.given == nullptr) return;
    std::vector<double> mean;
    take_off_given(r.D, given_covariance(r, draws, mean));
}

// Phase 2: the given chain moves one draw on beside the run chain's draw.
template <class R>
void advance_given(R& r) {
    if (r.given != nullptr) run_steps(*r.given, r.theta.data(), given_steps(r));
}

// Phase 3: the given chain's draws at the estimate; their mean becomes the statistics the run
// is judged against, their covariance is kept for the estimates' covariance.
template <class R>
void given_phase3(R& r, int draws) {
    if (r.given == nullptr) return;
    r.given_covariance = given_covariance(r, draws, r.run.observed);
    r.run.given_draws = draws;
    r.run.missing_dyads = r.given->settings.missing->count();
}

}  // namespace vexa::estimation_detail
