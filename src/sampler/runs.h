#pragma once
// Running a chain: so many steps, a burn-in from a fresh seed, and steps counted out to an
// observer as they are taken, in pieces large enough that the counting costs nothing.

#include "numeric/rng.h"
#include "sampler/observer.h"
#include "sampler/steps.h"

namespace vexa {

// Runs ceil(steps) steps (none for 0 or less): a counter starts at 0.0 and a step is taken
// while it is below `steps`. Returns the number of accepted steps.
template <class Store>
double run_steps(Chain<Store>& chain, const double* parameters, double steps) {
    double accepted = 0.0;
    for (double k = 0.0; k < steps; k += 1.0) accepted += step(chain, parameters);
    return accepted;
}

// Reseeds the generator, then runs the steps; returns the number accepted.
template <class Store>
double run_sampler(Chain<Store>& chain, const double* parameters, double steps, SeedSource& seeds) {
    seeds.reseed(*chain.rng);
    return run_steps(chain, parameters, steps);
}

// Loops of single steps tell their count every so many steps.
inline constexpr uint32_t progress_tick_mask = 4095;

// Runs the steps of `chain` in pieces, counting each out: the same steps as one run_steps
// call.
template <class Store>
void run_steps_counted(Chain<Store>& chain, const double* parameters, double steps,
                       StepCount& count) {
    constexpr double piece = 65536.0;
    double done = 0.0;
    while (steps - done > piece) {
        run_steps(chain, parameters, piece);
        done += piece;
        count.advance(piece);
    }
    run_steps(chain, parameters, steps - done);
    count.advance(steps - done);
}

// A burn-in announced as `stage` (whose `steps` it runs): reseeds the generator, then runs
// the steps, telling the observer.
template <class Store>
void run_burn_in(Chain<Store>& chain, const double* parameters, SeedSource& seeds,
                 const Observer& observer, const StageStarted& stage) {
    seeds.reseed(*chain.rng);
    observer.tell(stage);
    StepCount count{&observer, stage.stage, stage.steps};
    run_steps_counted(chain, parameters, stage.steps, count);
}

// A plain burn-in of `steps` steps.
template <class Store>
void run_burn_in(Chain<Store>& chain, const double* parameters, double steps, SeedSource& seeds,
                 const Observer& observer) {
    run_burn_in(chain, parameters, seeds, observer,
                StageStarted{.stage = Stage::burn_in, .steps = steps});
}

}  // namespace vexa
