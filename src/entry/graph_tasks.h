#pragma once
// The tasks on an undirected network: the common preparation (parameter vector, network,
// start statistics, constraint network) and the simulation, estimation and goodness-of-fit
// branches.

#include "entry/run_context.h"

namespace vexa {

void run_graph_task(RunContext& context);

}  // namespace vexa
