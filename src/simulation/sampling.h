#pragma once
// Sampling from a chain at fixed parameters: the proposal loop of simulation and goodness of
// fit. Samples fall at the proposals h, 2h, 3h, ... (h the thinning interval, compared with the
// proposal number for exact equality, so a fractional h never samples); the caller is called
// at each with the proposal number and the acceptances since the last sample.

#include <cmath>
#include <cstdint>

#include "base/progress.h"
#include "sampler/steps.h"

namespace vexa {

struct SamplingPlan {
    double proposals = 0.0;  // T: sampler steps after the burn-in
    double interval = 0.0;   // h: a sample every h proposals
};

// The number of samples the plan keeps (0 for an interval below 1 or not whole).
double planned_samples(const SamplingPlan& plan);

// Runs T proposals, calling on_sample(i, accepted_since_last) at the sampling points, printing
// each sampling point and the acceptances at the end. Returns the total accepted at sampling
// points.
template <class Store, class OnSample>
double run_proposals(Chain<Store>& chain, const double* parameters, const SamplingPlan& plan,
                     const Progress& progress, OnSample&& on_sample) {
    double accepted_interval = 0.0;
    double accepted_total = 0.0;
    double next_sample = plan.interval;
    bool printed = false;
    ProgressBar bar(progress, "sampling", plan.proposals);
    uint32_t tick = 0;
    for (double i = 1.0; i < plan.proposals + 1.0; i += 1.0) {
        accepted_interval += step(chain, parameters);
        if ((++tick & progress_tick_mask) == 0) bar.update(i);
        if (i == next_sample) {
            progress.say("%.0f\t", i);
            printed = true;
            on_sample(i, accepted_interval);
            accepted_total += accepted_interval;
            accepted_interval = 0.0;
            next_sample += plan.interval;
        }
    }
    if (printed) progress.say("\n");
    progress.say("Accepted %.0f changes.\n", accepted_total);
    return accepted_total;
}

}  // namespace vexa
