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

#include "base/progress.h"
#include "numeric/matrix.h"
#include "numeric/rng.h"
#include "sampler/steps.h"

namespace vexa {

struct EstimationSettings {
    int32_t multiplication_factor = 2;  // m: sampler steps per draw scale with it
    int32_t subphase_count = 5;         // S
    int32_t phase3_steps = 500;         // N3
    float start_a_value = 0.1f;         // a, held in single precision throughout
};

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
    bool degenerate = false;  // the phase-1 matrix was singular; nothing below is filled
    std::vector<double> after_phase1;
    std::vector<Subphase> subphases;
    std::vector<double> after_phase2;
    int32_t phase3_draws = 0;
    std::vector<double> phase3_means;
    std::vector<double> estimates;
    std::vector<double> standard_errors;
    std::vector<double> t_ratios;
    Matrix covariance;  // the inverted phase-3 matrix
    bool converged = false;
};

namespace estimation_detail {

// Takes `draws` statistics vectors, K steps apart, from a chain that is never reset between
// them; returns them as rows and leaves their mean in `mean`.
template <class Store>
Matrix draw_statistics(Chain<Store>& chain, const std::vector<double>& theta, int draws, double K,
                       std::vector<double>& mean) {
    const size_t count = theta.size();
    Matrix rows = make_matrix(std::max(draws, 0), static_cast<int>(count), 0.0);
    std::fill(mean.begin(), mean.end(), 0.0);
    for (int i = 0; i < draws; ++i) {
        run_steps(chain, theta.data(), K);
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
                       const Progress& progress) {
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
    const double K = n * d * settings.multiplication_factor * (1.0 - d) * n;
    const int N1 = 3 * p + 7;
    run.phase1_draws = N1;
    run.steps_per_draw = K;
    progress.say("  phase 1: %d draws of %.0f steps\n", N1, std::ceil(K));

    Matrix draws = draw_statistics(chain, theta, N1, K, mean);
    run.phase1_means = mean;
    accumulate_covariance(D, draws, mean, variance);
    if (invert_in_place(D) == 0) {
        progress.say("  degenerate model: the statistics do not vary under these parameters\n");
        run.degenerate = true;
        return run;
    }
    run.after_phase1 = theta;

    // Phase 2.
    std::vector<double> parameter_sum(count, 0.0), previous(count, 0.0), crossing(count, 0.0);
    for (int k = 0; k < settings.subphase_count; ++k) {
        if (k == 1) a = a + a;  // sub-phases 0 and 1 both run with the starting gain
        Subphase subphase;
        subphase.gain = a;
        progress.say("  phase 2, sub-phase %d (gain %g)\n", k, static_cast<double>(a));
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
                run_steps(chain, theta.data(), K);
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
        a = a * 0.5f;
    }
    run.after_phase2 = theta;

    // Phase 3.
    const int N3 = settings.phase3_steps;
    run.phase3_draws = N3;
    progress.say("  phase 3: %d draws of %.0f steps\n", N3, std::ceil(K));
    run_sampler(chain, theta.data(), N3 * 0.1 * K, seeds);
    Matrix final_draws = draw_statistics(chain, theta, N3, K, mean);
    run.phase3_means = mean;
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
