#pragma once
// The phases of one stochastic approximation run, written once for every store type against a
// chain: the state it carries from phase to phase, and phases 1 to 3 as the plain mode runs
// them (see estimation.h); the run's settings and record are in estimation_run.h.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "estimation/estimation_run.h"
#include "estimation/missing_ties.h"
#include "numeric/matrix.h"
#include "numeric/rng.h"
#include "sampler/chain_set.h"
#include "sampler/observer.h"
#include "sampler/runs.h"

namespace vexa {

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

// What one run carries from phase to phase.
template <class Store>
struct RunState {
    Chain<Store>& chain;
    std::vector<double>& theta;
    Matrix& D;
    const EstimationSettings& settings;
    const Observer& observer;
    EstimationRun run;
    int p = 0;
    size_t count = 0;
    double K = 0.0;  // steps per draw
    double observed_ties = 0.0;
    bool extreme = false;
    double planned_draws = 0.0;
    StepCount steps;
    std::vector<double> mean, variance;
    std::vector<double> phase1_error;  // the phase-1 standard errors
    std::vector<double> phase2_start;
    std::vector<double> parameter_sum, previous, crossing;
    std::vector<double> subphase_trace;  // the automatic mode: the statistics of the current
                                         // sub-phase's iterations, row by row
    ChainSet<Store> phase3;              // phase 3's chains when it runs several: the run's
                                         // own, then copies of its network at phase 3's start
    Chain<Store>* given = nullptr;       // a network with missing dyads: the chain of those dyads
                                         // given the observed ones (missing_ties.h)
    Matrix given_covariance;             // of the given chain's phase-3 draws

    RunState(Chain<Store>& run_chain, std::vector<double>& parameters, Matrix& scaling,
             const EstimationSettings& run_settings, const Observer& watcher)
        : chain(run_chain),
          theta(parameters),
          D(scaling),
          settings(run_settings),
          observer(watcher) {}

    // Stops the run as degenerate; returns false, to be passed on.
    bool stop(Degeneracy why) {
        run.degenerate = true;
        run.degeneracy = why;
        return false;
    }
    // Steps are counted over the whole run; phase 2's sub-phases are counted at their longest
    // until they end.
    double subphase_longest(int k) const {
        const double n_max = std::pow(2.0, 4.0 * k / 3.0) * (p + 7) + 200.0;
        return n_max > 0.0 ? std::ceil(n_max) : 0.0;
    }
};

// The run's record at its start and the steps it plans.
template <class Store>
void start_run(RunState<Store>& r) {
    r.count = r.theta.size();
    r.p = static_cast<int>(r.count);
    r.mean.assign(r.count, 0.0);
    r.variance.assign(r.count, 0.0);
    r.run.observed.assign(r.chain.statistics.begin(),
                          r.chain.statistics.begin() + static_cast<std::ptrdiff_t>(r.count));
    r.run.starting = r.theta;
    r.run.gain = r.settings.start_a_value;
    const Store& store = *r.chain.store;
    const double n = store.node_count;
    const double d = density(store);
    r.observed_ties = static_cast<double>(tie_count(store));
    r.K = n * d * r.settings.multiplication_factor * (1.0 - d) * n;
    r.run.phase1_draws = 3 * r.p + 7;
    r.run.steps_per_draw = r.run.phase1_steps_per_draw = r.K;
    r.planned_draws = r.run.phase1_draws + 1.1 * r.settings.phase3_steps;
    for (int k = 0; k < r.settings.subphase_count; ++k) r.planned_draws += r.subphase_longest(k);
    r.steps = StepCount{&r.observer, Stage::phase1, r.planned_draws * std::ceil(r.K)};
}

// Phase 1 after its draws: their covariance inverted into D, and phase 2 prepared. False when
// the run stopped.
template <class Store>
bool finish_phase1(RunState<Store>& r, Matrix& draws) {
    r.run.phase1_means = r.mean;
    accumulate_covariance(r.D, draws, r.mean, r.variance);
    given_phase1(r, draws.rows);
    if (invert_in_place(r.D) == 0) return r.stop(Degeneracy::singular);
    if (r.extreme) return r.stop(Degeneracy::extreme_network);
    r.run.after_phase1 = r.theta;
    r.run.stage = 2;
    // The phase-1 inverse approximates the covariance of the estimates: its diagonal gives the
    // standard errors against which a runaway parameter is measured.
    r.phase1_error.assign(r.count, 0.0);
    for (size_t j = 0; j < r.count; ++j)
        r.phase1_error[j] = std::sqrt(std::fabs(r.D[static_cast<int>(j)][static_cast<int>(j)]));
    r.phase2_start = r.theta;
    r.parameter_sum.assign(r.count, 0.0);
    r.previous.assign(r.count, 0.0);
    r.crossing.assign(r.count, 0.0);
    return true;
}

// Phase 1: the covariance of the statistics at the start, inverted into D. False when the run
// stopped.
template <class Store>
bool run_phase1(RunState<Store>& r) {
    const int N1 = r.run.phase1_draws;
    r.observer.tell(StageStarted{
        .stage = Stage::phase1, .draws = N1, .steps_per_draw = r.K, .steps = N1 * std::ceil(r.K)});
    Matrix draws =
        draw_statistics(r.chain, r.theta, N1, r.K, r.mean, r.observed_ties, r.extreme, r.steps);
    return finish_phase1(r, draws);
}

// One iteration of phase 2: a draw, and the parameters moved against its distance from the
// observed statistics.
template <class Store>
void update_parameters(RunState<Store>& r, float a) {
    // The target is the observed statistics, or for a network with missing dyads the given
    // chain's, which move on with the draw.
    const double* observed =
        r.given != nullptr ? r.given->statistics.data() : r.run.observed.data();
    for (size_t l = 0; l < r.count; ++l) r.previous[l] = r.chain.statistics[l] - observed[l];
    run_steps_counted(r.chain, r.theta.data(), r.K, r.steps);
    advance_given(r);
    const double* z = r.chain.statistics.data();
    for (int j = 0; j < r.p; ++j) {
        for (int l = 0; l < r.p; ++l) {
            r.theta[static_cast<size_t>(j)] -= (z[l] - observed[l]) * a * r.D[l][j];
        }
    }
    for (size_t l = 0; l < r.count; ++l) r.crossing[l] += (z[l] - observed[l]) * r.previous[l];
    for (size_t l = 0; l < r.count; ++l) r.parameter_sum[l] += r.theta[l];
}

// The first parameter that has run away from where phase 2 started it, or -1.
template <class Store>
int32_t runaway_parameter(const RunState<Store>& r) {
    for (size_t j = 0; j < r.count; ++j) {
        const double moved = std::fabs(r.theta[j] - r.phase2_start[j]);
        if (!(moved <= runaway_limit * r.phase1_error[j])) return static_cast<int32_t>(j);
    }
    return -1;
}

// Ends phase 2 where it went astray after `steps` iterations of `part` (the chain collapsed to
// the empty or complete network, or a parameter ran away), keeping the part in the record and
// stopping the run. False when neither happened.
template <class Store>
bool stopped_astray(RunState<Store>& r, Subphase& part, int steps) {
    const bool collapsed = at_extreme(*r.chain.store, r.observed_ties);
    const int32_t runaway = runaway_parameter(r);
    if (!collapsed && runaway < 0) return false;
    part.steps = steps;
    part.parameters = r.theta;
    r.run.subphases.push_back(std::move(part));
    if (runaway < 0) return !r.stop(Degeneracy::extreme_network);
    r.run.culprit = runaway;
    r.run.culprit_from = r.phase2_start[static_cast<size_t>(runaway)];
    r.run.culprit_to = r.theta[static_cast<size_t>(runaway)];
    return !r.stop(Degeneracy::runaway);
}

// Sub-phase k of phase 2 at gain a: at least n_min iterations, then until every statistic has
// crossed its observed value, at most n_max. False when the run stopped.
template <class Store>
bool run_subphase(RunState<Store>& r, int k, float a) {
    Subphase subphase;
    subphase.gain = a;
    r.steps.stage = Stage::phase2;
    r.observer.tell(StageStarted{.stage = Stage::phase2, .subphase = k, .gain = a});
    const double n_min = std::pow(2.0, 4.0 * k / 3.0) * (r.p + 7);
    const double n_max = n_min + 200.0;
    int i = 0;
    while (n_max > 0.0) {
        if (i > n_min) {
            bool all_crossed = true;
            for (const double c : r.crossing) all_crossed = all_crossed && c < 0.0;
            if (all_crossed) break;
        }
        update_parameters(r, a);
        ++i;
        // The automatic mode reads the chain's autocorrelation off the sub-phases, where the
        // parameters move less and less.
        if (r.settings.automatic) {
            r.subphase_trace.insert(
                r.subphase_trace.end(), r.chain.statistics.begin(),
                r.chain.statistics.begin() + static_cast<std::ptrdiff_t>(r.count));
        }
        if (stopped_astray(r, subphase, i)) return false;
        if (i >= n_max) break;
    }
    for (size_t j = 0; j < r.count; ++j) {
        // Sub-phase 0 ends with its last iterate, later ones with their average.
        if (k != 0) r.theta[j] = r.parameter_sum[j] / i;
        r.parameter_sum[j] = 0.0;
        r.crossing[j] = 0.0;
    }
    subphase.steps = i;
    subphase.parameters = r.theta;
    r.run.subphases.push_back(std::move(subphase));
    r.planned_draws -= r.subphase_longest(k) - i;
    r.steps.total = r.planned_draws * std::ceil(r.K);
    return true;
}

// Phase 3 after its draws (their mean in r.mean): refused when a statistic did not vary or sat
// far from its observed value, else their covariance accumulated into D and inverted. False
// when the run stopped.
template <class Store>
bool finish_phase3(RunState<Store>& r, Matrix final_draws) {
    const int N3 = final_draws.rows;
    r.run.phase3_draws = N3;
    r.run.phase3_means = r.mean;
    r.run.phase3_draws_matrix = final_draws;
    if (r.extreme) return r.stop(Degeneracy::extreme_network);
    const std::vector<double>& observed = r.run.observed;
    for (int k = 0; k < r.p && N3 > 1; ++k) {
        const size_t kk = static_cast<size_t>(k);
        double spread = 0.0;
        for (int row = 0; row < N3; ++row)
            spread += (final_draws[row][k] - r.mean[kk]) * (final_draws[row][k] - r.mean[kk]);
        const double sd = std::sqrt(spread / (N3 - 1));
        r.run.culprit = k;
        r.run.culprit_from = observed[kk];
        if (!(sd > 0.0)) {
            r.run.culprit_to = final_draws[0][k];
            return r.stop(Degeneracy::fixed_statistic);
        }
        if (std::fabs(r.mean[kk] - observed[kk]) > far_limit * sd) {
            r.run.culprit_to = r.mean[kk];
            return r.stop(Degeneracy::far_statistic);
        }
        r.run.culprit = -1;
    }
    accumulate_covariance(r.D, final_draws, r.mean, r.variance);
    if (r.given != nullptr) take_off_given(r.D, r.given_covariance);
    invert_in_place(r.D);  // a singular phase-3 matrix is reported through its entries
    return true;
}

// Rows `first` .. first + count - 1 of phase 3's draws from its chains: row i from chain
// i mod K. At the first call the chains start: the run's own and copies of its network, each
// from a seed of its own and a burn-in of a tenth of the draws it will take, so that K chains
// take as many steps as one. The draws' mean is left in r.mean.
template <class Store>
Matrix draw_side_by_side(RunState<Store>& r, SeedSource& seeds, int first, int count) {
    const ChainPlan& plan = r.settings.chains;
    const int32_t K = plan.chains;
    r.run.phase3_chains = K;
    Relay relay;
    relay.observer = &r.observer;
    relay.stage = Stage::phase3;
    relay.base_done = r.steps.done;
    relay.total = r.steps.total;
    if (r.phase3.count() == 0) {
        chains_from(r.phase3, r.chain, K, seeds);
        burn_in_chains(r.phase3, plan, r.theta.data(), relay, [&](int32_t k) {
            return static_cast<double>(pieces_of(first + count, K, k)) * 0.1 * r.K;
        });
    }
    std::vector<double> extreme(static_cast<size_t>(K), 0.0);
    Matrix rows =
        draw_rows(r.phase3, plan, r.theta.data(), first, count, r.K, static_cast<int>(r.count),
                  relay, [&](int32_t k, const Chain<Store>& c) {
                      if (at_extreme(*c.store, r.observed_ties))
                          extreme[static_cast<size_t>(k)] = 1.0;
                  });
    r.steps.advance(static_cast<double>(relay.steps_done.load()));
    cluster_sum(plan.cluster, extreme);
    for (const double e : extreme) r.extreme = r.extreme || e != 0.0;
    std::fill(r.mean.begin(), r.mean.end(), 0.0);
    for (int i = 0; i < rows.rows; ++i)
        for (size_t l = 0; l < r.count; ++l) r.mean[l] += rows[i][l];
    for (double& m : r.mean) m /= count;
    return rows;
}

// Phase 3's first N3 draws at the estimate, after a burn-in of a tenth of them; their mean is
// left in r.mean.
template <class Store>
Matrix start_phase3(RunState<Store>& r, SeedSource& seeds, int N3) {
    given_phase3(r, N3);
    r.steps.stage = Stage::phase3;
    r.observer.tell(StageStarted{
        .stage = Stage::phase3, .draws = N3, .steps_per_draw = r.K, .steps = N3 * std::ceil(r.K)});
    if (r.settings.chains.chains > 1) return draw_side_by_side(r, seeds, 0, N3);
    seeds.reseed(*r.chain.rng);
    run_steps_counted(r.chain, r.theta.data(), N3 * 0.1 * r.K, r.steps);
    return draw_statistics(r.chain, r.theta, N3, r.K, r.mean, r.observed_ties, r.extreme, r.steps);
}

// `count` more of phase 3's draws, the first of them row `first`.
template <class Store>
Matrix draw_more(RunState<Store>& r, SeedSource& seeds, int first, int count) {
    if (r.settings.chains.chains > 1) return draw_side_by_side(r, seeds, first, count);
    std::vector<double> unused(r.count, 0.0);
    return draw_statistics(r.chain, r.theta, count, r.K, unused, r.observed_ties, r.extreme,
                           r.steps);
}

// Phase 3's draws at the estimate, refused when a statistic did not vary or sat far from its
// observed value. False when the run stopped.
template <class Store>
bool run_phase3(RunState<Store>& r, SeedSource& seeds) {
    return finish_phase3(r, start_phase3(r, seeds, r.settings.phase3_steps));
}

// The estimates, their standard errors and the t-ratios.
template <class Store>
void finish_run(RunState<Store>& r) {
    EstimationRun& run = r.run;
    run.converged = true;
    run.t_ratios.assign(r.count, 0.0);
    run.standard_errors.assign(r.count, 0.0);
    for (size_t k = 0; k < r.count; ++k) {
        run.t_ratios[k] = -(r.mean[k] - run.observed[k]) * std::sqrt(1.0 / r.variance[k]);
        if (std::fabs(run.t_ratios[k]) >= 0.1) run.converged = false;
        run.standard_errors[k] = std::sqrt(r.D[static_cast<int>(k)][static_cast<int>(k)]);
    }
    run.estimates = r.theta;
    run.covariance = r.D;
}

}  // namespace estimation_detail

}  // namespace vexa
