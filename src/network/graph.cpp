#include "network/graph.h"
#include "base/sizes.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "base/errors.h"
#include "base/matrix_text.h"
#include "base/memory.h"
#include "network/graph_building.h"
#include "numeric/rng.h"

namespace vexa {

namespace {

// Moves one count from histogram[old_value] to histogram[new_value].
inline void move_count(std::vector<int32_t>& histogram, int32_t old_value, int32_t new_value) {
    histogram[as_size(new_value)] += 1;
    histogram[as_size(old_value)] -= 1;
}

// Removes v from a neighbour list of `length` entries by moving the last entry into its place.
void forget_neighbour(int32_t* list, int32_t length, int v) {
    for (int32_t k = 0; k < length; ++k) {
        if (list[k] == v) {
            list[k] = list[length - 1];
            return;
        }
    }
}

// Reserves (without touching) room for n - 1 neighbours a node. Stores made by `create`
// have it; a store copied by value gets it here, once.
void reserve_neighbour_room(Graph& g) {
    const size_t n = as_size(g.node_count);
    if (g.neighbour_lists.capacity() < n * (n - 1)) g.neighbour_lists.reserve(n * (n - 1));
}

// Spreads the neighbour rows to twice their stride (n - 1 at most), moving them from the last
// row down so that no row is overwritten before it has moved.
void widen_neighbour_rows(Graph& g) {
    const size_t n = as_size(g.node_count);
    const size_t old_stride = as_size(g.neighbour_stride);
    const size_t new_stride = std::min(2 * old_stride, n - 1);
    reserve_neighbour_room(g);
    g.neighbour_lists.resize(n * new_stride);
    int32_t* lists = g.neighbour_lists.data();
    for (size_t v = n - 1; v >= 1; --v) {
        std::memmove(lists + v * new_stride, lists + v * old_stride,
                     as_size(g.degree[v]) * sizeof(int32_t));
    }
    g.neighbour_stride = static_cast<int32_t>(new_stride);
}

}  // namespace

double graph_store_bytes(int n) {
    const double nodes = n;
    const double words = (nodes + 63.0) / 64.0;
    const double triangle_entries = (nodes - 2.0) * (nodes - 1.0) / 2.0 + 1.0;
    // The shared partners (16 bits each) and the room the neighbour lists reserve (n - 1
    // entries a node, for the densest network), the bit rows, the per-node arrays and the
    // triangle histogram.
    return 2.0 * nodes * nodes + 4.0 * nodes * (nodes - 1.0) + 8.0 * nodes * std::floor(words) +
           4.0 * (4.0 * nodes - 1.0) + 4.0 * triangle_entries;
}

Graph create_graph(int n) {
    if (n < 1) {
        throw SettingError(
            format_message("vexa: a network needs at least one node (node count %d)", n));
    }
    if (n > max_graph_nodes) {
        throw SettingError(format_message(
            "vexa: a graph of %d nodes is too large for the dense store: its shared-partner "
            "counts could pass 65,535 (at most %d nodes; the sparse store takes more)",
            n, max_graph_nodes));
    }
    const double needed = graph_store_bytes(n);
    const double available = physical_memory_bytes();
    if (available > 0.0 && needed > available) {
        throw SettingError(format_message(
            "vexa: a network of %d nodes needs %.1f GB of memory, more than this machine's %.1f GB",
            n, needed / 1e9, available / 1e9));
    }
    Graph g;
    const size_t nodes = as_size(n);
    g.node_count = n;
    g.row_words = (n + 63) / 64;
    g.adjacency.assign(nodes * as_size(g.row_words), 0);
    g.shared_partners.assign(nodes * nodes, 0);
    g.degree_histogram.assign(nodes, 0);
    g.degree_histogram[0] = n;
    g.degree.assign(nodes, 0);
    g.shared_partner_histogram.assign(nodes - 1, 0);
    if (n >= 2) g.shared_partner_histogram[0] = static_cast<int32_t>(int64_t{n} * (n - 1) / 2);
    g.triangles.assign(nodes, 0);
    g.triangle_histogram.assign(as_size(static_cast<int>((int64_t{n} - 2) * (n - 1) / 2 + 1)), 0);
    g.triangle_histogram[0] = n;
    g.neighbour_stride = std::min(n - 1, 16);
    reserve_neighbour_room(g);
    g.neighbour_lists.resize(nodes * as_size(g.neighbour_stride));
    return g;
}

Graph::Graph(const Graph& other)
    : node_count(other.node_count),
      edge_count(other.edge_count),
      row_words(other.row_words),
      kept(other.kept),
      adjacency(other.adjacency),
      shared_partners(other.shared_partners),
      degree_histogram(other.degree_histogram),
      degree(other.degree),
      shared_partner_histogram(other.shared_partner_histogram),
      triangles(other.triangles),
      triangle_histogram(other.triangle_histogram),
      neighbour_stride(other.neighbour_stride) {
    // Into reserved room, so that the copy's toggles do not allocate either.
    reserve_neighbour_room(*this);
    neighbour_lists.assign(other.neighbour_lists.begin(), other.neighbour_lists.end());
}

Graph& Graph::operator=(const Graph& other) {
    if (this == &other) return *this;
    node_count = other.node_count;
    edge_count = other.edge_count;
    row_words = other.row_words;
    kept = other.kept;
    adjacency = other.adjacency;
    shared_partners = other.shared_partners;
    degree_histogram = other.degree_histogram;
    degree = other.degree;
    shared_partner_histogram = other.shared_partner_histogram;
    triangles = other.triangles;
    triangle_histogram = other.triangle_histogram;
    neighbour_stride = other.neighbour_stride;
    reserve_neighbour_room(*this);
    neighbour_lists.assign(other.neighbour_lists.begin(), other.neighbour_lists.end());
    return *this;
}

void add_edge(Graph& g, int i, int j) {
    if (has_edge(g, i, j)) return;
    if (std::max(g.degree[as_size(i)], g.degree[as_size(j)]) == g.neighbour_stride)
        widen_neighbour_rows(g);
    g.edge_count += 1;
    g.row(i)[j >> 6] |= uint64_t{1} << (j & 63);
    g.row(j)[i >> 6] |= uint64_t{1} << (i & 63);
    g.neighbour_row(i)[g.degree[as_size(i)]] = j;
    g.neighbour_row(j)[g.degree[as_size(j)]] = i;
    for (const int v : {i, j}) {
        const int32_t d = ++g.degree[as_size(v)];
        move_count(g.degree_histogram, d - 1, d);
    }
}

void remove_edge(Graph& g, int i, int j) {
    if (!has_edge(g, i, j)) return;
    g.edge_count -= 1;
    g.row(i)[j >> 6] &= ~(uint64_t{1} << (j & 63));
    g.row(j)[i >> 6] &= ~(uint64_t{1} << (i & 63));
    forget_neighbour(g.neighbour_row(i), g.degree[as_size(i)], j);
    forget_neighbour(g.neighbour_row(j), g.degree[as_size(j)], i);
    for (const int v : {i, j}) {
        const int32_t d = --g.degree[as_size(v)];
        move_count(g.degree_histogram, d + 1, d);
    }
}

namespace {

// Moves node v by `change` triangles, with the histogram.
inline void add_triangles(Graph& g, int v, int32_t change) {
    if (change == 0) return;
    const int32_t t = g.triangles[as_size(v)];
    g.triangles[as_size(v)] = t + change;
    move_count(g.triangle_histogram, t, t + change);
}

// Triangles alone, without the pair counts: every common neighbour k of i and j closes (or
// opens) one triangle at k, and i and j each gain (or lose) one per common neighbour.
void update_triangles(Graph& g, int i, int j, int32_t delta) {
    const uint64_t* row_i = g.row(i);
    int32_t s = 0;
    for (const int32_t k : g.neighbours_of(j)) {
        if (k == i || !row_has(row_i, k)) continue;
        ++s;
        add_triangles(g, k, delta);
    }
    add_triangles(g, i, delta * s);
    add_triangles(g, j, delta * s);
}

}  // namespace

void update_shared_partners(Graph& g, int i, int j, int added) {
    const int32_t delta = added == 1 ? 1 : -1;
    const bool count_triangles = keeps(g.kept, Bookkeeping::triangles);
    if (!keeps(g.kept, Bookkeeping::shared_partners)) {
        if (count_triangles) update_triangles(g, i, j, delta);
        return;
    }
    const size_t n = as_size(g.node_count);
    uint16_t* partners = g.shared_partners.data();
    uint16_t* partners_i = partners + as_size(i) * n;
    uint16_t* partners_j = partners + as_size(j) * n;
    int32_t* partner_histogram = g.shared_partner_histogram.data();
    const size_t column_i = as_size(i);
    const size_t column_j = as_size(j);
    // Every neighbour k of `from` other than `to` now shares (or no longer shares) partner
    // `from` with `to`: the pair {k, to} moves by delta, in both halves of the matrix. The
    // partner itself (in the lists after an addition) is not its own shared partner.
    const auto move_pairs = [&](size_t from, int to, uint16_t* partners_to, size_t column_to,
                                const uint64_t* closing_row) {
        for (const int32_t k : g.neighbours_of(static_cast<int>(from))) {
            if (k == to) continue;
            const size_t kk = as_size(k);
            const int32_t value = partners_to[kk] + delta;
            partners_to[kk] = static_cast<uint16_t>(value);
            partners[kk * n + column_to] = static_cast<uint16_t>(value);
            partner_histogram[value] += 1;
            partner_histogram[value - delta] -= 1;
            // A common neighbour k closes (or opens) the triangle i, j, k; counted on one pass.
            if (closing_row != nullptr && row_has(closing_row, k)) add_triangles(g, k, delta);
        }
    };
    move_pairs(column_i, j, partners_j, column_j, nullptr);
    move_pairs(column_j, i, partners_i, column_i, count_triangles ? g.row(i) : nullptr);
    const int32_t s = partners_i[column_j];
    if (count_triangles) {
        add_triangles(g, i, delta * s);
        add_triangles(g, j, delta * s);
    }
}

void keep_only(Graph& g, Bookkeeping keep) {
    const auto drop = [](auto& values) { std::exchange(values, {}); };
    if (!keeps(keep, Bookkeeping::shared_partners)) {
        drop(g.shared_partners);
        drop(g.shared_partner_histogram);
    }
    if (!keeps(keep, Bookkeeping::triangles)) {
        drop(g.triangles);
        drop(g.triangle_histogram);
    }
    g.kept = g.kept & keep & (Bookkeeping::shared_partners | Bookkeeping::triangles);
}

Graph read_graph(const std::string& path, int n, MatrixNotes* notes, const ReadProgress* progress) {
    Graph g = create_graph(n);
    graph_building::read_ties(g, path, n, notes, progress);
    return g;
}

Graph random_graph(int n, int64_t edge_target, Rng& rng, SeedSource& seeds) {
    graph_building::check_edge_target(n, edge_target);
    Graph g = create_graph(n);
    graph_building::add_random_ties(g, n, edge_target, rng, seeds);
    return g;
}

double density(const Graph& g) { return graph_building::density_of(g); }

std::string check_bookkeeping(const Graph& g) {
    const int n = g.node_count;
    std::vector<int32_t> degree_histogram(as_size(n), 0);
    std::vector<int32_t> triangles(as_size(n), 0);
    int64_t degree_sum = 0;
    for (int a = 0; a < n; ++a) {
        if (has_edge(g, a, a)) return format_message("node %d has a loop", a);
        int d = 0;
        for (int w = 0; w < g.row_words; ++w) d += std::popcount(g.row(a)[w]);
        if (d != g.degree[as_size(a)]) {
            return format_message("degree of node %d is %d, recount %d", a, g.degree[as_size(a)],
                                  d);
        }
        degree_histogram[as_size(d)] += 1;
        degree_sum += d;
        const std::span<const int32_t> list = g.neighbours_of(a);
        std::vector<int32_t> sorted(list.begin(), list.end());
        std::sort(sorted.begin(), sorted.end());
        for (size_t k = 0; k < sorted.size(); ++k) {
            if (!has_edge(g, a, sorted[k]) || (k > 0 && sorted[k] == sorted[k - 1])) {
                return format_message("node %d lists %d wrongly", a, sorted[k]);
            }
        }
    }
    if (degree_histogram != g.degree_histogram) return "degree histogram disagrees with a recount";
    if (degree_sum != 2 * int64_t{g.edge_count}) {
        return format_message("edge count %d, degrees sum to %lld", g.edge_count,
                              static_cast<long long>(degree_sum));
    }
    const bool partners_kept = keeps(g.kept, Bookkeeping::shared_partners);
    const bool triangles_kept = keeps(g.kept, Bookkeeping::triangles);
    if (!partners_kept && !triangles_kept) return {};
    std::vector<int32_t> partner_histogram(n >= 1 ? as_size(n) - 1 : 0, 0);
    for (int a = 0; a < n; ++a) {
        for (int b = a + 1; b < n; ++b) {
            if (has_edge(g, a, b) != has_edge(g, b, a)) {
                return format_message("adjacency not symmetric at %d, %d", a, b);
            }
            const int32_t s = common_neighbour_count(g, a, b);
            if (partners_kept && (g.partners(a, b) != s || g.partners(b, a) != s)) {
                return format_message("shared partners of %d, %d are %d/%d, recount %d", a, b,
                                      g.partners(a, b), g.partners(b, a), s);
            }
            partner_histogram[as_size(s)] += 1;
            if (has_edge(g, a, b)) {
                triangles[as_size(a)] += s;
                triangles[as_size(b)] += s;
            }
        }
    }
    if (partners_kept && partner_histogram != g.shared_partner_histogram) {
        return "shared-partner histogram disagrees with a recount";
    }
    if (!triangles_kept) return {};
    std::vector<int32_t> triangle_histogram(g.triangle_histogram.size(), 0);
    for (int a = 0; a < n; ++a) {
        // Each triangle at a was counted once from each of its two edges at a.
        const int32_t t = triangles[as_size(a)] / 2;
        if (t != g.triangles[as_size(a)]) {
            return format_message("triangles at node %d are %d, recount %d", a,
                                  g.triangles[as_size(a)], t);
        }
        triangle_histogram[as_size(t)] += 1;
    }
    if (triangle_histogram != g.triangle_histogram)
        return "triangle histogram disagrees with a recount";
    return {};
}

}  // namespace vexa
