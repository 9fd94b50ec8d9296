#pragma once
// What both digraph stores (dense and sparse) do alike on top of their own add_arc,
// update_two_paths and has_arc: read a matrix file, draw a random start, give the density.
// Included by the two stores' sources only.

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

namespace vexa::digraph_building {

// Whether a store is filled at once from a reader's arcs (fill_from_ties, recount_bookkeeping)
// instead of arc by arc: the sparse one, whose arc-by-arc counting scatters its updates over
// lists and tables of hundreds of megabytes.
template <class D>
concept FilledAtOnce = requires(D& d, std::span<const std::pair<int32_t, int32_t>> arcs) {
    fill_from_ties(d, arcs, nullptr);
    recount_bookkeeping(d, nullptr);
};

// Adds the arcs of an n x n matrix file to an empty store D: row i holds the arcs sent by node
// i, a value of exactly 1 off the diagonal is an arc. Notes cells other than 0 and 1, and the
// arcs not observed ("NA" or "."). A file that lists its ties instead adds every tie of value
// 1, both ways for a line under *Edges, and notes the pairs of its *Missing section.
// `progress` (may be null) hears the bytes read and the nodes counted.
template <class D>
void read_arcs(D& d, const std::string& path, int n, MatrixNotes* notes,
               const ReadProgress* progress) {
    MatrixNotes seen;
    const auto arc = [&](int a, int b, double value) {
        if (a != b && value == 1.0 && !d.has_arc(a, b)) {
            add_arc(d, a, b);
            if constexpr (!FilledAtOnce<D>) update_two_paths(d, a, b, 1);
        }
    };
    const WorkDone* bytes = progress != nullptr ? &progress->bytes : nullptr;
    const WorkDone* nodes = progress != nullptr ? &progress->nodes : nullptr;
    if (is_tie_list_file(path)) {
        std::vector<std::pair<int32_t, int32_t>> arcs;
        const auto take = [&](int a, int b, double value) {
            if constexpr (FilledAtOnce<D>) {
                if (value == 1.0) arcs.emplace_back(a, b);
            } else {
                arc(a, b, value);
            }
        };
        read_tie_list_file(
            path, "network", n,
            [&](int a, int b, double value, bool both) {
                if (missing_cell(value)) {
                    seen.missing.push_back(missing_key(a, b));
                    if (both) seen.missing.push_back(missing_key(b, a));
                    return;
                }
                note_cell(seen, a, b, value);
                take(a, b, value);
                if (both) take(b, a, value);
            },
            bytes);
        if constexpr (FilledAtOnce<D>) fill_from_ties(d, arcs, nodes);
    } else {
        read_matrix_file(
            path, "network", n,
            [&](int a, int b, double value) {
                if (missing_cell(value)) {
                    if (a != b) seen.missing.push_back(missing_key(a, b));
                    return;
                }
                note_cell(seen, a, b, value);
                arc(a, b, value);
            },
            bytes, true);
        if constexpr (FilledAtOnce<D>) recount_bookkeeping(d, nodes);
    }
    if (notes != nullptr) *notes = seen;
}

// The counts an arc i->j changes: the arc and mutual counts, the mutual, out- and in-degrees
// and their histograms; called once the store's own adjacency holds the arc (delta 1) or no
// longer holds it (delta -1).
template <class D>
void count_arc(D& d, int i, int j, int32_t delta) {
    const auto at = [](int v) { return static_cast<size_t>(v); };
    d.arc_count += delta;
    if (d.has_arc(j, i)) {
        d.mutual_count += delta;
        d.mutual_degree_values[at(i)] += delta;
        d.mutual_degree_values[at(j)] += delta;
    }
    const int32_t out = d.out_degree_values[at(i)] += delta;
    d.out_degree_histogram[at(out - delta)] -= 1;
    d.out_degree_histogram[at(out)] += 1;
    const int32_t in = d.in_degree_values[at(j)] += delta;
    d.in_degree_histogram[at(in - delta)] -= 1;
    d.in_degree_histogram[at(in)] += 1;
}

// Throws SettingError when n nodes cannot hold arc_target arcs.
inline void check_arc_target(int n, int64_t arc_target) {
    const int64_t pairs = int64_t{n} * (int64_t{n} - 1);
    if (arc_target < 0 || arc_target > pairs) {
        throw SettingError(
            format_message("vexa: a random start with %lld arcs is impossible: %d nodes have only "
                           "%lld ordered pairs",
                           static_cast<long long>(arc_target), n,
                           static_cast<long long>(std::max<int64_t>(pairs, 0))));
    }
}

// Adds uniformly drawn ordered pairs (sender, then receiver) to an empty store until it holds
// arc_target arcs (the generator is reseeded first).
template <class D>
void add_random_arcs(D& d, int n, int64_t arc_target, Rng& rng, SeedSource& seeds) {
    seeds.reseed(rng);
    while (d.arc_count < arc_target) {
        const int i = rng.node(n);
        const int j = rng.node(n);
        if (i != j && !d.has_arc(i, j)) {
            add_arc(d, i, j);
            update_two_paths(d, i, j, 1);
        }
    }
}

// Arcs / n / (n-1); 0 for fewer than two nodes.
template <class D>
double density_of(const D& d) {
    if (d.node_count < 2) return 0.0;
    const double n = d.node_count;
    return d.arc_count / n / (n - 1.0);
}

}  // namespace vexa::digraph_building
