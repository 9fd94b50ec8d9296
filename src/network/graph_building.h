#pragma once
// What both graph stores (dense and sparse) do alike on top of their own add_edge,
// update_shared_partners and has_edge: read a matrix file, draw a random start, give the
// density. Included by the two stores' sources only.

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "base/matrix_text.h"
#include "base/progress.h"
#include "base/tie_list_file.h"
#include "numeric/rng.h"

namespace vexa::graph_building {

// Whether a store is filled at once from a reader's ties (fill_from_ties, recount_bookkeeping)
// instead of tie by tie: the sparse one, whose tie-by-tie counting scatters its updates over
// lists and tables of hundreds of megabytes.
template <class G>
concept FilledAtOnce = requires(G& g, std::span<const std::pair<int32_t, int32_t>> ties) {
    fill_from_ties(g, ties, nullptr);
    recount_bookkeeping(g, nullptr);
};

// Adds the ties of an n x n matrix file to an empty store G: a value of exactly 1 above the
// diagonal is an edge. Notes cells other than 0 and 1, pairs whose two cells disagree, and the
// pairs not observed ("NA" or "." above the diagonal). A file that lists its ties instead adds
// every tie of value 1 as an edge, and notes the pairs of its *Missing section. `progress` (may be
// null) hears the bytes read and the nodes counted.
template <class G>
void read_ties(G& g, const std::string& path, int n, MatrixNotes* notes,
               const ReadProgress* progress) {
    MatrixNotes seen;
    const auto add = [&g](int a, int b) {
        if (has_edge(g, a, b)) return;
        add_edge(g, a, b);
        if constexpr (!FilledAtOnce<G>) update_shared_partners(g, a, b, 1);
    };
    const WorkDone* bytes = progress != nullptr ? &progress->bytes : nullptr;
    const WorkDone* nodes = progress != nullptr ? &progress->nodes : nullptr;
    if (is_tie_list_file(path)) {
        // Every listed tie is an edge, whichever way it is listed.
        std::vector<std::pair<int32_t, int32_t>> ties;
        read_tie_list_file(
            path, "network", n,
            [&](int a, int b, double value, bool) {
                if (missing_cell(value)) {
                    seen.missing.push_back(missing_key(std::min(a, b), std::max(a, b)));
                    return;
                }
                note_cell(seen, a, b, value);
                if (value != 1.0) return;
                if constexpr (FilledAtOnce<G>) {
                    ties.emplace_back(a, b);
                } else {
                    add(a, b);
                }
            },
            bytes);
        if constexpr (FilledAtOnce<G>) fill_from_ties(g, ties, nodes);
    } else {
        read_matrix_file(
            path, "network", n,
            [&](int a, int b, double value) {
                // A graph's pair is what its upper cell says.
                if (missing_cell(value)) {
                    if (a < b) seen.missing.push_back(missing_key(a, b));
                    return;
                }
                note_cell(seen, a, b, value);
                if (a < b && value == 1.0) add(a, b);
                // The upper cell of this pair was read a row earlier.
                if (a > b && (value == 1.0) != has_edge(g, b, a)) note_asymmetry(seen, b, a);
            },
            bytes, true);
        if constexpr (FilledAtOnce<G>) recount_bookkeeping(g, nodes);
    }
    if (notes != nullptr) *notes = seen;
}

// Throws SettingError when n nodes cannot hold edge_target edges.
inline void check_edge_target(int n, int64_t edge_target) {
    const int64_t dyads = int64_t{n} * (n - 1) / 2;
    if (edge_target < 0 || edge_target > dyads) {
        throw SettingError(format_message(
            "vexa: a random start with %lld edges is impossible: %d nodes have only %lld dyads",
            static_cast<long long>(edge_target), n, static_cast<long long>(dyads)));
    }
}

// Adds uniformly drawn pairs to an empty store until it holds edge_target edges (the
// generator is reseeded first).
template <class G>
void add_random_ties(G& g, int n, int64_t edge_target, Rng& rng, SeedSource& seeds) {
    seeds.reseed(rng);
    while (g.edge_count < edge_target) {
        const int a = rng.node(n);
        const int b = rng.node(n);
        if (a != b && !has_edge(g, a, b)) {
            add_edge(g, a, b);
            update_shared_partners(g, a, b, 1);
        }
    }
}

// 2E / (n(n-1)); 0 for fewer than two nodes.
template <class G>
double density_of(const G& g) {
    if (g.node_count < 2) return 0.0;
    const double n = g.node_count;
    return 2.0 * g.edge_count / (n * (n - 1.0));
}

}  // namespace vexa::graph_building
