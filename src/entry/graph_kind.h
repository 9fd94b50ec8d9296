#pragma once
// Graphs as a run reads or draws them, for both graph stores.

#include <string>

#include "base/matrix_text.h"
#include "entry/run_context.h"
#include "network/graph.h"
#include "network/sparse_graph.h"

namespace vexa {

template <class Store>
struct KindTraits;

// The same for both graph stores, G = Graph (dense) or SparseGraph.
template <class G>
struct GraphTraits {
    static G read(const std::string& path, int n, MatrixNotes* notes = nullptr,
                  const ReadProgress* progress = nullptr);
    // The random start of a simulation: trunc(n(n-1) x density x 0.5) edges.
    static G random_start(RunContext& context);
};

template <>
struct KindTraits<Graph> : GraphTraits<Graph> {};
template <>
struct KindTraits<SparseGraph> : GraphTraits<SparseGraph> {};

// Whether a run on a network of this size takes the sparse store (see StoreChoice).
bool sparse_store_chosen(StoreChoice choice, int node_count, NetworkKind kind = NetworkKind::graph);

// Runs the task of the context's run file on a graph.
void run_graph_task(RunContext& context);

}  // namespace vexa
