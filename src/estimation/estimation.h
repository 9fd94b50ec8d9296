#pragma once
// Three-phase stochastic approximation of a model (a Robbins-Monro scheme), written once for
// every store type against a chain. Phase 1 estimates the covariance of the statistics under
// the starting parameters and inverts it; phase 2 moves the parameters until the simulated
// statistics cross their observed values, in sub-phases of halving gain; phase 3 simulates at
// the estimates for the standard errors and the convergence t-ratios. One call is one
// estimation run; it returns the record of the run, which report/ turns into the report.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "numeric/matrix.h"
#include "numeric/rng.h"
#include "sampler/observer.h"
#include "sampler/runs.h"

namespace vexa {

struct EstimationSettings {
    int32_t multiplication_factor = 2;  // m: sampler steps per draw scale with it
    int32_t subphase_count = 5;         // S
    int32_t phase3_steps = 500;         // N3
    float start_a_value = 0.1f;         // a, held in single precision throughout
};

// Why a run stopped as degenerate.
enum class Degeneracy {
    none,
    singular,         // the phase-1 covariance of the statistics could not be inverted
    runaway,          // a parameter moved more than runaway_limit standard errors in phase 2
    extreme_network,  // the chain reached the empty or the complete network
    fixed_statistic,  // a statistic did not vary over the phase-3 draws
    far_statistic,    // the phase-3 draws of a statistic sat far from its observed value
};

// What a degenerate run found, in a few words ("a parameter ran away").
const char* degeneracy_text(Degeneracy why);

// Phase-3 draws whose mean lies further than this many standard deviations from the observed
// statistic come from a model that cannot reproduce the observed network.
inline constexpr double far_limit = 10.0;

// A parameter that moves further than this many phase-1 standard errors from where phase 2
// started it has run away: the model puts its mass on networks unlike the observed one.
inline constexpr double runaway_limit = 100.0;

struct Subphase {
    float gain = 0.0f;               // the gain it started with
    int32_t steps = 0;               // iterations taken
    std::vector<double> parameters;  // the parameters it ended with
};

// Everything a run computed, in the order the report prints it.
struct EstimationRun {
    std::vector<double> observed;  // the statistics at entry
    std::vector<double> starting;  // the parameters at entry
    float gain = 0.0f;             // the starting gain
    int32_t phase1_draws = 0;      // N1 = 3p + 7
    double steps_per_draw = 0.0;   // K
    std::vector<double> phase1_means;
    bool degenerate = false;  // the run stopped at `stage`; nothing of later stages is filled
    Degeneracy degeneracy = Degeneracy::none;
    int32_t stage = 1;     // the last phase the run reached
    int32_t culprit = -1;  // the parameter that ran away, or the statistic that stayed fixed
    double culprit_from = 0.0, culprit_to = 0.0;  // its value before and when it was caught
    std::vector<double> after_phase1;
    std::vector<Subphase> subphases;
    std::vector<double> after_phase2;
    int32_t phase3_draws = 0;
    std::vector<double> phase3_means;
    Matrix phase3_draws_matrix;  // one row per draw, as drawn
    std::vector<double> estimates;
    std::vector<double> standard_errors;
    std::vector<double> t_ratios;
    Matrix covariance;  // the inverted phase-3 matrix
    bool converged = false;
};

namespace estimation_detail {

// Whether the chain stands at the empty or the complete network though the observed network
// is far from both: the model has collapsed onto one of them.
template <class Store>
bool at_extreme(const Store& store, double observed_ties) {
    const double n = store.node_count;
    const double dyads = Store::kind == NetworkKind::graph ? n * (n - 1.0) / 2.0 : n * (n - 1.0);
    const double ties = static_cast<double>(tie_count(store));
    const double margin = std::min(10.0, dyads / 4.0);
    return (ties == 0.0 || ties == dyads) && observed_ties >= margin &&
           observed_ties <= dyads - margin;
}

// Takes `draws` statistics vectors, K steps apart, from a chain that is never reset between
// them; returns them as rows and leaves their mean in `mean`.
template <class Store>
Matrix draw_statistics(Chain<Store>& chain, const std::vector<double>& theta, int draws, double K,
                       std::vector<double>& mean, double observed_ties, bool& extreme,
                       StepCount& steps) {
    const size_t count = theta.size();
    Matrix rows = make_matrix(std::max(draws, 0), static_cast<int>(count), 0.0);
    std::fill(mean.begin(), mean.end(), 0.0);
    for (int i = 0; i < draws; ++i) {
        run_steps_counted(chain, theta.data(), K, steps);
        extreme = extreme || at_extreme(*chain.store, observed_ties);
        for (size_t k = 0; k < count; ++k) {
            mean[k] += chain.statistics[k];
            rows[i][k] = chain.statistics[k];
        }
    }
    for (double& m : mean) m /= draws;
    return rows;
}

// Centres the draws on their mean and adds their cross products onto D, then divides D by the
// number of draws, noting the diagonal. D is not cleared first: in phase 3 it still holds the
// phase-1 inverse, and that accumulation is part of the method.
void accumulate_covariance(Matrix& D, Matrix& draws, const std::vector<double>& mean,
                           std::vector<double>& variance);

}  // namespace estimation_detail

// One run on the chain (its statistics hold the observed totals), continuing from theta and
// the caller's matrix D (zero at the first run).
template <class Store>
EstimationRun estimate(Chain<Store>& chain, std::vector<double>& theta, Matrix& D,
                       const EstimationSettings& settings, SeedSource& seeds,
                       const Observer& observer) {
    using estimation_detail::accumulate_covariance;
    using estimation_detail::draw_statistics;
    EstimationRun run;
    const int p = static_cast<int>(theta.size());
    const size_t count = theta.size();
    seeds.reseed(*chain.rng);
    std::vector<double> mean(count, 0.0), variance(count, 0.0);
    float a = settings.start_a_value;
    run.observed.assign(chain.statistics.begin(),
                        chain.statistics.begin() + static_cast<std::ptrdiff_t>(count));
    const std::vector<double>& observed = run.observed;
    run.starting = theta;
    run.gain = a;

    const double n = chain.store->node_count;
    const double d = density(*chain.store);
    const double observed_ties = static_cast<double>(tie_count(*chain.store));
    bool extreme = false;
    const auto stop = [&](Degeneracy why) {
        run.degenerate = true;
        run.degeneracy = why;
        return run;
    };
    const double K = n * d * settings.multiplication_factor * (1.0 - d) * n;
    const int N1 = 3 * p + 7;
    run.phase1_draws = N1;
    run.steps_per_draw = K;
    // Steps are counted over the whole run; phase 2's sub-phases are counted at their longest
    // until they end.
    const auto subphase_longest = [&](int k) {
        const double n_max = std::pow(2.0, 4.0 * k / 3.0) * (p + 7) + 200.0;
        return n_max > 0.0 ? std::ceil(n_max) : 0.0;
    };
    double planned_draws = N1 + 1.1 * settings.phase3_steps;
    for (int k = 0; k < settings.subphase_count; ++k) planned_draws += subphase_longest(k);
    StepCount steps{&observer, Stage::phase1, planned_draws * std::ceil(K)};
    observer.tell(StageStarted{
        .stage = Stage::phase1, .draws = N1, .steps_per_draw = K, .steps = N1 * std::ceil(K)});

    Matrix draws = draw_statistics(chain, theta, N1, K, mean, observed_ties, extreme, steps);
    run.phase1_means = mean;
    accumulate_covariance(D, draws, mean, variance);
    if (invert_in_place(D) == 0) {
        return stop(Degeneracy::singular);
    }
    if (extreme) return stop(Degeneracy::extreme_network);
    run.after_phase1 = theta;
    run.stage = 2;
    // The phase-1 inverse approximates the covariance of the estimates: its diagonal gives the
    // standard errors against which a runaway parameter is measured.
    std::vector<double> phase1_error(count, 0.0);
    for (size_t j = 0; j < count; ++j)
        phase1_error[j] = std::sqrt(std::fabs(D[static_cast<int>(j)][static_cast<int>(j)]));
    const std::vector<double> phase2_start = theta;

    // Phase 2.
    std::vector<double> parameter_sum(count, 0.0), previous(count, 0.0), crossing(count, 0.0);
    for (int k = 0; k < settings.subphase_count; ++k) {
        if (k == 1) a = a + a;  // sub-phases 0 and 1 both run with the starting gain
        Subphase subphase;
        subphase.gain = a;
        steps.stage = Stage::phase2;
        observer.tell(StageStarted{.stage = Stage::phase2, .subphase = k, .gain = a});
        const double n_min = std::pow(2.0, 4.0 * k / 3.0) * (p + 7);
        const double n_max = n_min + 200.0;
        int i = 0;
        if (n_max > 0.0) {
            while (true) {
                if (i > n_min) {
                    bool all_crossed = true;
                    for (const double c : crossing) all_crossed = all_crossed && c < 0.0;
                    if (all_crossed) break;
                }
                for (size_t l = 0; l < count; ++l) previous[l] = chain.statistics[l];
                run_steps_counted(chain, theta.data(), K, steps);
                const double* z = chain.statistics.data();
                for (int j = 0; j < p; ++j) {
                    for (int l = 0; l < p; ++l) {
                        theta[static_cast<size_t>(j)] -=
                            (z[l] - observed[static_cast<size_t>(l)]) * a * D[l][j];
                    }
                }
                for (size_t l = 0; l < count; ++l)
                    crossing[l] += (z[l] - observed[l]) * (previous[l] - observed[l]);
                for (size_t l = 0; l < count; ++l) parameter_sum[l] += theta[l];
                ++i;
                const bool collapsed = estimation_detail::at_extreme(*chain.store, observed_ties);
                int32_t runaway = -1;
                for (size_t j = 0; j < count && runaway < 0; ++j) {
                    const double moved = std::fabs(theta[j] - phase2_start[j]);
                    if (!(moved <= runaway_limit * phase1_error[j]))
                        runaway = static_cast<int32_t>(j);
                }
                if (collapsed || runaway >= 0) {
                    subphase.steps = i;
                    subphase.parameters = theta;
                    run.subphases.push_back(std::move(subphase));
                    if (runaway < 0) return stop(Degeneracy::extreme_network);
                    run.culprit = runaway;
                    run.culprit_from = phase2_start[static_cast<size_t>(runaway)];
                    run.culprit_to = theta[static_cast<size_t>(runaway)];
                    return stop(Degeneracy::runaway);
                }
                if (i >= n_max) break;
            }
        }
        for (size_t j = 0; j < count; ++j) {
            // Sub-phase 0 ends with its last iterate, later ones with their average.
            if (k != 0) theta[j] = parameter_sum[j] / i;
            parameter_sum[j] = 0.0;
            crossing[j] = 0.0;
        }
        subphase.steps = i;
        subphase.parameters = theta;
        run.subphases.push_back(std::move(subphase));
        planned_draws -= subphase_longest(k) - i;
        steps.total = planned_draws * std::ceil(K);
        a = a * 0.5f;
    }
    run.after_phase2 = theta;
    run.stage = 3;

    // Phase 3.
    const int N3 = settings.phase3_steps;
    run.phase3_draws = N3;
    steps.stage = Stage::phase3;
    observer.tell(StageStarted{
        .stage = Stage::phase3, .draws = N3, .steps_per_draw = K, .steps = N3 * std::ceil(K)});
    seeds.reseed(*chain.rng);
    run_steps_counted(chain, theta.data(), N3 * 0.1 * K, steps);
    Matrix final_draws = draw_statistics(chain, theta, N3, K, mean, observed_ties, extreme, steps);
    run.phase3_means = mean;
    run.phase3_draws_matrix = final_draws;
    if (extreme) return stop(Degeneracy::extreme_network);
    for (int k = 0; k < p && N3 > 1; ++k) {
        const size_t kk = static_cast<size_t>(k);
        double spread = 0.0;
        for (int r = 0; r < N3; ++r)
            spread += (final_draws[r][k] - mean[kk]) * (final_draws[r][k] - mean[kk]);
        const double sd = std::sqrt(spread / (N3 - 1));
        run.culprit = k;
        run.culprit_from = observed[kk];
        if (!(sd > 0.0)) {
            run.culprit_to = final_draws[0][k];
            return stop(Degeneracy::fixed_statistic);
        }
        if (std::fabs(mean[kk] - observed[kk]) > far_limit * sd) {
            run.culprit_to = mean[kk];
            return stop(Degeneracy::far_statistic);
        }
        run.culprit = -1;
    }
    accumulate_covariance(D, final_draws, mean, variance);
    invert_in_place(D);  // a singular phase-3 matrix is reported through its entries

    run.converged = true;
    run.t_ratios.assign(count, 0.0);
    run.standard_errors.assign(count, 0.0);
    for (size_t k = 0; k < count; ++k) {
        run.t_ratios[k] = -(mean[k] - observed[k]) * std::sqrt(1.0 / variance[k]);
        if (std::fabs(run.t_ratios[k]) >= 0.1) run.converged = false;
        run.standard_errors[k] = std::sqrt(D[static_cast<int>(k)][static_cast<int>(k)]);
    }
    run.estimates = theta;
    run.covariance = D;
    return run;
}

}  // namespace vexa
