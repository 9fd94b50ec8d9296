#pragma once
// What the suites that run over every network kind need of a kind: random networks as plain
// adjacency matrices, the brute-force value of any catalogue row and a store built from a
// matrix, for each of the four stores; and the checks and helpers written once for every store.

#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "effects/catalogue.h"
#include "effects/combiner.h"
#include "effects/graph/graph_catalogue.h"
#include "model/model.h"
#include "model/terms.h"
#include "network/digraph.h"
#include "network/graph.h"
#include "network/sparse_digraph.h"
#include "network/sparse_graph.h"
#include "numeric/rng.h"
#include "support/brute_force.h"
#include "support/digraph_brute_force.h"

namespace vexa::testing {

// Adds the tie when absent, removes it when present, with the bookkeeping of either.
template <class Store>
void toggle(Store& store, int i, int j) {
    const bool adding = !has_tie(store, i, j);
    adding ? add_tie(store, i, j) : remove_tie(store, i, j);
    update_after_toggle(store, i, j, adding ? 1 : 0);
}

// Every array of two dense stores but the neighbour lists, whose order is free
// (check_bookkeeping compares them with the adjacency as sets).
inline bool same_store(const Graph& a, const Graph& b) {
    return a.edge_count == b.edge_count && a.adjacency == b.adjacency &&
           a.shared_partners == b.shared_partners && a.degree == b.degree &&
           a.degree_histogram == b.degree_histogram &&
           a.shared_partner_histogram == b.shared_partner_histogram && a.triangles == b.triangles &&
           a.triangle_histogram == b.triangle_histogram;
}
inline bool same_store(const Digraph& a, const Digraph& b) {
    return a.node_count == b.node_count && a.arc_count == b.arc_count &&
           a.mutual_count == b.mutual_count && a.out_rows == b.out_rows && a.in_rows == b.in_rows &&
           a.in_degree_values == b.in_degree_values && a.out_degree_values == b.out_degree_values &&
           a.mutual_degree_values == b.mutual_degree_values &&
           a.in_degree_histogram == b.in_degree_histogram &&
           a.out_degree_histogram == b.out_degree_histogram &&
           a.common_receivers == b.common_receivers && a.common_senders == b.common_senders &&
           a.two_paths == b.two_paths;
}

// A store of n nodes holding `ties` ties drawn with the given seed.
template <class Store>
Store random_store(int n, int ties, uint32_t seed) {
    Rng rng;
    SeedSource seeds{.fixed = true, .base = seed};
    if constexpr (Store::kind == NetworkKind::graph) {
        return random_graph(n, ties, rng, seeds);
    } else {
        return random_digraph_by_count(n, ties, rng, seeds);
    }
}

// An empty store of n nodes.
template <class Store>
Store empty_store(int n) {
    if constexpr (std::is_same_v<Store, Graph>) return create_graph(n);
    if constexpr (std::is_same_v<Store, SparseGraph>) return create_sparse_graph(n);
    if constexpr (std::is_same_v<Store, Digraph>) return create_digraph(n);
    if constexpr (std::is_same_v<Store, SparseDigraph>) return create_sparse_digraph(n);
}

// The random networks and recounts of a kind, shared by its two stores.
template <NetworkKind kind>
struct KindOracle;

template <>
struct KindOracle<NetworkKind::graph> {
    using Matrix = AdjacencyMatrix;
    using Counts = BruteCounts;

    // Seeded random graphs of several densities (fewer dense ones at 30 nodes, which would hold
    // too many cliques for the recount), each with a name for failure messages.
    static std::vector<std::pair<Matrix, std::string>> networks(int n) {
        std::vector<double> densities{0.1, 0.3, 0.6, 0.9};
        if (n <= 2) densities = {0.0, 1.0};
        if (n >= 30) densities = {0.1, 0.3, 0.6};
        std::vector<std::pair<Matrix, std::string>> out;
        for (const double density : densities) {
            for (const uint32_t seed : {11u, 29u}) {
                out.emplace_back(random_matrix(n, density, seed + static_cast<uint32_t>(n)),
                                 "n " + std::to_string(n) + ", density " + std::to_string(density) +
                                     ", seed " + std::to_string(seed));
            }
        }
        return out;
    }
    static Counts count(const Matrix& matrix) { return brute_force_counts(matrix); }
    static double value(const Counts& counts, int row, double lambda) {
        return brute_force_value(counts, static_cast<GraphEffect>(row), lambda);
    }
};

template <>
struct KindOracle<NetworkKind::digraph> {
    using Matrix = ArcMatrix;
    using Counts = DigraphCounts;

    // Seeded random digraphs from empty to complete, with no mutual dyads to all mutual.
    static std::vector<std::pair<Matrix, std::string>> networks(int n) {
        std::vector<std::pair<double, double>> kinds{
            {0.1, 0.0}, {0.3, 0.5}, {0.3, 1.0}, {0.6, 0.2}, {0.9, 0.8}};
        if (n <= 3) kinds = {{0.0, 0.0}, {0.5, 0.5}, {1.0, 0.0}, {1.0, 1.0}};
        std::vector<std::pair<Matrix, std::string>> out;
        for (const auto& [density, reciprocity] : kinds) {
            const auto seed = static_cast<uint32_t>(n * 131 + static_cast<int>(density * 100) * 7 +
                                                    static_cast<int>(reciprocity * 10));
            out.emplace_back(random_arc_matrix(n, density, reciprocity, seed),
                             "n " + std::to_string(n) + ", density " + std::to_string(density) +
                                 ", reciprocity " + std::to_string(reciprocity));
        }
        return out;
    }
    static Counts count(const Matrix& matrix) { return digraph_counts(matrix); }
    static double value(const Counts& counts, int row, double lambda) {
        return digraph_value(counts, static_cast<DigraphEffect>(row), lambda);
    }
};

// A store built from a matrix tie by tie, row by row (so that the two stores of a kind list
// their neighbours in the same order), and the matrix read back from a store.
template <class Store>
struct KindFixture : KindOracle<Store::kind> {
    using Matrix = typename KindOracle<Store::kind>::Matrix;
    static Store build(const Matrix& matrix) {
        Store store = empty_store<Store>(matrix.n);
        for (int a = 0; a < matrix.n; ++a) {
            for (int b = Store::kind == NetworkKind::graph ? a + 1 : 0; b < matrix.n; ++b) {
                if (a != b && matrix(a, b)) toggle(store, a, b);
            }
        }
        return store;
    }
    static Matrix adjacency(const Store& store) {
        Matrix m(store.node_count);
        for (int a = 0; a < m.n; ++a) {
            for (int b = 0; b < m.n; ++b) {
                if (a != b && has_tie(store, a, b)) m.set(a, b, true);
            }
        }
        return m;
    }
};

// A model of the kind including only `row` (at slot 0) with the given lambda.
inline Model single_effect_model(NetworkKind kind, int row, float lambda) {
    Model model = empty_model(kind);
    model.structural[static_cast<size_t>(row)].slot = 0;
    model.structural[static_cast<size_t>(row)].lambda = lambda;
    model.structural_included = 1;
    return model;
}

// A model including the listed rows, slots in the order given, lambdas as the rows' defaults.
inline Model model_of(NetworkKind kind, const std::vector<int>& rows) {
    Model model = empty_model(kind);
    for (const int row : rows) {
        model.structural[static_cast<size_t>(row)].slot = model.structural_included++;
        model.structural[static_cast<size_t>(row)].lambda =
            structural_catalogue(kind).rows[static_cast<size_t>(row)].lambda_default;
    }
    return model;
}

// `model` with one effect of one attribute included at the next slot after its structural
// effects: catalogue row `row` of the attribute kind `which`, the attribute's values (per node;
// a covariate n x n) and missing flags (empty: none missing).
inline Model with_attribute_effect(Model model, AttributeKind which, int row,
                                   const std::vector<double>& values,
                                   std::vector<uint8_t> missing = {}) {
    if (missing.empty()) missing.assign(values.size(), 0);
    AttributeSection& section = model.section(which);
    const size_t rows = attribute_catalogue(model.kind, which).rows.size();
    section.given = true;
    section.count = 1;
    section.names = {"a"};
    section.data = {values};
    section.missing = {std::move(missing)};
    section.included.assign(rows, {0});
    section.value.assign(rows, {0.0});
    section.slot.assign(rows, {-1});
    section.included[static_cast<size_t>(row)][0] = 1;
    section.slot[static_cast<size_t>(row)][0] = model.structural_included;
    section.included_count = 1;
    model.attributes_given = true;
    return model;
}

// The totals of every term of a store, by slot.
template <class Store>
std::vector<double> totals_of(const Store& store, const std::vector<Term<Store>>& terms,
                              size_t count) {
    std::vector<double> statistics(count, 0.0);
    Workspace workspace;
    prepare_workspace(workspace, terms);
    compute_totals(store, terms, workspace, statistics);
    return statistics;
}

// Calls fn(i, j) twice for every dyad of an n-node network of the store's kind: a caller that
// toggles the dyad each time sees it in both states and leaves the network as it was.
template <class Store, class Fn>
void each_dyad_twice(int n, Fn&& fn) {
    for (int i = 0; i < n; ++i) {
        for (int j = Store::kind == NetworkKind::graph ? i + 1 : 0; j < n; ++j) {
            for (int pass = 0; pass < 2 && i != j; ++pass) fn(i, j);
        }
    }
}

// Toggles (i, j) as a chain does (`added` 1 to add, 0 to remove): the change statistic of the
// one term, weighed with the tie absent from the adjacency and the degrees, then the store
// brought up to date. Returns the change.
template <class Store>
double toggle_with_change(Store& store, const std::vector<Term<Store>>& terms, Workspace& workspace,
                          int i, int j, int added) {
    const double parameter = 1.0;
    double change = -12345.0;
    if (added == 0) remove_tie(store, i, j);
    change_statistics(store, terms, workspace, &parameter, &change, i, j, added);
    if (added == 1) add_tie(store, i, j);
    update_after_toggle(store, i, j, added);
    return change;
}

// For every dyad, first in the state the store holds it and then in the other, so that the
// network ends as it began: the change statistic of the one term against the difference of
// the totals with and without the tie. The addition state lacks the tie everywhere; the removal
// state lacks it in the adjacency and degrees while the pair counts still count it. `expect`
// compares the change with the difference and names the step on failure.
template <class Store, class Expect>
void check_changes_against_totals(Store& store, const std::vector<Term<Store>>& terms,
                                  Expect&& expect) {
    Workspace workspace;
    prepare_workspace(workspace, terms);
    each_dyad_twice<Store>(store.node_count, [&](int i, int j) {
        const int added = has_tie(store, i, j) ? 0 : 1;
        const double before = totals_of(store, terms, 1)[0];
        const double change = toggle_with_change(store, terms, workspace, i, j, added);
        const double after = totals_of(store, terms, 1)[0];
        expect(
            change, added == 1 ? after - before : before - after,
            (added == 1 ? "adding " : "removing ") + std::to_string(i) + "," + std::to_string(j));
    });
}

// The change of adding tie (i, j) (lifted first when present), the store left as it was.
template <class Store>
double change_of_adding(Store& store, const std::vector<Term<Store>>& terms, int i, int j) {
    const bool present = has_tie(store, i, j);
    if (present) toggle(store, i, j);
    Workspace workspace;
    prepare_workspace(workspace, terms);
    const double parameter = 1.0;
    double change = 0.0;
    change_statistics(store, terms, workspace, &parameter, &change, i, j, 1);
    if (present) toggle(store, i, j);
    return change;
}

// What a term says it reads, held to the truth: a term that reads nothing beyond its own tie
// gives every tie the same change on the network and on the network with every other dyad
// flipped; one that reads the reverse tie, the same with the reverse tie kept too. Terms that
// read other ties are not checked, nor networks above 12 nodes (the check costs n^4).
template <class Store>
void check_reads_claim(const Store& store, const std::vector<Term<Store>>& terms) {
    const TieReads reads = terms.at(0).reads;
    const int n = store.node_count;
    if (reads == TieReads::network || n > 12) return;
    const bool graph = Store::kind == NetworkKind::graph;
    Store same = store;  // change_of_adding leaves it as it found it
    for (int i = 0; i < n; ++i) {
        for (int j = graph ? i + 1 : 0; j < n; ++j) {
            if (i == j) continue;
            Store flipped = store;
            for (int a = 0; a < n; ++a) {
                for (int b = graph ? a + 1 : 0; b < n; ++b) {
                    const bool kept =
                        (a == i && b == j) || (reads == TieReads::reverse && a == j && b == i);
                    if (a != b && !kept) toggle(flipped, a, b);
                }
            }
            EXPECT_EQ(change_of_adding(same, terms, i, j), change_of_adding(flipped, terms, i, j))
                << "tie " << i << "," << j << " reads more than its row says";
        }
    }
}

// What a term says it needs of the store's counts, held to the truth: a store that keeps only
// that gives the full store's totals and changes to the last bit, in the addition and the
// removal state of every dyad and after toggling each, and keeps what it keeps consistent.
// Networks above 12 nodes are not checked (the check costs n^4 and adds nothing the smaller
// networks, empty to complete, do not already reach).
template <class Store>
void check_needs_claim(const Store& store, const std::vector<Term<Store>>& terms) {
    if (store.node_count > 12) return;
    Store full = store;
    Store trimmed = store;
    keep_only(trimmed, needs_of(terms));
    Workspace workspace;
    prepare_workspace(workspace, terms);
    EXPECT_EQ(totals_of(trimmed, terms, 1), totals_of(full, terms, 1)) << "totals when trimmed";
    each_dyad_twice<Store>(store.node_count, [&](int i, int j) {
        const int added = has_tie(full, i, j) ? 0 : 1;
        EXPECT_EQ(toggle_with_change(trimmed, terms, workspace, i, j, added),
                  toggle_with_change(full, terms, workspace, i, j, added))
            << "change of " << i << "," << j << " when trimmed";
        EXPECT_EQ(totals_of(trimmed, terms, 1), totals_of(full, terms, 1))
            << "totals after toggling " << i << "," << j << " when trimmed";
    });
    EXPECT_EQ(check_bookkeeping(trimmed), "");
}

}  // namespace vexa::testing
