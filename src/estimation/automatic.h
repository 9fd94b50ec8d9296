#pragma once
// The automatic mode's phases 1 and 3. The plain mode takes the steps between draws from the
// multiplication factor and a fixed number of phase-3 draws; at the settings most run files
// carry, the draws are then too few and too correlated for the t-ratios to be read, and a good
// estimate is called "not converged". The automatic mode measures instead:
// - phase 1 draws at the factor's steps per draw and measures the autocorrelation of the
//   slowest statistic; while consecutive draws are far from independent, it multiplies the
//   steps per draw by the autocorrelation time and draws again. Phases 2 and 3 use the result.
// - phase 3 draws until every statistic has `auto_effective_draws` effective draws (the
//   t-ratio's own Monte Carlo spread is then about 0.03, small against the 0.1 it is judged
//   by), up to `auto_phase3_cap` draws.
// - a run that did not converge hands the next one the steps per draw and the phase-3 length
//   it showed were needed (AutoCarry).

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "estimation/diagnostics.h"
#include "estimation/phases.h"

namespace vexa {

inline constexpr int32_t auto_phase1_draws = 100;     // at least; 3p + 7 when more
inline constexpr int32_t auto_phase1_attempts = 2;    // measurements of the autocorrelation
inline constexpr double auto_independent_time = 2.0;  // draws this close count as independent
inline constexpr int32_t auto_effective_draws = 1000;
inline constexpr int32_t auto_phase3_cap = 20000;

// What a run of the automatic mode hands the next run: 0 (empty) where it has nothing to say.
struct AutoCarry {
    double steps_per_draw = 0.0;
    int32_t phase3_draws = 0;
    // Where the next run starts, with no phase 2: the estimate moved by one Newton step.
    std::vector<double> newton_start;
};

// Phase-3 t-ratios within this bound leave the estimate close enough for the statistics'
// means to move linearly with the parameters over the step that would match them.
inline constexpr double auto_newton_t_limit = 0.5;

// What the next run takes from one that did not converge: the steps per draw and the phase-3
// length it found were needed; and, when its t-ratios were near, a start one Newton step on,
// theta - C (mean - observed) with C the covariance of the estimates, from its phase-3 draws.
// Phase 2's estimate is an average of a noisy path, off by about a twentieth of a standard
// error, which a phase 3 of 1,000 effective draws can see; the step from those draws is off
// by about a thirtieth, and a run that starts there needs no phase 2, only a fresh phase 3 to
// judge it.
AutoCarry carry_after(const EstimationRun& run, const ConvergenceCheck& check);

namespace estimation_detail {

// Phase 1 of the automatic mode. False when the run stopped.
template <class Store>
bool run_auto_phase1(RunState<Store>& r, const AutoCarry& carry) {
    r.run.automatic = true;
    r.run.factor_steps_per_draw = r.K;
    r.K = std::max(r.K, carry.steps_per_draw);
    const int N1 = std::max(r.run.phase1_draws, auto_phase1_draws);
    r.run.phase1_draws = N1;
    Matrix draws;
    for (int attempt = 1;; ++attempt) {
        r.run.steps_per_draw = r.run.phase1_steps_per_draw = r.K;
        r.steps.total = r.planned_draws * std::ceil(r.K);
        r.observer.tell(StageStarted{.stage = Stage::phase1,
                                     .draws = N1,
                                     .steps_per_draw = r.K,
                                     .steps = N1 * std::ceil(r.K)});
        draws =
            draw_statistics(r.chain, r.theta, N1, r.K, r.mean, r.observed_ties, r.extreme, r.steps);
        // The first half of the draws may still travel from the observed network to where
        // the chain settles under these parameters: only the second half shows its mixing.
        Matrix settled = draws;
        settled.rows = N1 - N1 / 2;
        settled.data.erase(settled.data.begin(),
                           settled.data.begin() + static_cast<std::ptrdiff_t>(N1 / 2) * draws.cols);
        r.run.phase1_autocorrelation = slowest_autocorrelation(settled);
        if (r.extreme || attempt == auto_phase1_attempts ||
            r.run.phase1_autocorrelation <= auto_independent_time)
            break;
        // Growing the steps by tau / 2 brings consecutive draws to about the independence
        // wanted; growing by tau would make them fully independent at twice the steps, no
        // more effective draws per step. A short series cannot show an autocorrelation time
        // much above a tenth of its length: grow by at most tenfold and measure again.
        r.K *= std::min(std::ceil(r.run.phase1_autocorrelation / auto_independent_time), 10.0);
    }
    return finish_phase1(r, draws);
}

// The steps per draw after sub-phase k: near the estimate the chain may mix far more slowly
// than at the start, where phase 1 measured it. From the third sub-phase on, the parameters
// move little within a sub-phase, and its iterations show how the chain mixes there; while
// they are far from independent, the steps per draw grow as in phase 1 (by half their
// autocorrelation time, at most tenfold at a time).
template <class Store>
void space_draws_after_subphase(RunState<Store>& r, int k) {
    Matrix trace;
    trace.cols = static_cast<int32_t>(r.count);
    trace.rows = r.count > 0 ? static_cast<int32_t>(r.subphase_trace.size() / r.count) : 0;
    trace.data = std::move(r.subphase_trace);
    r.subphase_trace.clear();
    if (k < 2) return;
    r.run.phase2_autocorrelation = slowest_autocorrelation(trace);
    if (r.run.phase2_autocorrelation > auto_independent_time) {
        r.K *= std::min(std::ceil(r.run.phase2_autocorrelation / auto_independent_time), 10.0);
        r.run.steps_per_draw = r.K;
    }
}

// Whether phase 3's draws so far leave no doubt that the run has not converged: a t-ratio
// beyond 0.1 by more than three times its own Monte Carlo spread. More draws would not
// change the verdict; the next run does better from here.
bool clearly_not_converged(const Matrix& draws, const std::vector<double>& observed,
                           int32_t chains);

// Phase 3 of the automatic mode. False when the run stopped.
template <class Store>
bool run_auto_phase3(RunState<Store>& r, SeedSource& seeds, const AutoCarry& carry) {
    int N3 = std::max({r.settings.phase3_steps, auto_effective_draws, carry.phase3_draws});
    N3 = std::min(N3, auto_phase3_cap);
    r.run.phase3_cap = auto_phase3_cap;
    r.planned_draws += 1.1 * (N3 - r.settings.phase3_steps);
    r.steps.total = r.planned_draws * std::ceil(r.K);
    Matrix draws = start_phase3(r, seeds, N3);
    for (;;) {
        r.run.phase3_effective_draws = smallest_effective_size(draws, r.run.phase3_chains);
        if (r.extreme || draws.rows >= auto_phase3_cap ||
            r.run.phase3_effective_draws >= auto_effective_draws ||
            clearly_not_converged(draws, r.run.observed, r.run.phase3_chains))
            break;
        // At least a tenth of what there is.
        const double wanted =
            more_draws_wanted(draws.rows, r.run.phase3_effective_draws, auto_effective_draws);
        const int more = static_cast<int>(std::min<double>(
            auto_phase3_cap - draws.rows, std::max(std::ceil(wanted), draws.rows / 10.0 + 1.0)));
        r.planned_draws += more;
        r.steps.total = r.planned_draws * std::ceil(r.K);
        append_draw_rows(draws, draw_more(r, seeds, draws.rows, more));
    }
    for (size_t k = 0; k < r.count; ++k) {
        double sum = 0.0;
        for (int row = 0; row < draws.rows; ++row) sum += draws[row][static_cast<int>(k)];
        r.mean[k] = sum / draws.rows;
    }
    return finish_phase3(r, std::move(draws));
}

}  // namespace estimation_detail

}  // namespace vexa
