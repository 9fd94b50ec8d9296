#pragma once
// Hand-drawn graphs for the unit tests.

#include <initializer_list>
#include <utility>

#include "network/graph.h"

namespace vexa::testing {

// A store of n nodes holding the listed ties, added one by one with their bookkeeping.
inline Graph graph_of(int n, std::initializer_list<std::pair<int, int>> ties) {
    Graph g = create_graph(n);
    for (const auto& [i, j] : ties) {
        add_edge(g, i, j);
        update_shared_partners(g, i, j, 1);
    }
    return g;
}

}  // namespace vexa::testing
