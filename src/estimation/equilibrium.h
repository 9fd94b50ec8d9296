#pragma once
// Phase 2 by equilibrium expectation, in place of stochastic approximation's sub-phases.
//
// The chain starts at the observed network (phase 1 runs from it) and is never restarted. At
// the maximum likelihood estimate the observed statistics are the model's expectation, so the
// chain's statistics have no expected drift away from them; elsewhere they drift, and the
// drift says which way the parameters must go. After every block of steps (a tenth of a
// draw's spacing) each parameter moves against the drift dz = z - z_obs of the statistics:
//   theta -= (a / 10) D^-1 g,   g_l = sign(dz_l) dz_l^2 / sd_l,
// with D^-1 phase 1's inverted covariance of the statistics and sd_l its square roots. Near
// the estimate the statistics' mean moves by about Cov(z) d theta, so D^-1 turns a drift into
// the parameter change that undoes it, as phase 2 of stochastic approximation does; the
// squared drift, in units of sd, moves far-off parameters fast and damps the noise of a
// chain near its target. The root of E[g] = 0 is the root of E[dz] = 0 wherever the
// statistics' spread around their mean is symmetric, which holds for the many-tie networks
// this method is meant for. Stages of halving gain run as stochastic approximation's
// sub-phases do, with as many steps as their shortest; a stage ends with the mean of its
// parameters, and the estimate is the last stage's mean. While the two halves of the last
// stage differ by more than half a standard error, the parameters are still drifting, and the
// stage runs again (at most settling_stages_allowed times). Phase 3 then simulates at the
// estimate for the standard errors and the t-ratios, as after stochastic approximation.

#include <cmath>
#include <cstdint>
#include <vector>

#include "estimation/phases.h"

namespace vexa {

namespace estimation_detail {

inline constexpr double blocks_per_draw = 10.0;
inline constexpr int32_t settling_stages_allowed = 3;
inline constexpr double settled_drift = 0.5;  // in phase-1 standard errors

// One block: its steps, then the parameters moved against the squared drift.
template <class Store>
void equilibrium_update(RunState<Store>& r, double block, double gain) {
    run_steps_counted(r.chain, r.theta.data(), block, r.steps);
    const double* z = r.chain.statistics.data();
    const std::vector<double>& observed = r.run.observed;
    for (int l = 0; l < r.p; ++l) {
        const size_t ll = static_cast<size_t>(l);
        const double dz = z[l] - observed[ll];
        const double g = (dz < 0.0 ? -dz : dz) * dz / std::sqrt(r.variance[ll]);
        for (int j = 0; j < r.p; ++j) r.theta[static_cast<size_t>(j)] -= gain * g * r.D[l][j];
    }
}

// One stage of `blocks` blocks at gain a, ending with the mean of its parameters; the means of
// its halves are left in `halves` (first half, then second). False when the run stopped.
template <class Store>
bool run_equilibrium_stage(RunState<Store>& r, int k, float a, int blocks,
                           std::vector<double>& halves) {
    r.steps.stage = Stage::phase2;
    r.observer.tell(StageStarted{.stage = Stage::phase2, .subphase = k, .gain = a});
    const double block = std::ceil(r.K / blocks_per_draw);
    halves.assign(2 * r.count, 0.0);
    Subphase stage;
    stage.gain = a;
    for (int b = 0; b < blocks; ++b) {
        equilibrium_update(r, block, static_cast<double>(a) / blocks_per_draw);
        const size_t half = 2 * b < blocks ? 0 : r.count;
        for (size_t j = 0; j < r.count; ++j) halves[half + j] += r.theta[j];
        if (stopped_astray(r, stage, b + 1)) return false;
    }
    const int first = (blocks + 1) / 2;  // the blocks b with 2b < blocks
    const int second = blocks - first;
    for (size_t j = 0; j < r.count; ++j) {
        r.theta[j] = (halves[j] + halves[r.count + j]) / blocks;
        halves[j] /= std::max(first, 1);
        halves[r.count + j] /= std::max(second, 1);
    }
    stage.steps = blocks;
    stage.parameters = r.theta;
    r.run.subphases.push_back(std::move(stage));
    return true;
}

// The largest difference between the means of a stage's halves, in phase-1 standard errors.
template <class Store>
double stage_drift(const RunState<Store>& r, const std::vector<double>& halves) {
    double largest = 0.0;
    for (size_t j = 0; j < r.count; ++j) {
        const double drift = std::fabs(halves[j] - halves[r.count + j]) / r.phase1_error[j];
        largest = std::max(largest, drift);
    }
    return largest;
}

// Phase 2 by equilibrium expectation. False when the run stopped.
template <class Store>
bool run_equilibrium_expectation(RunState<Store>& r, float a) {
    r.run.block_steps = std::ceil(r.K / blocks_per_draw);
    std::vector<double> halves;
    const int stages = r.settings.subphase_count;
    for (int k = 0; k < stages + settling_stages_allowed; ++k) {
        const int last = std::min(k, stages - 1);
        if (k == 1 && stages > 1) a = a + a;  // stages 0 and 1 both run with the starting gain
        const double draws = std::ceil(std::pow(2.0, 4.0 * last / 3.0) * (r.p + 7));
        if (!run_equilibrium_stage(r, k, a, static_cast<int>(draws * blocks_per_draw), halves))
            return false;
        r.planned_draws -= k < stages ? r.subphase_longest(k) - draws : -draws;
        r.steps.total = r.planned_draws * std::ceil(r.K);
        if (k >= stages - 1) {
            r.run.last_drift = stage_drift(r, halves);
            r.run.settling_stages = k - (stages - 1);
            if (r.run.last_drift <= settled_drift) break;
        }
        if (k < stages - 1) a = a * 0.5f;
    }
    return true;
}

}  // namespace estimation_detail

}  // namespace vexa
