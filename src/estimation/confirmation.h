#pragma once
// An independent check of a converged estimate: a long chain at the estimate, its draws thinned
// to be near independent (by the autocorrelation the estimation's own draws showed), and the
// t-ratios and effective sample sizes there. The estimation's phase-3 draws share a chain with
// phase 2 and are often few and correlated; a fresh long chain is the truth they approximate.

#include <algorithm>
#include <cmath>
#include <vector>

#include "estimation/diagnostics.h"
#include "estimation/estimation.h"

namespace vexa {

struct Confirmation {
    ConvergenceCheck check;
    int32_t draws = 0;
    double thinning = 0.0;  // sampler steps between two draws
    double burn_in = 0.0;
    bool confirmed = false;
};

// The long chain draws until every statistic has this many effective draws: a t-ratio's own
// Monte Carlo error (about 1 / sqrt(effective draws)) is then at most 0.02, small against the
// 0.1 it is judged by. It stops at the cap.
inline constexpr int32_t confirmation_effective_draws = 2500;
inline constexpr int32_t confirmation_cap = 25000;

// The margin the judgement allows a t-ratio above 0.1: twice the chain's Monte Carlo error at
// the effective draws it must reach. Fixed, so that a noisier chain does not pass more.
inline constexpr double confirmation_t_margin = 0.04;

// The long chain confirms a claim of convergence unless its draws speak against it: a t-ratio
// above 0.1 by more than the fixed margin, an overall ratio above 0.25 by more than twice its
// error at the effective draws required (sqrt(p / effective draws): it maximises over p
// directions), or draws too few to judge.
inline bool confirms(const ConvergenceCheck& check) {
    if (!(check.smallest_effective_size >= confirmation_effective_draws)) return false;
    for (const double t : check.t_ratios)
        if (!(std::fabs(t) <= t_ratio_limit + confirmation_t_margin)) return false;
    const double p = static_cast<double>(check.t_ratios.size());
    return check.overall_ratio <=
           overall_ratio_limit + 2.0 * std::sqrt(p / confirmation_effective_draws);
}

// Runs the check on `chain` (a fresh chain on the observed network, its statistics the observed
// ones) at `theta`. `steps_per_draw` and `draws` are the estimation's K and its phase-3 draws.
// `target`, when given, replaces the observed statistics (a network with missing dyads: their
// expectation given the observed ones).
template <class Store>
Confirmation confirm_estimate(Chain<Store>& chain, const std::vector<double>& theta,
                              double steps_per_draw, const Matrix& draws, int32_t factor,
                              SeedSource& seeds, const Observer& observer,
                              const std::vector<double>* target = nullptr) {
    Confirmation c;
    const std::vector<double> observed =
        target != nullptr ? *target
                          : std::vector<double>(chain.statistics.begin(),
                                                chain.statistics.begin() +
                                                    static_cast<std::ptrdiff_t>(theta.size()));
    // The slowest statistic sets the spacing: an autocorrelation time apart, draws are close
    // to independent, and the chain goes on until their effective number is enough anyway.
    const double tau = slowest_autocorrelation(draws);
    c.thinning = std::max(1.0, std::round(tau)) * std::max(std::ceil(steps_per_draw), 1.0);
    c.burn_in = 20.0 * c.thinning;
    int batch = static_cast<int>(1.1 * confirmation_effective_draws);
    run_burn_in(chain, theta.data(), seeds, observer,
                StageStarted{.stage = Stage::check_burn_in,
                             .draws = batch,
                             .steps_per_draw = c.thinning,
                             .steps = c.burn_in});
    Matrix sample;
    sample.cols = static_cast<int32_t>(theta.size());
    StepCount count{&observer, Stage::check, batch * std::ceil(c.thinning)};
    for (;;) {
        Matrix more = make_matrix(batch, static_cast<int>(theta.size()), 0.0);
        for (int i = 0; i < batch; ++i) {
            run_steps_counted(chain, theta.data(), c.thinning, count);
            for (size_t k = 0; k < theta.size(); ++k)
                more[i][static_cast<int>(k)] = chain.statistics[k];
        }
        append_draw_rows(sample, more);
        const double effective = smallest_effective_size(sample);
        if (effective >= confirmation_effective_draws || sample.rows >= confirmation_cap) break;
        const double wanted =
            more_draws_wanted(sample.rows, effective, confirmation_effective_draws);
        batch = static_cast<int>(
            std::min<double>(confirmation_cap - sample.rows, std::max(std::ceil(wanted), 100.0)));
        count.total += batch * std::ceil(c.thinning);
    }
    c.draws = sample.rows;
    c.check = check_convergence(sample, observed, factor);
    c.confirmed = confirms(c.check);
    return c;
}

}  // namespace vexa
