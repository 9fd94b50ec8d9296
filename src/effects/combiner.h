#pragma once
// The totals pass and the change-statistics combiner, written once for every store type.
//
// Each store type provides two hooks, found by overload: prepare_totals(store, workspace)
// counts what several terms read (the clique census of a graph) before the totals, and
// prepare_change(store, workspace, i, j) does the same for one proposal (the cliques that
// adding {i,j} creates). Stores without such shared counts give empty hooks.

#include <algorithm>
#include <cstddef>
#include <vector>

#include "effects/term.h"

namespace vexa {

// Sizes the workspace for the terms: the largest clique order any of them reads.
template <class Store>
void prepare_workspace(Workspace& workspace, const std::vector<Term<Store>>& terms) {
    int32_t depth = 0;
    for (const Term<Store>& term : terms) depth = std::max<int32_t>(depth, term.clique_order);
    workspace.clique_depth = depth;
    workspace.clique_changes.assign(static_cast<size_t>(depth), 0.0);
    workspace.clique_counts.assign(static_cast<size_t>(depth), 0.0);
}

// Fills statistics (one entry per slot, already sized) with every term's total.
template <class Store>
void compute_totals(const Store& store, const std::vector<Term<Store>>& terms, Workspace& workspace,
                    std::vector<double>& statistics) {
    prepare_totals(store, workspace);
    for (const Term<Store>& term : terms) {
        statistics[static_cast<size_t>(term.slot)] = term.total(store, term, workspace);
    }
}

// Writes every term's change for (i, j) at its slot of `changes` and returns the sum of
// parameter x change over the terms, where a parameter of exactly 0 adds nothing (so an
// infinite or undefined change cannot spoil the sum). Terms the chain does not carry write 0
// and add nothing. Allocates nothing.
template <class Store>
double change_statistics(const Store& store, const std::vector<Term<Store>>& terms,
                         Workspace& workspace, const double* parameters, double* changes, int i,
                         int j, int added) {
    prepare_change(store, workspace, i, j);
    double sum = 0.0;
    for (const Term<Store>& term : terms) {
        const size_t slot = static_cast<size_t>(term.slot);
        if (!term.carried) {
            changes[slot] = 0.0;
            continue;
        }
        const double change = term.change(store, term, workspace, i, j, added);
        changes[slot] = change;
        const double parameter = parameters[slot];
        if (parameter != 0.0) sum += parameter * change;
    }
    return sum;
}

}  // namespace vexa
