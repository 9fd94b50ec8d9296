#pragma once
// Three-phase stochastic approximation of a model (a Robbins-Monro scheme), written once for
// every store type against a chain. Phase 1 estimates the covariance of the statistics under
// the starting parameters and inverts it; phase 2 moves the parameters until the simulated
// statistics cross their observed values, in sub-phases of halving gain; phase 3 simulates at
// the estimates for the standard errors and the convergence t-ratios. One call is one
// estimation run; it returns the record of the run, which report/ turns into the report. The
// phases are in phases.h, the automatic mode's own in automatic.h, and phase 2 by equilibrium
// expectation, the second method, in equilibrium.h.

#include <vector>

#include "estimation/automatic.h"
#include "estimation/equilibrium.h"
#include "estimation/phases.h"

namespace vexa {

// One run on the chain (its statistics hold the observed totals), continuing from theta and
// the caller's matrix D (zero at the first run). In the automatic mode `carry` is what the
// run before found was needed. A network with missing dyads comes with `given`, the chain that
// toggles only those (missing_ties.h); its generator is reseeded with the run's.
template <class Store>
EstimationRun estimate(Chain<Store>& chain, std::vector<double>& theta, Matrix& D,
                       const EstimationSettings& settings, SeedSource& seeds,
                       const Observer& observer, const AutoCarry& carry = {},
                       Chain<Store>* given = nullptr) {
    using namespace estimation_detail;
    seeds.reseed(*chain.rng);
    if (given != nullptr) seeds.reseed(*given->rng);
    RunState<Store> r(chain, theta, D, settings, observer);
    r.given = given;
    start_run(r);
    const bool phase1_done = settings.automatic ? run_auto_phase1(r, carry) : run_phase1(r);
    if (!phase1_done) return std::move(r.run);
    float a = settings.start_a_value;
    if (settings.automatic && settings.exact_start) r.run.phase2_skipped = Phase2Skip::exact_start;
    if (settings.automatic && !carry.newton_start.empty())
        r.run.phase2_skipped = Phase2Skip::newton_step;
    const int subphases = r.run.phase2_skipped != Phase2Skip::no ? 0 : settings.subphase_count;
    const bool equilibrium = settings.method == EstimationMethod::equilibrium_expectation;
    r.run.method = settings.method;
    if (equilibrium && subphases > 0 && !run_equilibrium_expectation(r, a)) return std::move(r.run);
    for (int k = 0; k < (equilibrium ? 0 : subphases); ++k) {
        if (k == 1) a = a + a;  // sub-phases 0 and 1 both run with the starting gain
        if (!run_subphase(r, k, a)) return std::move(r.run);
        if (settings.automatic) space_draws_after_subphase(r, k);
        a = a * 0.5f;
    }
    r.run.after_phase2 = theta;
    r.run.stage = 3;
    const bool phase3_done =
        settings.automatic ? run_auto_phase3(r, seeds, carry) : run_phase3(r, seeds);
    if (!phase3_done) return std::move(r.run);
    finish_run(r);
    return std::move(r.run);
}

}  // namespace vexa
