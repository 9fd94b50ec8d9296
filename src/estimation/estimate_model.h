#pragma once
// An estimation: stochastic approximation runs, each continuing from the parameters the one
// before left, until one converges or the runs allowed are spent; then, on request, the
// long-chain check of a converged estimate. Returns every run's record and verdict and the
// estimates; tells the observer as each run starts and ends, so that its report can be read
// while the next run computes.

#include <cstdint>
#include <optional>
#include <vector>

#include "estimation/confirmation.h"
#include "estimation/diagnostics.h"
#include "estimation/estimation.h"
#include "sampler/observer.h"

namespace vexa {

struct EstimationRecord {
    EstimationSettings settings;
    int32_t runs_allowed = 1;
    std::vector<EstimationRun> runs;
    std::vector<ConvergenceCheck> checks;  // the verdict on each run
    bool converged = false;                // the last run converged
    // The estimates reported: those of the converged run; when no run converged, those of the
    // run whose largest t-ratio was smallest; the starting values when every run was
    // degenerate.
    std::vector<double> estimates;
    int32_t reported_run = 0;  // the run (from 1) whose estimates are reported; 0: none
    std::optional<Confirmation> confirmation;  // the long-chain check, when it ran
    std::vector<double> end_statistics;        // of the last run's final network
};

// The verdict on a run: its t-ratios and effective sample sizes decide, not the quoted flag.
ConvergenceCheck verdict_on(const EstimationRun& run, int32_t multiplication_factor);

// Whether a run that stopped is taken for a path gone astray rather than a degenerate model.
// A parameter that runs off in phase 2, a chain that collapses there to the empty or the
// complete network, or phase-3 draws far from the observed network show either a model that
// puts its weight on networks unlike the observed one or a path steered badly from a start
// far from the estimate (phase 1's covariance, measured there, misjudges the steps once the
// parameters have travelled, and can carry them into another mode of a model near a phase
// transition). The first time, with runs still to go, it is taken for the latter: the next
// run starts again with half the gain, and a model that stops so again is named degenerate.
bool went_astray(const EstimationRun& run, bool previous_stopped, bool last_run);

// The run whose estimates an estimation reports (from 1): the converged one, else the
// non-degenerate run whose largest t-ratio was smallest (the last of equals); 0 when every run
// was degenerate.
int32_t reported_run(const EstimationRecord& record);

// Estimates from `start` (the parameters of the run file's included effects, by slot) on
// chains from `setup.observed`.
template <class Store>
EstimationRecord estimate_model(const ChainSetup<Store>& setup, const std::vector<double>& start,
                                const EstimationSettings& settings, int32_t runs, bool confirm,
                                Rng& rng, SeedSource& seeds, const Observer& observer) {
    EstimationRecord record;
    record.settings = settings;
    record.runs_allowed = runs;
    const auto p = static_cast<int32_t>(start.size());
    std::vector<double> parameters = start;
    Store working = setup.chain_store();
    Chain<Store> chain = setup.chain_on(working, p, rng);
    // Missing dyads: the chain given the observed dyads, kept across runs.
    Store given_store = setup.missing.empty() ? Store{} : setup.chain_store();
    Rng given_rng;
    std::optional<Chain<Store>> given;
    if (!setup.missing.empty()) {
        SamplerSettings given_settings = setup.sampler;
        given_settings.proposal = Proposal::missing_toggle;
        given.emplace(make_chain(given_store, setup.terms, p, given_settings, given_rng));
    }
    Matrix D = make_matrix(p, p, 0.0);
    AutoCarry carry;
    EstimationSettings run_settings = settings;
    bool previous_stopped = false;
    for (int32_t run = 1; run <= runs && !record.converged; ++run) {
        // A run after the first starts from a clean D, even after a degenerate run left it
        // partly reduced.
        if (run > 1) D = make_matrix(p, p, 0.0);
        observer.tell(RunStarted{run, runs});
        EstimationRun result = estimate(chain, parameters, D, run_settings, seeds, observer, carry,
                                        given ? &*given : nullptr);
        result.astray = went_astray(result, previous_stopped, run == runs);
        previous_stopped = result.degenerate;
        if (result.astray) run_settings.start_a_value *= 0.5f;
        const ConvergenceCheck check = verdict_on(result, settings.multiplication_factor);
        record.converged = check.verdict == Verdict::converged;
        if (run == runs || record.converged)
            record.end_statistics = statistics_of(working, setup.terms, p);
        working = setup.chain_store();
        recount(chain);
        // A runaway parameter is no place to start the next run from.
        if (result.degenerate) parameters = start;
        carry = carry_after(result, check);
        if (!carry.newton_start.empty()) parameters = carry.newton_start;
        record.runs.push_back(std::move(result));
        record.checks.push_back(check);
        observer.tell(RunEnded{run, record.runs.back(), record.checks.back()});
    }
    if (record.runs.empty()) record.end_statistics = statistics_of(working, setup.terms, p);
    record.reported_run = reported_run(record);
    if (record.reported_run > 0) {
        parameters = record.runs[static_cast<size_t>(record.reported_run - 1)].estimates;
    }
    if (record.converged && confirm) {
        Store fresh = setup.chain_store();
        Chain<Store> fresh_chain = setup.chain_on(fresh, p, rng);
        const EstimationRun& last = record.runs.back();
        record.confirmation = confirm_estimate(
            fresh_chain, parameters, last.steps_per_draw, last.phase3_draws_matrix,
            settings.multiplication_factor, seeds, observer, given ? &last.observed : nullptr);
        observer.tell(CheckEnded{*record.confirmation});
    }
    record.estimates = std::move(parameters);
    return record;
}

}  // namespace vexa
