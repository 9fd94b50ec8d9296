#pragma once
// Sampling from a chain at fixed parameters: the proposal loop of simulation and goodness of
// fit. Samples fall at the proposals h, 2h, 3h, ... (h the thinning interval, compared with the
// proposal number for exact equality, so a fractional h never samples); the caller is called
// at each with the proposal number and the acceptances since the last sample.

#include <cmath>
#include <cstdint>

#include "sampler/observer.h"
#include "sampler/runs.h"

namespace vexa {

struct SamplingPlan {
    double proposals = 0.0;  // T: sampler steps after the burn-in
    double interval = 0.0;   // h: a sample every h proposals
};

// The number of samples the plan keeps (0 for an interval below 1 or not whole).
double planned_samples(const SamplingPlan& plan);

// Runs T proposals, calling on_sample(i, accepted_since_last) at the sampling points, and
// telling the observer how far it got and, at the end, how many samples it took. Returns the
// total accepted at sampling points.
template <class Store, class OnSample>
double run_proposals(Chain<Store>& chain, const double* parameters, const SamplingPlan& plan,
                     const Observer& observer, OnSample&& on_sample) {
    double accepted_interval = 0.0;
    double accepted_total = 0.0;
    double next_sample = plan.interval;
    double samples = 0.0;
    observer.tell(StageStarted{.stage = Stage::sampling, .steps = plan.proposals});
    StepCount count{&observer, Stage::sampling, plan.proposals};
    uint32_t tick = 0;
    for (double i = 1.0; i < plan.proposals + 1.0; i += 1.0) {
        accepted_interval += step(chain, parameters);
        if ((++tick & progress_tick_mask) == 0) count.reach(i);
        if (i == next_sample) {
            on_sample(i, accepted_interval);
            samples += 1.0;
            accepted_total += accepted_interval;
            accepted_interval = 0.0;
            next_sample += plan.interval;
        }
    }
    const Store* network = chain.store;
    observer.tell(SamplingEnded{Stage::sampling, samples, accepted_total, network});
    return accepted_total;
}

}  // namespace vexa
