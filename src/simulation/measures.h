#pragma once
// The descriptive measures goodness of fit sets beside the model's statistics, each network
// kind its own: for a graph the spread and skew of the degrees and three clustering
// coefficients; for a digraph the spread and skew of the in- and out-degrees, their
// correlation and eight clustering coefficients; for both the geodesic quartiles.

#include <string>
#include <type_traits>
#include <vector>

#include "describe/digraph_describe.h"
#include "describe/graph_describe.h"
#include "simulation/goodness_of_fit.h"

namespace vexa {

// The measures' names, in the order measure() gives their values.
const std::vector<std::string>& measure_names(NetworkKind kind);

// The measures of one network; the geodesic pass leaves its counts in the scratch.
SampleMeasures measure(const Graph& graph, DescribeScratch& scratch);
SampleMeasures measure(const SparseGraph& graph, DescribeScratch& scratch);
SampleMeasures measure(const Digraph& digraph, DigraphScratch& scratch);
SampleMeasures measure(const SparseDigraph& digraph, DigraphScratch& scratch);

// The scratch of a store type's descriptive measures.
template <class Store>
using ScratchOf =
    std::conditional_t<Store::kind == NetworkKind::graph, DescribeScratch, DigraphScratch>;

}  // namespace vexa
