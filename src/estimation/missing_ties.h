#pragma once
// Estimation of a network with missing dyads, assumed missing at random. The observed
// statistics are then unknown; what the method solves instead is
//   E[s(Y) | observed dyads, theta] = E[s(Y) | theta],
// the score equation of the likelihood of the observed dyads. A second chain, the given chain,
// toggles only the missing dyads (the observed ones fixed) under the same parameters and runs
// beside the run's chain through the three phases:
// - phase 1: the Jacobian of E[s | theta] - E[s | observed, theta] is Cov(s) - Cov(s |
//   observed), the information of the observed dyads; the given chain's covariance is taken
//   off the run chain's before inverting (unless that leaves a statistic without variance,
//   when the plain covariance, a smaller step, is kept);
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
    return std::max(missing, std::ceil(r.K * missing / dyads));
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

// D less the given chain's covariance, when every statistic keeps some variance; else D as
// it is. D holds the run chain's covariance.
inline void take_off_given(Matrix& D, const Matrix& given) {
    for (int k = 0; k < D.rows; ++k)
        if (!(D[k][k] - given[k][k] > 0.0)) return;
    for (int j = 0; j < D.rows; ++j)
        for (int k = 0; k < D.cols; ++k) D[j][k] -= given[j][k];
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
