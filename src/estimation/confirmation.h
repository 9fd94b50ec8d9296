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

inline constexpr int32_t confirmation_draws = 1000;

// The long chain confirms a claim of convergence unless its draws speak against it: a t-ratio
// above 0.1, or an overall ratio above 0.25, by more than twice the Monte Carlo error of the
// chain itself (about 1 / sqrt(effective draws) for a t-ratio, sqrt(p / effective draws) for
// the overall ratio, which maximises over p directions), or draws too few to judge at all.
inline bool confirms(const ConvergenceCheck& check) {
    if (!(check.smallest_effective_size >= enough_effective_draws)) return false;
    for (size_t k = 0; k < check.t_ratios.size(); ++k) {
        const double error = 1.0 / std::sqrt(check.effective_sizes[k]);
        if (!(std::fabs(check.t_ratios[k]) <= t_ratio_limit + 2.0 * error)) return false;
    }
    const double p = static_cast<double>(check.t_ratios.size());
    return check.overall_ratio <=
           overall_ratio_limit + 2.0 * std::sqrt(p / check.smallest_effective_size);
}

// Runs the check on `chain` (a fresh chain on the observed network, its statistics the observed
// ones) at `theta`. `steps_per_draw` and `draws` are the estimation's K and its phase-3 draws.
template <class Store>
Confirmation confirm_estimate(Chain<Store>& chain, const std::vector<double>& theta,
                              double steps_per_draw, const Matrix& draws, int32_t factor,
                              SeedSource& seeds, const Observer& observer) {
    Confirmation c;
    const std::vector<double> observed(
        chain.statistics.begin(),
        chain.statistics.begin() + static_cast<std::ptrdiff_t>(theta.size()));
    // The slowest statistic sets the spacing: two autocorrelation times apart, draws are near
    // independent.
    double tau = 1.0;
    for (int k = 0; k < draws.cols; ++k) {
        const double t = autocorrelation_time(draws, k);
        if (std::isfinite(t)) tau = std::max(tau, t);
    }
    c.thinning = std::ceil(2.0 * tau) * std::max(std::ceil(steps_per_draw), 1.0);
    c.burn_in = 20.0 * c.thinning;
    c.draws = confirmation_draws;
    run_burn_in(chain, theta.data(), seeds, observer,
                StageStarted{.stage = Stage::check_burn_in,
                             .draws = c.draws,
                             .steps_per_draw = c.thinning,
                             .steps = c.burn_in});
    Matrix sample = make_matrix(c.draws, static_cast<int>(theta.size()), 0.0);
    StepCount count{&observer, Stage::check, c.draws * std::ceil(c.thinning)};
    for (int i = 0; i < c.draws; ++i) {
        run_steps_counted(chain, theta.data(), c.thinning, count);
        for (size_t k = 0; k < theta.size(); ++k)
            sample[i][static_cast<int>(k)] = chain.statistics[k];
    }
    c.check = check_convergence(sample, observed, factor);
    c.confirmed = confirms(c.check);
    return c;
}

}  // namespace vexa
