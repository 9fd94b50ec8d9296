#include "simulation/sampling.h"

namespace vexa {

double planned_samples(const SamplingPlan& plan) {
    if (!(plan.interval >= 1.0) || plan.interval != std::floor(plan.interval)) return 0.0;
    return std::floor(plan.proposals / plan.interval);
}

}  // namespace vexa
