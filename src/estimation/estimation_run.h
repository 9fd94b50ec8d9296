#pragma once
// What one stochastic approximation run is given and what it leaves: its settings, why it may
// stop, and its record, in the order the report prints it (see phases.h for the phases).

#include <cstdint>
#include <vector>

#include "numeric/matrix.h"
#include "sampler/side_by_side.h"

namespace vexa {

// How phase 2 finds the estimate: stochastic approximation (draws far apart, the parameters
// moved against each draw's distance from the observed statistics), or equilibrium expectation
// (short blocks of one chain from the observed network, the parameters moved against the
// squared drift of its statistics; see equilibrium.h).
enum class EstimationMethod : int32_t { stochastic_approximation, equilibrium_expectation };

struct EstimationSettings {
    int32_t multiplication_factor = 2;  // m: sampler steps per draw scale with it
    int32_t subphase_count = 5;         // S
    int32_t phase3_steps = 500;         // N3
    float start_a_value = 0.1f;         // a, held in single precision throughout
    // The automatic mode: the steps between draws from the chain's measured autocorrelation and
    // phase 3 until every statistic has enough effective draws (see automatic.h).
    bool automatic = false;
    // The start is the maximum likelihood estimate itself (a model of independent dyads): the
    // automatic mode then has nothing for phase 2 to find and goes from phase 1 to phase 3.
    bool exact_start = false;
    // Phase 3 draws from this many chains side by side, on up to so many threads.
    ChainPlan chains;
    EstimationMethod method = EstimationMethod::stochastic_approximation;
};

// Why the automatic mode ran no phase 2: its start needed none.
enum class Phase2Skip {
    no,
    exact_start,  // the maximum likelihood estimate itself, of a model of independent dyads
    newton_step,  // the last run's estimate moved by one Newton step from its phase-3 draws
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
    std::vector<double> observed;        // the statistics at entry
    std::vector<double> starting;        // the parameters at entry
    float gain = 0.0f;                   // the starting gain
    int32_t phase1_draws = 0;            // N1 = 3p + 7
    double steps_per_draw = 0.0;         // K: of phase 3 (the automatic mode may choose another)
    double phase1_steps_per_draw = 0.0;  // of phases 1 and 2
    std::vector<double> phase1_means;
    bool degenerate = false;  // the run stopped at `stage`; nothing of later stages is filled
    Degeneracy degeneracy = Degeneracy::none;
    // The run stopped, but its path is taken to have gone astray from a start far from the
    // estimate rather than to show a degenerate model (see went_astray): its verdict is "not
    // converged".
    bool astray = false;
    int32_t stage = 1;     // the last phase the run reached
    int32_t culprit = -1;  // the parameter that ran away, or the statistic that stayed fixed
    double culprit_from = 0.0, culprit_to = 0.0;  // its value before and when it was caught
    std::vector<double> after_phase1;
    std::vector<Subphase> subphases;
    std::vector<double> after_phase2;
    int32_t phase3_draws = 0;
    int32_t phase3_chains = 1;  // row i of the draws is from chain i mod phase3_chains
    // A network with missing dyads: the draws of the chain given the observed dyads at the
    // estimate, whose mean replaced the observed statistics (0: none missing).
    int32_t given_draws = 0;
    int64_t missing_dyads = 0;
    std::vector<double> phase3_means;
    Matrix phase3_draws_matrix;  // one row per draw, as drawn
    std::vector<double> estimates;
    std::vector<double> standard_errors;
    std::vector<double> t_ratios;
    Matrix covariance;  // the inverted phase-3 matrix
    bool converged = false;
    // The automatic mode's choices: the steps per draw the multiplication factor gives, the
    // autocorrelation time (in draws) of the slowest statistic at the chosen steps per draw in
    // phase 1 and in the last sub-phase (each sub-phase from the third on multiplies the steps
    // per draw by it while the draws are far from independent), and phase 3's cap on draws
    // with the smallest effective size it reached.
    bool automatic = false;
    double factor_steps_per_draw = 0.0;
    double phase1_autocorrelation = 0.0;
    double phase2_autocorrelation = 0.0;  // in the last sub-phase
    int32_t phase3_cap = 0;
    double phase3_effective_draws = 0.0;
    Phase2Skip phase2_skipped = Phase2Skip::no;
    // Equilibrium expectation: the steps of a block, the stages it ran beyond the planned ones
    // for the parameters to settle, and how far the halves of its last stage still differed
    // (the largest difference of a parameter's means, in phase-1 standard errors).
    EstimationMethod method = EstimationMethod::stochastic_approximation;
    double block_steps = 0.0;
    int32_t settling_stages = 0;
    double last_drift = 0.0;
};

// Whether the run named the model degenerate: it stopped, and not as a path gone astray.
inline bool named_degenerate(const EstimationRun& run) { return run.degenerate && !run.astray; }

}  // namespace vexa
