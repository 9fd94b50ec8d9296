#pragma once
// The clique census and the per-proposal clique changes of a graph, kept in the chain's
// workspace up to the largest clique size an included effect reads, and the hooks through
// which the totals pass and the combiner fill them.

#include "base/compiler.h"
#include "effects/term.h"
#include "network/graph.h"
#include "network/sparse_graph.h"

namespace vexa {

// clique_counts[k-1] = number of k-cliques for k = 1 .. the workspace's clique depth.
void count_cliques(const Graph& graph, Workspace& workspace);
// clique_changes[k-1] = k-cliques that adding {i,j} would create, for k = 1 .. the depth.
void fill_clique_changes(const Graph& graph, Workspace& workspace, int i, int j);

// The combiner's hooks for the graph store.
void prepare_totals(const Graph& graph, Workspace& workspace);
inline void prepare_change(const Graph& graph, Workspace& workspace, int i, int j) {
    // Most terms read the pair's shared partners, far away in an n x n matrix: ask for it now.
    if (!graph.shared_partners.empty()) prefetch(graph.partners_row(i) + j);
    if (workspace.clique_depth >= 1) fill_clique_changes(graph, workspace, i, j);
}

// The same for the sparse store.
void count_cliques(const SparseGraph& graph, Workspace& workspace);
void fill_clique_changes(const SparseGraph& graph, Workspace& workspace, int i, int j);
void prepare_totals(const SparseGraph& graph, Workspace& workspace);
inline void prepare_change(const SparseGraph& graph, Workspace& workspace, int i, int j) {
    // The partner filters of both ends, which most terms read first.
    prefetch_dyad(graph, i, j);
    if (workspace.clique_depth >= 1) fill_clique_changes(graph, workspace, i, j);
}

// Entry k of a census or of the clique changes (1-based); 0 where the workspace does not keep it.
inline double clique_entry(const std::vector<double>& entries, size_t k) {
    return k <= entries.size() ? entries[k - 1] : 0.0;
}

}  // namespace vexa
