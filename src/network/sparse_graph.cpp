#include "network/sparse_graph.h"
#include "base/sizes.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "base/errors.h"
#include "base/matrix_text.h"
#include "network/graph_building.h"
#include "numeric/rng.h"

namespace vexa {

namespace {

// The dense store's triangle histogram length, while it stays small enough to keep whole.
constexpr int64_t whole_triangle_histogram = int64_t{1} << 20;

template <class Count>
inline void move_count(std::vector<Count>& histogram, int64_t old_value, int64_t new_value) {
    histogram[static_cast<size_t>(new_value)] += 1;
    histogram[static_cast<size_t>(old_value)] -= 1;
}

// Makes room in the triangle histogram for a node count of t (doubling, so rarely).
inline void reach_triangle_count(SparseGraph& g, int32_t t) {
    if (as_size(t) < g.triangle_histogram.size()) return;
    g.triangle_histogram.resize(std::max(2 * g.triangle_histogram.size(), as_size(t) + 1), 0);
}

inline void move_triangles(SparseGraph& g, size_t v, int32_t delta) {
    const int32_t old_value = g.triangles[v];
    const int32_t t = old_value + delta;
    if (delta > 0) reach_triangle_count(g, t);
    g.triangles[v] = t;
    move_count(g.triangle_histogram, old_value, t);
}

// Removes v from a list by moving the last entry into its place, as the dense store does.
void forget_neighbour(std::vector<int32_t>& list, int v) {
    for (size_t k = 0; k < list.size(); ++k) {
        if (list[k] == v) {
            list[k] = list.back();
            list.pop_back();
            return;
        }
    }
}

}  // namespace

SparseGraph create_sparse_graph(int n) {
    if (n < 1) {
        throw SettingError(
            format_message("vexa: a network needs at least one node (node count %d)", n));
    }
    SparseGraph g;
    const size_t nodes = as_size(n);
    g.node_count = n;
    g.row_words = (n + 63) / 64;
    g.neighbours.assign(nodes, {});
    g.degree.assign(nodes, 0);
    g.degree_histogram.assign(nodes, 0);
    g.degree_histogram[0] = n;
    g.shared_partner_histogram.assign(nodes - 1, 0);
    if (n >= 2) g.shared_partner_histogram[0] = int64_t{n} * (n - 1) / 2;
    g.triangles.assign(nodes, 0);
    const int64_t whole = (int64_t{n} - 2) * (n - 1) / 2 + 1;
    g.triangle_histogram.assign(
        whole <= whole_triangle_histogram ? static_cast<size_t>(whole) : nodes, 0);
    g.triangle_histogram[0] = n;
    g.marks.assign(nodes, 0);
    g.partner_filter.assign(nodes * SparseGraph::filter_words, 0);
    g.shared_partners.reserve(4 * nodes);
    return g;
}

void add_edge(SparseGraph& g, int i, int j) {
    if (has_edge(g, i, j)) return;
    g.edge_count += 1;
    g.neighbours[as_size(i)].push_back(j);
    g.neighbours[as_size(j)].push_back(i);
    for (const int v : {i, j}) {
        const int32_t d = ++g.degree[as_size(v)];
        move_count(g.degree_histogram, d - 1, d);
    }
}

void remove_edge(SparseGraph& g, int i, int j) {
    if (!has_edge(g, i, j)) return;
    g.edge_count -= 1;
    forget_neighbour(g.neighbours[as_size(i)], j);
    forget_neighbour(g.neighbours[as_size(j)], i);
    for (const int v : {i, j}) {
        const int32_t d = --g.degree[as_size(v)];
        move_count(g.degree_histogram, d + 1, d);
    }
}

void update_shared_partners(SparseGraph& g, int i, int j, int added) {
    const int32_t delta = added == 1 ? 1 : -1;
    const bool count_partners = keeps(g.kept, Bookkeeping::shared_partners);
    const bool count_triangles = keeps(g.kept, Bookkeeping::triangles);
    if (!count_partners && !count_triangles) return;
    int64_t* partner_histogram = g.shared_partner_histogram.data();
    // Every neighbour k of `from` other than `to` now shares (or no longer shares) partner
    // `from` with `to`: the pair {k, to} moves by delta.
    const auto move_pairs = [&](int from, int to) {
        const std::vector<int32_t>& list = g.neighbours[as_size(from)];
        for (const int32_t k : list) {
            if (k != to) g.shared_partners.prefetch(PairTable::key(k, to));
        }
        for (const int32_t k : list) {
            if (k == to) continue;
            const int32_t value = g.shared_partners.add(PairTable::key(k, to), delta);
            if (value == 1 && delta == 1) {
                g.set_filter(k, to);
                g.set_filter(to, k);
            }
            partner_histogram[value] += 1;
            partner_histogram[value - delta] -= 1;
        }
    };
    if (count_partners) {
        move_pairs(i, j);
        move_pairs(j, i);
    }
    if (!count_triangles) return;
    // A common neighbour k closes (or opens) the triangle i, j, k.
    for (const int32_t k : g.neighbours[as_size(i)]) g.marks[as_size(k)] = 1;
    int32_t s = 0;
    for (const int32_t k : g.neighbours[as_size(j)]) {
        if (k == i || g.marks[as_size(k)] == 0) continue;
        ++s;
        move_triangles(g, as_size(k), delta);
    }
    for (const int32_t k : g.neighbours[as_size(i)]) g.marks[as_size(k)] = 0;
    if (s != 0) {
        for (const int v : {i, j}) move_triangles(g, as_size(v), delta * s);
    }
}

namespace {

template <class T>
double vector_bytes(const std::vector<T>& v) {
    return static_cast<double>(v.capacity() * sizeof(T));
}

}  // namespace

double held_bytes(const SparseGraph& g) {
    double bytes = vector_bytes(g.neighbours) + g.shared_partners.bytes() + vector_bytes(g.degree) +
                   vector_bytes(g.degree_histogram) + vector_bytes(g.shared_partner_histogram) +
                   vector_bytes(g.triangles) + vector_bytes(g.triangle_histogram) +
                   vector_bytes(g.marks) + vector_bytes(g.partner_filter);
    for (const auto& list : g.neighbours) bytes += vector_bytes(list);
    return bytes;
}

void keep_only(SparseGraph& g, Bookkeeping keep) {
    const auto drop = [](auto& values) { std::exchange(values, {}); };
    if (!keeps(keep, Bookkeeping::shared_partners)) {
        drop(g.shared_partners);
        drop(g.partner_filter);
        drop(g.shared_partner_histogram);
    }
    if (!keeps(keep, Bookkeeping::triangles)) {
        drop(g.triangles);
        drop(g.triangle_histogram);
        drop(g.marks);
    }
    g.kept = g.kept & keep & (Bookkeeping::shared_partners | Bookkeeping::triangles);
}

SparseGraph read_sparse_graph(const std::string& path, int n, MatrixNotes* notes,
                              const ReadProgress* progress) {
    SparseGraph g = create_sparse_graph(n);
    graph_building::read_ties(g, path, n, notes, progress);
    return g;
}

SparseGraph random_sparse_graph(int n, int64_t edge_target, Rng& rng, SeedSource& seeds) {
    graph_building::check_edge_target(n, edge_target);
    SparseGraph g = create_sparse_graph(n);
    graph_building::add_random_ties(g, n, edge_target, rng, seeds);
    return g;
}

double density(const SparseGraph& g) { return graph_building::density_of(g); }

namespace {

// The neighbour lists against the degrees, their histogram and the edge count.
std::string check_lists(const SparseGraph& g) {
    const int n = g.node_count;
    const size_t nodes = as_size(n);
    std::vector<int32_t> degree_histogram(nodes, 0);
    int64_t degree_sum = 0;
    std::vector<uint8_t> seen(nodes, 0);
    for (int a = 0; a < n; ++a) {
        const std::span<const int32_t> list = g.neighbours_of(a);
        if (static_cast<int32_t>(list.size()) != g.degree[as_size(a)]) {
            return format_message("degree of node %d is %d, its list holds %zu", a,
                                  g.degree[as_size(a)], list.size());
        }
        for (const int32_t b : list) {
            if (b == a) return format_message("node %d has a loop", a);
            if (b < 0 || b >= n || seen[as_size(b)] != 0)
                return format_message("node %d lists %d wrongly", a, b);
            if (!list_has(g.neighbours_of(b), a))
                return format_message("adjacency not symmetric at %d, %d", a, b);
            seen[as_size(b)] = 1;
        }
        for (const int32_t b : list) seen[as_size(b)] = 0;
        degree_histogram[list.size()] += 1;
        degree_sum += static_cast<int64_t>(list.size());
    }
    if (degree_histogram != g.degree_histogram) return "degree histogram disagrees with a recount";
    if (degree_sum != 2 * int64_t{g.edge_count}) {
        return format_message("edge count %d, degrees sum to %lld", g.edge_count,
                              static_cast<long long>(degree_sum));
    }
    return {};
}

// The triangles at each node (twice over: once from each of its two edges at the node) against
// the store's, and their histogram.
std::string check_triangles(const SparseGraph& g, const std::vector<int64_t>& twice) {
    std::vector<int32_t> triangle_histogram(g.triangle_histogram.size(), 0);
    for (int a = 0; a < g.node_count; ++a) {
        const int64_t t = twice[as_size(a)] / 2;
        if (t != g.triangles[as_size(a)]) {
            return format_message("triangles at node %d are %d, recount %lld", a,
                                  g.triangles[as_size(a)], static_cast<long long>(t));
        }
        if (static_cast<size_t>(t) >= triangle_histogram.size())
            return format_message("triangle histogram too short for node %d", a);
        triangle_histogram[static_cast<size_t>(t)] += 1;
    }
    if (triangle_histogram != g.triangle_histogram)
        return "triangle histogram disagrees with a recount";
    return {};
}

// The pair {a, c}, with s partners by the recount, against the filter and the table.
std::string partner_fault(const SparseGraph& g, int a, int c, int32_t s) {
    if (!SparseGraph::may_share(g.filter_of(a), c) || !SparseGraph::may_share(g.filter_of(c), a))
        return format_message("the partner filter of %d, %d misses its pair", a, c);
    if (g.partners(a, c) != s) {
        return format_message("shared partners of %d, %d are %d, recount %d", a, c,
                              g.partners(a, c), s);
    }
    return {};
}

}  // namespace

std::string check_bookkeeping(const SparseGraph& g) {
    if (std::string fault = check_lists(g); !fault.empty()) return fault;
    const bool partners_kept = keeps(g.kept, Bookkeeping::shared_partners);
    const bool triangles_kept = keeps(g.kept, Bookkeeping::triangles);
    if (!partners_kept && !triangles_kept) return {};
    const int n = g.node_count;
    const size_t nodes = as_size(n);
    // Shared partners of a and every c > a, counted over the two-paths a - b - c.
    std::vector<int32_t> count(nodes, 0);
    std::vector<int32_t> touched;
    std::vector<int64_t> partner_histogram(nodes >= 1 ? nodes - 1 : 0, 0);
    std::vector<int64_t> triangles(nodes, 0);
    size_t pairs_held = 0;
    for (int a = 0; a < n; ++a) {
        touched.clear();
        for (const int32_t b : g.neighbours_of(a)) {
            for (const int32_t c : g.neighbours_of(b)) {
                if (c <= a) continue;
                if (count[as_size(c)]++ == 0) touched.push_back(c);
            }
        }
        for (const int32_t c : touched) {
            const int32_t s = count[as_size(c)];
            if (partners_kept) {
                if (std::string fault = partner_fault(g, a, c, s); !fault.empty()) return fault;
            }
            partner_histogram[as_size(s)] += 1;
            ++pairs_held;
            if (has_edge(g, a, c)) {
                triangles[as_size(a)] += s;
                triangles[as_size(c)] += s;
            }
            count[as_size(c)] = 0;
        }
    }
    if (!partners_kept) return check_triangles(g, triangles);
    if (pairs_held != g.shared_partners.size()) {
        return format_message("the pair table holds %zu pairs, the recount %zu",
                              g.shared_partners.size(), pairs_held);
    }
    if (n >= 2) partner_histogram[0] = int64_t{n} * (n - 1) / 2 - static_cast<int64_t>(pairs_held);
    if (partner_histogram != g.shared_partner_histogram) {
        return "shared-partner histogram disagrees with a recount";
    }
    return triangles_kept ? check_triangles(g, triangles) : std::string{};
}

}  // namespace vexa
