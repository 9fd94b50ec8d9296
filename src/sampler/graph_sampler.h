#pragma once
// The graph sampler: Metropolis-Hastings chains over undirected networks. A step proposes a
// toggle of one dyad (or, in the edge-preserving variant, moving one edge to a non-edge),
// asks the change-statistics combiner for the weighted change, accepts with probability
// min(1, exp(change)), and on acceptance updates the store's bookkeeping and its statistics
// vector in place. Nothing is allocated or recounted in a step.

#include <cstdint>
#include <vector>

#include "effects/graph_catalogue.h"
#include "network/graph.h"
#include "numeric/rng.h"

namespace vexa {

struct GraphSampler {
    const std::vector<Term>* terms = nullptr;  // the model's included effects
    int32_t statistic_count = 0;               // length of the statistics and parameter vectors
    int32_t max_degree = 9999;                 // no tie is added at a node of this degree or more
    bool fixed_edges = false;                  // the edge-preserving step instead of the toggle
    bool use_mask = false;                     // only dyads that are ties of `mask` may change
    const Graph* mask = nullptr;
    // Work vectors of change statistics, one entry per statistic, allocated once.
    std::vector<double> change_vector;
    std::vector<double> removal_changes;
    std::vector<double> addition_changes;
};

// A sampler over the terms; mask may be null. `fixed_edges`
// follows the run file's sampler variant (1 selects the edge-preserving step).
GraphSampler make_graph_sampler(const std::vector<Term>& terms, int32_t statistic_count,
                                int32_t max_degree, bool fixed_edges, const Graph* mask);

// Throws SettingError when the chain could never find a proposal on this graph: fewer than
// two nodes, a mask without ties, or an edge-preserving chain whose allowed dyads are all ties
// or all non-ties. Call once before running steps on a graph.
void check_proposals_possible(const Graph& graph, const GraphSampler& sampler);

// One single-dyad step; 1 when accepted.
int toggle_step(Graph& graph, GraphSampler& sampler, const double* parameters, Rng& rng);
// One edge-preserving step; 1 when accepted.
int swap_step(Graph& graph, GraphSampler& sampler, const double* parameters, Rng& rng);
// The step the sampler's variant selects.
inline int sampler_step(Graph& graph, GraphSampler& sampler, const double* parameters, Rng& rng) {
    return sampler.fixed_edges ? swap_step(graph, sampler, parameters, rng)
                               : toggle_step(graph, sampler, parameters, rng);
}

// Reseeds the generator, then runs ceil(step_count) steps (none for 0 or less).
void run_sampler(Graph& graph, GraphSampler& sampler, const double* parameters, double step_count,
                 Rng& rng, SeedSource& seeds);

}  // namespace vexa
