#include "network/digraph.h"
#include "base/sizes.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <tuple>
#include <utility>

#include "base/errors.h"
#include "base/matrix_text.h"
#include "base/memory.h"
#include "network/digraph_building.h"
#include "numeric/rng.h"

namespace vexa {

namespace {

inline void set_bit(std::vector<uint64_t>& rows, int32_t row_words, int row, int b) {
    rows[as_size(row) * as_size(row_words) + as_size(b >> 6)] |= uint64_t{1} << (b & 63);
}
inline void clear_bit(std::vector<uint64_t>& rows, int32_t row_words, int row, int b) {
    rows[as_size(row) * as_size(row_words) + as_size(b >> 6)] &= ~(uint64_t{1} << (b & 63));
}

// Room for n - 1 entries a node: the widest the rows can ever spread.
size_t list_room(int n) { return n >= 1 ? as_size(n) * as_size(n - 1) : 0; }

// Spreads the rows to twice their stride (n - 1 at most), moving them from the last row down
// so that no row is overwritten before it has moved. `lengths` are the list lengths.
void widen(NeighbourLists& lists, const std::vector<int32_t>& lengths) {
    const size_t n = as_size(lists.node_count);
    const size_t old_stride = as_size(lists.stride);
    const size_t new_stride = std::min(2 * old_stride, n - 1);
    lists.entries.resize(n * new_stride);  // within the reserved room: no reallocation
    int32_t* base = lists.entries.data();
    for (size_t v = n - 1; v >= 1; --v) {
        std::memmove(base + v * new_stride, base + v * old_stride,
                     as_size(lengths[v]) * sizeof(int32_t));
    }
    lists.stride = static_cast<int32_t>(new_stride);
}

// Appends v to the list of `owner`, widening the rows first when that list is full.
inline void append(NeighbourLists& lists, std::vector<int32_t>& lengths, int owner, int v) {
    if (lengths[as_size(owner)] == lists.stride) widen(lists, lengths);
    lists.row(owner)[lengths[as_size(owner)]] = v;
}

// Removes v from a list of `length` entries by moving the last entry into its place.
inline void forget(int32_t* list, int32_t length, int v) {
    for (int32_t k = 0; k < length; ++k) {
        if (list[k] == v) {
            list[k] = list[length - 1];
            return;
        }
    }
}

// Adds delta (1, or 0xffff for -1) modulo 2^16 to one counter.
inline void bump(uint16_t* matrix, size_t index, uint16_t delta) {
    matrix[index] = static_cast<uint16_t>(matrix[index] + delta);
}

// Moves the pairs {k, to} of a symmetric matrix by delta, in both halves, for every k of
// `list` but `to` itself.
inline void bump_pairs(uint16_t* matrix, size_t n, std::span<const int32_t> list, int to,
                       uint16_t delta) {
    const size_t row_to = as_size(to) * n;
    for (const int32_t k : list) {
        if (k == to) continue;
        bump(matrix, as_size(k) * n + as_size(to), delta);
        bump(matrix, row_to + as_size(k), delta);
    }
}

}  // namespace

NeighbourLists::NeighbourLists(int n) : node_count(n), stride(std::min(n - 1, 16)) {
    entries.reserve(list_room(n));
    entries.resize(as_size(n) * as_size(stride));
}

NeighbourLists::NeighbourLists(const NeighbourLists& other)
    : node_count(other.node_count), stride(other.stride) {
    entries.reserve(list_room(node_count));
    entries.assign(other.entries.begin(), other.entries.end());
}

NeighbourLists& NeighbourLists::operator=(const NeighbourLists& other) {
    if (this == &other) return *this;
    node_count = other.node_count;
    stride = other.stride;
    if (entries.capacity() < list_room(node_count)) {
        entries.clear();
        entries.shrink_to_fit();
        entries.reserve(list_room(node_count));
    }
    entries.assign(other.entries.begin(), other.entries.end());
    return *this;
}

double digraph_store_bytes(int n) {
    const double nodes = n;
    const double words = std::floor((nodes + 63.0) / 64.0);
    // The three 16-bit pair matrices, the room both neighbour lists reserve (n - 1 entries a
    // node, for the densest network), both bit matrices and the per-node arrays.
    return 6.0 * nodes * nodes + 8.0 * nodes * (nodes - 1.0) + 16.0 * nodes * words + 20.0 * nodes;
}

Digraph create_digraph(int n) {
    if (n < 1) {
        throw SettingError(
            format_message("vexa: a network needs at least one node (node count %d)", n));
    }
    if (n > max_digraph_nodes) {
        throw SettingError(
            format_message("vexa: a digraph of %d nodes is too large: its two-path counts could "
                           "pass 65,535 (at most "
                           "%d nodes)",
                           n, max_digraph_nodes));
    }
    const double needed = digraph_store_bytes(n);
    const double available = physical_memory_bytes();
    if (available > 0.0 && needed > available) {
        throw SettingError(format_message(
            "vexa: a digraph of %d nodes needs %.1f GB of memory, more than this machine's %.1f GB",
            n, needed / 1e9, available / 1e9));
    }
    Digraph d;
    const size_t nodes = as_size(n);
    d.node_count = n;
    d.row_words = (n + 63) / 64;
    d.out_rows.assign(nodes * as_size(d.row_words), 0);
    d.in_rows.assign(nodes * as_size(d.row_words), 0);
    d.in_degree_values.assign(nodes, 0);
    d.out_degree_values.assign(nodes, 0);
    d.mutual_degree_values.assign(nodes, 0);
    d.in_degree_histogram.assign(nodes, 0);
    d.out_degree_histogram.assign(nodes, 0);
    d.in_degree_histogram[0] = n;
    d.out_degree_histogram[0] = n;
    d.out_lists = NeighbourLists(n);
    d.in_lists = NeighbourLists(n);
    d.common_receivers.assign(nodes * nodes, 0);
    d.common_senders.assign(nodes * nodes, 0);
    d.two_paths.assign(nodes * nodes, 0);
    return d;
}

void add_arc(Digraph& d, int i, int j) {
    if (d.has_arc(i, j)) return;
    append(d.out_lists, d.out_degree_values, i, j);
    append(d.in_lists, d.in_degree_values, j, i);
    set_bit(d.out_rows, d.row_words, i, j);
    set_bit(d.in_rows, d.row_words, j, i);
    digraph_building::count_arc(d, i, j, 1);
}

void remove_arc(Digraph& d, int i, int j) {
    if (!d.has_arc(i, j)) return;
    forget(d.out_lists.row(i), d.out_degree(i), j);
    forget(d.in_lists.row(j), d.in_degree(j), i);
    clear_bit(d.out_rows, d.row_words, i, j);
    clear_bit(d.in_rows, d.row_words, j, i);
    digraph_building::count_arc(d, i, j, -1);
}

void update_two_paths(Digraph& d, int i, int j, int added) {
    const uint16_t delta = added == 1 ? uint16_t{1} : uint16_t{0xffff};
    const size_t n = as_size(d.node_count);
    const size_t row_i = as_size(i) * n;
    // i is now (or no longer) a common sender of j and each other receiver k of i.
    if (keeps(d.kept, Bookkeeping::common_senders))
        bump_pairs(d.common_senders.data(), n, d.out_neighbours(i), j, delta);
    // j is a common receiver of i and each other sender k of j.
    if (keeps(d.kept, Bookkeeping::common_receivers))
        bump_pairs(d.common_receivers.data(), n, d.in_neighbours(j), i, delta);
    // The paths k->i->j and i->j->k.
    if (keeps(d.kept, Bookkeeping::two_paths)) {
        uint16_t* paths = d.two_paths.data();
        for (const int32_t k : d.in_neighbours(i)) {
            if (k != j) bump(paths, as_size(k) * n + as_size(j), delta);
        }
        for (const int32_t k : d.out_neighbours(j)) {
            if (k != i) bump(paths, row_i + as_size(k), delta);
        }
    }
}

void keep_only(Digraph& d, Bookkeeping keep) {
    const auto drop = [](auto& values) { std::exchange(values, {}); };
    if (!keeps(keep, Bookkeeping::two_paths)) drop(d.two_paths);
    if (!keeps(keep, Bookkeeping::common_senders)) drop(d.common_senders);
    if (!keeps(keep, Bookkeeping::common_receivers)) drop(d.common_receivers);
    d.kept = d.kept & keep &
             (Bookkeeping::two_paths | Bookkeeping::common_senders | Bookkeeping::common_receivers);
}

Digraph read_digraph(const std::string& path, int n, MatrixNotes* notes,
                     const ReadProgress* progress) {
    Digraph d = create_digraph(n);
    digraph_building::read_arcs(d, path, n, notes, progress);
    return d;
}

Digraph random_digraph_by_count(int n, int64_t arc_target, Rng& rng, SeedSource& seeds) {
    digraph_building::check_arc_target(n, arc_target);
    Digraph d = create_digraph(n);
    digraph_building::add_random_arcs(d, n, arc_target, rng, seeds);
    return d;
}

Digraph random_digraph_by_density(int n, float p, Rng& rng, SeedSource& seeds) {
    Digraph d = create_digraph(n);
    seeds.reseed(rng);
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) {
            if (j == i) continue;
            const float r = static_cast<float>(rng.unit());
            if (p >= r) {
                add_arc(d, i, j);
                update_two_paths(d, i, j, 1);
            }
        }
    }
    return d;
}

double density(const Digraph& d) { return digraph_building::density_of(d); }

double mean_degree(const Digraph& d) { return static_cast<double>(d.arc_count) / d.node_count; }

std::string check_bookkeeping(const Digraph& d) {
    const int n = d.node_count;
    const int words = d.row_words;
    std::vector<int32_t> in_histogram(as_size(n), 0), out_histogram(as_size(n), 0);
    int64_t arcs = 0, mutual_ends = 0;
    for (int a = 0; a < n; ++a) {
        if (d.has_arc(a, a)) return format_message("node %d has a loop", a);
        int32_t out = 0, in = 0, mutual = 0;
        for (int w = 0; w < words; ++w) {
            const uint64_t sent = d.out_row(a)[w];
            const uint64_t received = d.in_row(a)[w];
            const int first_outside = n - w * 64;  // bits at or above this are not nodes
            if (first_outside < 64 && ((sent | received) >> first_outside) != 0) {
                return format_message("row %d has bits beyond the last node", a);
            }
            out += std::popcount(sent);
            in += std::popcount(received);
            mutual += std::popcount(sent & received);
        }
        for (int b = 0; b < n; ++b) {
            if (bit_of(d.in_row(b), a) != d.has_arc(a, b)) {
                return format_message("in rows disagree with out rows at arc %d->%d", a, b);
            }
        }
        if (out != d.out_degree(a) || in != d.in_degree(a) || mutual != d.mutual_degree(a)) {
            return format_message("degrees of node %d are out %d in %d mutual %d, recount %d %d %d",
                                  a, d.out_degree(a), d.in_degree(a), d.mutual_degree(a), out, in,
                                  mutual);
        }
        out_histogram[as_size(out)] += 1;
        in_histogram[as_size(in)] += 1;
        arcs += out;
        mutual_ends += mutual;
        for (const auto& [list, row, what] :
             {std::tuple{d.out_neighbours(a), d.out_row(a), "receiver"},
              std::tuple{d.in_neighbours(a), d.in_row(a), "sender"}}) {
            std::vector<int32_t> sorted(list.begin(), list.end());
            std::sort(sorted.begin(), sorted.end());
            for (size_t k = 0; k < sorted.size(); ++k) {
                if (!bit_of(row, sorted[k]) || (k > 0 && sorted[k] == sorted[k - 1])) {
                    return format_message("node %d lists %s %d wrongly", a, what, sorted[k]);
                }
            }
        }
    }
    if (out_histogram != d.out_degree_histogram)
        return "out-degree histogram disagrees with a recount";
    if (in_histogram != d.in_degree_histogram)
        return "in-degree histogram disagrees with a recount";
    if (arcs != d.arc_count || mutual_ends != 2 * int64_t{d.mutual_count}) {
        return format_message("arc count %d and mutual count %d, recount %lld and %lld",
                              d.arc_count, d.mutual_count, static_cast<long long>(arcs),
                              static_cast<long long>(mutual_ends / 2));
    }
    const bool paths_kept = keeps(d.kept, Bookkeeping::two_paths);
    const bool senders_kept = keeps(d.kept, Bookkeeping::common_senders);
    const bool receivers_kept = keeps(d.kept, Bookkeeping::common_receivers);
    for (int a = 0; a < n && (paths_kept || senders_kept || receivers_kept); ++a) {
        for (int b = 0; b < n; ++b) {
            if (a == b) continue;
            int32_t paths = 0, senders = 0, receivers = 0;
            for (int w = 0; w < words; ++w) {
                paths += std::popcount(d.out_row(a)[w] & d.in_row(b)[w]);
                senders += std::popcount(d.in_row(a)[w] & d.in_row(b)[w]);
                receivers += std::popcount(d.out_row(a)[w] & d.out_row(b)[w]);
            }
            const bool wrong_paths = paths_kept && paths != d.paths(a, b);
            const bool wrong_senders = senders_kept && senders != d.senders(a, b);
            const bool wrong_receivers = receivers_kept && receivers != d.receivers(a, b);
            if (wrong_paths || wrong_senders || wrong_receivers) {
                return format_message(
                    "pair %d, %d holds two-paths %d, common senders %d, common receivers %d; "
                    "recount %d %d %d",
                    a, b, paths_kept ? d.paths(a, b) : -1, senders_kept ? d.senders(a, b) : -1,
                    receivers_kept ? d.receivers(a, b) : -1, paths, senders, receivers);
            }
        }
    }
    return {};
}

}  // namespace vexa
