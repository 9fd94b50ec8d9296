#pragma once
// Digraphs as a run reads or draws them, for both digraph stores.

#include <string>

#include "base/matrix_text.h"
#include "entry/run_context.h"
#include "network/digraph.h"
#include "network/sparse_digraph.h"

namespace vexa {

template <class Store>
struct KindTraits;

// The same for both digraph stores, D = Digraph (dense) or SparseDigraph.
template <class D>
struct DigraphTraits {
    static D read(const std::string& path, int n, MatrixNotes* notes = nullptr,
                  const ReadProgress* progress = nullptr);
    // The random start of a simulation: trunc(n(n-1) x density) arcs.
    static D random_start(RunContext& context);
};

template <>
struct KindTraits<Digraph> : DigraphTraits<Digraph> {};
template <>
struct KindTraits<SparseDigraph> : DigraphTraits<SparseDigraph> {};

// Runs the task of the context's run file on a digraph.
void run_digraph_task(RunContext& context);

}  // namespace vexa
