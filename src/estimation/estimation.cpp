#include "estimation/estimation.h"

#include <algorithm>
#include <cmath>

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
        check.verdict = run.astray ? Verdict::not_converged : Verdict::degenerate;
        return check;
    }
    return check_convergence(run.phase3_draws_matrix, run.observed, multiplication_factor,
                             run.phase3_chains);
}

bool went_astray(const EstimationRun& run, bool previous_stopped, bool last_run) {
    const bool steered_off = (run.stage == 2 && (run.degeneracy == Degeneracy::runaway ||
                                                 run.degeneracy == Degeneracy::extreme_network)) ||
                             (run.stage == 3 && run.degeneracy == Degeneracy::far_statistic);
    return run.degenerate && steered_off && !previous_stopped && !last_run;
}

bool estimation_detail::clearly_not_converged(const Matrix& draws,
                                              const std::vector<double>& observed, int32_t chains) {
    const ConvergenceCheck check = check_convergence(draws, observed, 1, chains);
    for (size_t k = 0; k < check.t_ratios.size(); ++k) {
        const double spread = 1.0 / std::sqrt(std::max(check.effective_sizes[k], 1.0));
        if (std::fabs(check.t_ratios[k]) > t_ratio_limit + 3.0 * spread) return true;
    }
    return false;
}

AutoCarry carry_after(const EstimationRun& run, const ConvergenceCheck& check) {
    AutoCarry carry;
    if (!run.automatic || run.degenerate) return carry;
    // The next run's phase 1 measures the mixing again at its start, the estimate of this
    // run; it starts from the steps per draw this one found, and from its phase-3 length when
    // that reached the effective draws wanted.
    carry.steps_per_draw = run.steps_per_draw;
    if (run.phase3_effective_draws >= auto_effective_draws) carry.phase3_draws = run.phase3_draws;
    if (check.verdict == Verdict::converged || check.t_ratios.size() != run.estimates.size())
        return carry;
    for (const double t : check.t_ratios) {
        if (!(std::fabs(t) <= auto_newton_t_limit)) return carry;
    }
    const int p = static_cast<int>(run.estimates.size());
    std::vector<double> start = run.estimates;
    for (int j = 0; j < p; ++j) {
        for (int l = 0; l < p; ++l) {
            const auto k = static_cast<size_t>(l);
            start[static_cast<size_t>(j)] -=
                run.covariance[j][l] * (run.phase3_means[k] - run.observed[k]);
        }
        if (!std::isfinite(start[static_cast<size_t>(j)])) return carry;
    }
    carry.newton_start = std::move(start);
    return carry;
}

int32_t reported_run(const EstimationRecord& record) {
    int32_t best = 0;
    for (size_t k = 0; k < record.runs.size(); ++k) {
        const ConvergenceCheck& check = record.checks[k];
        if (record.runs[k].degenerate) continue;
        if (check.verdict == Verdict::converged) return static_cast<int32_t>(k) + 1;
        if (best == 0 ||
            !(check.largest_t > record.checks[static_cast<size_t>(best - 1)].largest_t))
            best = static_cast<int32_t>(k) + 1;
    }
    return best;
}

}  // namespace vexa
