#include "entry/embedding.h"

#include "describe/triad_census.h"

namespace vexa {

namespace {

size_t cell(int i, int j, int n) {
    return static_cast<size_t>(i) * static_cast<size_t>(n) + static_cast<size_t>(j);
}

// Degrees counted from the ties alone, so that the profile does not lean on the store's
// bookkeeping.
template <class Store>
std::vector<int32_t> degree_counts(const Store& store, bool incoming) {
    const int n = store.node_count;
    std::vector<int32_t> counts(static_cast<size_t>(n > 0 ? n : 1), 0);
    for (int v = 0; v < n; ++v) {
        int32_t degree = 0;
        for (int u = 0; u < n; ++u) {
            if (u != v && (incoming ? has_tie(store, u, v) : has_tie(store, v, u))) ++degree;
        }
        ++counts[static_cast<size_t>(degree)];
    }
    return counts;
}

template <class Store>
std::vector<uint8_t> matrix_from(const Store& store) {
    const int n = store.node_count;
    std::vector<uint8_t> matrix(cell(n, 0, n), 0);
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) {
            if (i != j && has_tie(store, i, j)) matrix[cell(i, j, n)] = 1;
        }
    }
    return matrix;
}

}  // namespace

Graph graph_from_matrix(const std::vector<double>& adjacency, int n) {
    Graph g = create_graph(n);
    for (int a = 0; a < n; ++a) {
        for (int b = a + 1; b < n; ++b) {
            if (adjacency[cell(a, b, n)] == 1.0) {
                add_edge(g, a, b);
                update_shared_partners(g, a, b, 1);
            }
        }
    }
    return g;
}

namespace {

// Arc by arc, senders then receivers in order.
template <class D>
void add_matrix_arcs(D& d, const std::vector<double>& adjacency, int n) {
    for (int a = 0; a < n; ++a) {
        for (int b = 0; b < n; ++b) {
            if (a != b && adjacency[cell(a, b, n)] == 1.0) {
                add_arc(d, a, b);
                update_two_paths(d, a, b, 1);
            }
        }
    }
}

template <class D>
NetworkProfile digraph_profile(const D& digraph, const DigraphScratch& scratch) {
    NetworkProfile profile;
    profile.degree = degree_counts(digraph, false);
    profile.in_degree = degree_counts(digraph, true);
    profile.geodesics = scratch.geodesic_counts;
    const TriadCensus census = triad_census(digraph);
    profile.triads.assign(census.counts.begin(), census.counts.end());
    return profile;
}

}  // namespace

Digraph digraph_from_matrix(const std::vector<double>& adjacency, int n) {
    Digraph d = create_digraph(n);
    add_matrix_arcs(d, adjacency, n);
    return d;
}

SparseDigraph sparse_digraph_from_matrix(const std::vector<double>& adjacency, int n) {
    SparseDigraph d = create_sparse_digraph(n);
    add_matrix_arcs(d, adjacency, n);
    return d;
}

SparseGraph sparse_graph_from_matrix(const std::vector<double>& adjacency, int n) {
    SparseGraph g = create_sparse_graph(n);
    for (int a = 0; a < n; ++a) {
        for (int b = a + 1; b < n; ++b) {
            if (adjacency[cell(a, b, n)] == 1.0) {
                add_tie(g, a, b);
                update_after_toggle(g, a, b, 1);
            }
        }
    }
    return g;
}

std::vector<uint8_t> matrix_of(const Graph& graph) { return matrix_from(graph); }
std::vector<uint8_t> matrix_of(const SparseGraph& graph) { return matrix_from(graph); }
std::vector<uint8_t> matrix_of(const Digraph& digraph) { return matrix_from(digraph); }
std::vector<uint8_t> matrix_of(const SparseDigraph& digraph) { return matrix_from(digraph); }

NetworkProfile profile_of(const Graph& graph, const DescribeScratch& scratch) {
    NetworkProfile profile;
    profile.degree = degree_counts(graph, false);
    profile.geodesics = scratch.geodesic_counts;
    return profile;
}

NetworkProfile profile_of(const SparseGraph& graph, const DescribeScratch& scratch) {
    NetworkProfile profile;
    profile.degree = degree_counts(graph, false);
    profile.geodesics = scratch.geodesic_counts;
    return profile;
}

NetworkProfile profile_of(const Digraph& digraph, const DigraphScratch& scratch) {
    return digraph_profile(digraph, scratch);
}

NetworkProfile profile_of(const SparseDigraph& digraph, const DigraphScratch& scratch) {
    return digraph_profile(digraph, scratch);
}

}  // namespace vexa
