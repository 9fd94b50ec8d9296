#include "network/sparse_digraph.h"
#include "base/sizes.h"

#include "base/errors.h"
#include "base/matrix_text.h"
#include "network/digraph_building.h"
#include "numeric/rng.h"

namespace vexa {

namespace {

// Removes v from a list by moving the last entry into its place, as the dense store does.
void forget(std::vector<int32_t>& list, int v) {
    for (size_t k = 0; k < list.size(); ++k) {
        if (list[k] == v) {
            list[k] = list.back();
            list.pop_back();
            return;
        }
    }
}

// Adds delta to the count of every pair key(k) for k in a list but `skip`, asking for all the
// slots before touching any, so that their cache misses overlap.
template <typename Key>
inline void move_pairs(PairTable& table, std::span<const int32_t> list, int skip, int32_t delta,
                       Key&& key) {
    for (const int32_t k : list) {
        if (k != skip) table.prefetch(key(k));
    }
    for (const int32_t k : list) {
        if (k != skip) table.add(key(k), delta);
    }
}

}  // namespace

SparseDigraph create_sparse_digraph(int n) {
    if (n < 1) {
        throw SettingError(
            format_message("vexa: a network needs at least one node (node count %d)", n));
    }
    SparseDigraph d;
    const size_t nodes = as_size(n);
    d.node_count = n;
    d.out_lists.assign(nodes, {});
    d.in_lists.assign(nodes, {});
    d.in_degree_values.assign(nodes, 0);
    d.out_degree_values.assign(nodes, 0);
    d.mutual_degree_values.assign(nodes, 0);
    d.in_degree_histogram.assign(nodes, 0);
    d.out_degree_histogram.assign(nodes, 0);
    d.in_degree_histogram[0] = n;
    d.out_degree_histogram[0] = n;
    for (PairTable* table : {&d.common_receivers, &d.common_senders, &d.two_paths}) {
        table->reserve(4 * nodes);
    }
    return d;
}

void add_arc(SparseDigraph& d, int i, int j) {
    if (d.has_arc(i, j)) return;
    d.out_lists[as_size(i)].push_back(j);
    d.in_lists[as_size(j)].push_back(i);
    digraph_building::count_arc(d, i, j, 1);
}

void remove_arc(SparseDigraph& d, int i, int j) {
    if (!d.has_arc(i, j)) return;
    forget(d.out_lists[as_size(i)], j);
    forget(d.in_lists[as_size(j)], i);
    digraph_building::count_arc(d, i, j, -1);
}

void update_two_paths(SparseDigraph& d, int i, int j, int added) {
    const int32_t delta = added == 1 ? 1 : -1;
    // i is now (or no longer) a common sender of j and each other receiver k of i.
    if (keeps(d.kept, Bookkeeping::common_senders)) {
        move_pairs(d.common_senders, d.out_neighbours(i), j, delta,
                   [j](int k) { return PairTable::key(k, j); });
    }
    // j is a common receiver of i and each other sender k of j.
    if (keeps(d.kept, Bookkeeping::common_receivers)) {
        move_pairs(d.common_receivers, d.in_neighbours(j), i, delta,
                   [i](int k) { return PairTable::key(k, i); });
    }
    // The paths k->i->j and i->j->k.
    if (keeps(d.kept, Bookkeeping::two_paths)) {
        move_pairs(d.two_paths, d.in_neighbours(i), j, delta,
                   [j](int k) { return PairTable::ordered_key(k, j); });
        move_pairs(d.two_paths, d.out_neighbours(j), i, delta,
                   [i](int k) { return PairTable::ordered_key(i, k); });
    }
}

double held_bytes(const SparseDigraph& d) {
    const auto bytes_of = [](const auto& v) {
        return static_cast<double>(v.capacity() * sizeof(v[0]));
    };
    double bytes = bytes_of(d.out_lists) + bytes_of(d.in_lists) + bytes_of(d.in_degree_values) +
                   bytes_of(d.out_degree_values) + bytes_of(d.mutual_degree_values) +
                   bytes_of(d.in_degree_histogram) + bytes_of(d.out_degree_histogram) +
                   d.common_receivers.bytes() + d.common_senders.bytes() + d.two_paths.bytes();
    for (const auto& list : d.out_lists) bytes += bytes_of(list);
    for (const auto& list : d.in_lists) bytes += bytes_of(list);
    return bytes;
}

void keep_only(SparseDigraph& d, Bookkeeping keep) {
    if (!keeps(keep, Bookkeeping::two_paths)) d.two_paths = PairTable{};
    if (!keeps(keep, Bookkeeping::common_senders)) d.common_senders = PairTable{};
    if (!keeps(keep, Bookkeeping::common_receivers)) d.common_receivers = PairTable{};
    d.kept = d.kept & keep &
             (Bookkeeping::two_paths | Bookkeeping::common_senders | Bookkeeping::common_receivers);
}

SparseDigraph read_sparse_digraph(const std::string& path, int n, MatrixNotes* notes,
                                  const ReadProgress* progress) {
    SparseDigraph d = create_sparse_digraph(n);
    digraph_building::read_arcs(d, path, n, notes, progress);
    return d;
}

SparseDigraph random_sparse_digraph(int n, int64_t arc_target, Rng& rng, SeedSource& seeds) {
    digraph_building::check_arc_target(n, arc_target);
    SparseDigraph d = create_sparse_digraph(n);
    digraph_building::add_random_arcs(d, n, arc_target, rng, seeds);
    return d;
}

double density(const SparseDigraph& d) { return digraph_building::density_of(d); }

double mean_degree(const SparseDigraph& d) {
    return static_cast<double>(d.arc_count) / d.node_count;
}

namespace {

// Recounts one pair table from two-step walks: for every a, count[b] += 1 for every b reached
// a -> x -> b by `first` then `second` (b != a), keeping b > a when the pairs are unordered.
// Returns a description of the first pair the table holds wrongly, or of a size mismatch.
template <typename First, typename Second, typename Read>
std::string recount_pairs(const SparseDigraph& d, const PairTable& table, bool ordered,
                          const char* what, First&& first, Second&& second, Read&& read) {
    const int n = d.node_count;
    std::vector<int32_t> count(as_size(n), 0);
    std::vector<int32_t> touched;
    size_t held = 0;
    for (int a = 0; a < n; ++a) {
        touched.clear();
        for (const int32_t x : first(a)) {
            for (const int32_t b : second(x)) {
                if (b == a || (!ordered && b < a)) continue;
                if (count[as_size(b)]++ == 0) touched.push_back(b);
            }
        }
        for (const int32_t b : touched) {
            if (read(a, b) != count[as_size(b)]) {
                return format_message("%s of %d, %d are %d, recount %d", what, a, b, read(a, b),
                                      count[as_size(b)]);
            }
            count[as_size(b)] = 0;
        }
        held += touched.size();
    }
    if (held != table.size()) {
        return format_message("the %s table holds %zu pairs, the recount %zu", what, table.size(),
                              held);
    }
    return {};
}

}  // namespace

std::string check_bookkeeping(const SparseDigraph& d) {
    const int n = d.node_count;
    const size_t nodes = as_size(n);
    std::vector<int32_t> in_histogram(nodes, 0), out_histogram(nodes, 0), in_recount(nodes, 0);
    std::vector<uint8_t> seen(nodes, 0);
    int64_t arcs = 0, mutual_ends = 0;
    for (int a = 0; a < n; ++a) {
        int32_t mutual = 0;
        for (const int32_t b : d.out_neighbours(a)) {
            if (b == a) return format_message("node %d has a loop", a);
            if (b < 0 || b >= n || seen[as_size(b)] != 0)
                return format_message("node %d lists receiver %d wrongly", a, b);
            const std::span<const int32_t> senders = d.in_neighbours(b);
            if (std::count(senders.begin(), senders.end(), a) != 1)
                return format_message("in-lists disagree with out-lists at arc %d->%d", a, b);
            const std::span<const int32_t> back = d.out_neighbours(b);
            if (std::find(back.begin(), back.end(), a) != back.end()) ++mutual;
            seen[as_size(b)] = 1;
            in_recount[as_size(b)] += 1;
        }
        for (const int32_t b : d.out_neighbours(a)) seen[as_size(b)] = 0;
        const auto out = static_cast<int32_t>(d.out_neighbours(a).size());
        if (out != d.out_degree(a) || mutual != d.mutual_degree(a)) {
            return format_message("degrees of node %d are out %d mutual %d, recount %d %d", a,
                                  d.out_degree(a), d.mutual_degree(a), out, mutual);
        }
        out_histogram[as_size(out)] += 1;
        arcs += out;
        mutual_ends += mutual;
    }
    for (int b = 0; b < n; ++b) {
        // Every sender listed was matched by an arc above; equal lengths leave no stray one.
        const auto listed = static_cast<int32_t>(d.in_neighbours(b).size());
        if (listed != in_recount[as_size(b)] || listed != d.in_degree(b)) {
            return format_message("in-degree of node %d is %d, its list holds %d, recount %d", b,
                                  d.in_degree(b), listed, in_recount[as_size(b)]);
        }
        in_histogram[as_size(listed)] += 1;
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
    const auto outs = [&d](int v) { return d.out_neighbours(v); };
    const auto ins = [&d](int v) { return d.in_neighbours(v); };
    std::string found;
    if (keeps(d.kept, Bookkeeping::two_paths)) {
        found = recount_pairs(d, d.two_paths, true, "two-paths", outs, outs,
                              [&d](int a, int b) { return d.paths(a, b); });
    }
    if (found.empty() && keeps(d.kept, Bookkeeping::common_senders)) {
        found = recount_pairs(d, d.common_senders, false, "common senders", ins, outs,
                              [&d](int a, int b) { return d.senders(a, b); });
    }
    if (found.empty() && keeps(d.kept, Bookkeeping::common_receivers)) {
        found = recount_pairs(d, d.common_receivers, false, "common receivers", outs, ins,
                              [&d](int a, int b) { return d.receivers(a, b); });
    }
    return found;
}

}  // namespace vexa
