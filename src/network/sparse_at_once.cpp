// The sparse stores filled at once, as a reader of millions of ties needs them. The lists are
// laid out at their final lengths from the ties in one go; then node by node every two-step
// path from the node is followed and the paths to each far end are counted in a plain array,
// so that each pair's count lands in its table once, in a table sized once. Filling tie by tie
// instead scatters one update per path over tables of hundreds of megabytes (and grows them by
// rehashing as it goes), and grows a million small lists entry by entry.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "base/compiler.h"
#include "base/sizes.h"
#include "network/flat_lists.h"
#include "network/sparse_digraph.h"
#include "network/sparse_graph.h"

namespace vexa {

namespace {

// Which ends of two-step paths a -> x -> c count: c > a (unordered pairs, each met from its
// lower node) or c != a (ordered pairs).
enum class Ends { above, other };

// The ends c of the two-step paths a -> x -> c from one node a, each with the number of paths
// that reach it.
class PathEnds {
public:
    explicit PathEnds(int n) : ways_(as_size(n), 0) {}

    // The ends of a's paths through first's list of a, then second's list of x, which must be
    // sorted (so that the ends above a are a tail of each list, and the counts of one list are
    // met in address order). The ways to each wait in take(c) until taken; take every end
    // before the next call.
    std::span<const int32_t> from(int a, const FlatLists& first, const FlatLists& second,
                                  Ends wanted) {
        const std::span<const int32_t> middle = first.of(a);
        // Every list the walk reads, asked for before it is read.
        size_t most = 0;
        for (const int32_t x : middle) {
            second.ask_for_start(x);
            most += second.of(x).size();
        }
        for (const int32_t x : middle) second.ask_for_list(x);
        if (ends_.size() < most) ends_.resize(most);
        int32_t* const ends = ends_.data();
        int32_t* const ways = ways_.data();
        size_t count = 0;
        // No branch on the counts: the walk is a stream of independent increments.
        for (const int32_t x : middle) {
            for (const int32_t c : wanted == Ends::above ? second.above(x, a) : second.of(x)) {
                ends[count] = c;
                count += ways[c]++ == 0 ? 1 : 0;
            }
        }
        if (wanted == Ends::other && ways[a] != 0) {
            ways[a] = 0;
            *std::find(ends, ends + count, a) = ends[count - 1];
            --count;
        }
        return {ends, count};
    }

    // The paths to c, which are forgotten.
    int32_t take(int c) { return std::exchange(ways_[as_size(c)], 0); }

private:
    std::vector<int32_t> ways_;
    std::vector<int32_t> ends_;
};

// Tells the listener, every so many nodes, the nodes done of the whole recount.
class NodeTally {
public:
    NodeTally(const WorkDone* listener, double total) : listener_(listener), total_(total) {}
    void advance() {
        ++done_;
        if ((done_ & 0x3fff) == 0 && listener_ != nullptr && *listener_)
            (*listener_)(static_cast<double>(done_), total_);
    }

private:
    const WorkDone* listener_;
    double total_;
    uint64_t done_ = 0;
};

// Walks every node's path ends (through first's list, then second's) and hands each pair to
// pair(a, c, ways), after node(a, ends reached). With a table, a first walk counts the pairs,
// so that the table is sized once for them, and the second puts each pair's count in, asking
// for all of a node's slots before writing any, so that their cache misses overlap.
template <class Key, class Node, class Pair>
void fill_pairs(PairTable* table, int n, const FlatLists& first, const FlatLists& second,
                Ends wanted, Key&& key, Node&& node, Pair&& pair, NodeTally& tally) {
    PathEnds ends(n);
    if (table != nullptr) {
        size_t pairs = 0;
        for (int a = 0; a < n; ++a) {
            const std::span<const int32_t> reached = ends.from(a, first, second, wanted);
            pairs += reached.size();
            for (const int32_t c : reached) ends.take(c);
            tally.advance();
        }
        *table = PairTable{};
        // As a fresh store's table: room for a few pairs a node before the first growth.
        table->reserve(std::max(pairs, 4 * as_size(n)));
    }
    for (int a = 0; a < n; ++a) {
        const std::span<const int32_t> reached = ends.from(a, first, second, wanted);
        node(a, reached);
        if (table != nullptr) {
            for (const int32_t c : reached) table->prefetch(key(a, c));
        }
        for (const int32_t c : reached) {
            const int32_t ways = ends.take(c);
            if (table != nullptr) table->add(key(a, c), ways);
            pair(a, c, ways);
        }
        tally.advance();
    }
}

// The triangles at each node from twice their number, and their histogram, grown (by doubling,
// as the store grows it) to the largest count.
void set_triangles(SparseGraph& g, const std::vector<int64_t>& twice) {
    std::fill(g.triangle_histogram.begin(), g.triangle_histogram.end(), 0);
    for (size_t v = 0; v < twice.size(); ++v) {
        const auto t = static_cast<int32_t>(twice[v] / 2);
        g.triangles[v] = t;
        const auto at = static_cast<size_t>(t);
        if (at >= g.triangle_histogram.size())
            g.triangle_histogram.resize(std::max(2 * g.triangle_histogram.size(), at + 1), 0);
        g.triangle_histogram[at] += 1;
    }
}

// The counts of recount_bookkeeping from the graph's lists laid flat, which it sorts.
void recount_graph(SparseGraph& g, FlatLists&& neighbours, const WorkDone* nodes) {
    const bool partners = keeps(g.kept, Bookkeeping::shared_partners);
    const bool triangles = keeps(g.kept, Bookkeeping::triangles);
    if (!partners && !triangles) return;
    const int n = g.node_count;
    NodeTally tally(nodes, (partners ? 2.0 : 1.0) * n);
    int64_t pairs = 0;
    if (partners) {
        std::fill(g.shared_partner_histogram.begin(), g.shared_partner_histogram.end(), 0);
        std::fill(g.partner_filter.begin(), g.partner_filter.end(), 0);
    }
    // Each triangle at a node is met from both of its edges there.
    std::vector<int64_t> twice(triangles ? as_size(n) : 0, 0);
    std::vector<uint8_t> tied(triangles ? as_size(n) : 0, 0);  // the neighbours of the node
    int marked = -1;
    neighbours.sort_each();
    fill_pairs(
        partners ? &g.shared_partners : nullptr, n, neighbours, neighbours, Ends::above,
        [](int a, int c) { return PairTable::key(a, c); },
        [&](int a, std::span<const int32_t> reached) {
            // The partner filters the pairs will mark, asked for ahead.
            if (partners) {
                for (const int32_t c : reached) prefetch(g.filter_of(c));
            }
            if (!triangles) return;
            if (marked >= 0) {
                for (const int32_t k : neighbours.of(marked)) tied[as_size(k)] = 0;
            }
            for (const int32_t k : neighbours.of(a)) tied[as_size(k)] = 1;
            marked = a;
        },
        [&](int a, int c, int32_t ways) {
            if (partners) {
                g.set_filter(a, c);
                g.set_filter(c, a);
                g.shared_partner_histogram[as_size(ways)] += 1;
                ++pairs;
            }
            if (triangles && tied[as_size(c)] != 0) {
                twice[as_size(a)] += ways;
                twice[as_size(c)] += ways;
            }
        },
        tally);
    if (partners && n >= 2) g.shared_partner_histogram[0] = int64_t{n} * (n - 1) / 2 - pairs;
    if (triangles) set_triangles(g, twice);
}

// The tables of recount_bookkeeping from the digraph's out- and in-lists laid flat, which it
// sorts.
void recount_digraph(SparseDigraph& d, FlatLists&& out, FlatLists&& in, const WorkDone* nodes) {
    const bool senders = keeps(d.kept, Bookkeeping::common_senders);
    const bool receivers = keeps(d.kept, Bookkeeping::common_receivers);
    const bool paths = keeps(d.kept, Bookkeeping::two_paths);
    const int n = d.node_count;
    NodeTally tally(nodes, 2.0 * n * ((senders ? 1 : 0) + (receivers ? 1 : 0) + (paths ? 1 : 0)));
    out.sort_each();
    in.sort_each();
    const auto unordered = [](int a, int c) { return PairTable::key(a, c); };
    const auto nothing = [](auto&&...) {};  // no more than the table's counts
    // {a, c}: the x with x->a and x->c, met as a <- x -> c.
    if (senders) {
        fill_pairs(&d.common_senders, n, in, out, Ends::above, unordered, nothing, nothing, tally);
    }
    // {a, c}: the x with a->x and c->x, met as a -> x <- c.
    if (receivers) {
        fill_pairs(&d.common_receivers, n, out, in, Ends::above, unordered, nothing, nothing,
                   tally);
    }
    // (a, c): the x with a->x->c.
    if (paths) {
        fill_pairs(
            &d.two_paths, n, out, out, Ends::other,
            [](int a, int c) { return PairTable::ordered_key(a, c); }, nothing, nothing, tally);
    }
}

}  // namespace

void recount_bookkeeping(SparseGraph& g, const WorkDone* nodes) {
    recount_graph(g, FlatLists(g.node_count, [&g](int v) { return g.neighbours_of(v); }), nodes);
}

void recount_bookkeeping(SparseDigraph& d, const WorkDone* nodes) {
    const int n = d.node_count;
    recount_digraph(d, FlatLists(n, [&d](int v) { return d.out_neighbours(v); }),
                    FlatLists(n, [&d](int v) { return d.in_neighbours(v); }), nodes);
}

void fill_from_ties(SparseGraph& g, std::span<const std::pair<int32_t, int32_t>> ties,
                    const WorkDone* nodes) {
    const int n = g.node_count;
    FlatLists lists(n, ties, true, true);
    std::fill(g.degree_histogram.begin(), g.degree_histogram.end(), 0);
    int64_t ends = 0;
    for (int v = 0; v < n; ++v) {
        const std::span<const int32_t> list = lists.of(v);
        g.neighbours[as_size(v)].assign(list.begin(), list.end());
        g.degree[as_size(v)] = static_cast<int32_t>(list.size());
        g.degree_histogram[list.size()] += 1;
        ends += static_cast<int64_t>(list.size());
    }
    g.edge_count = static_cast<int32_t>(ends / 2);
    recount_graph(g, std::move(lists), nodes);
}

void fill_from_ties(SparseDigraph& d, std::span<const std::pair<int32_t, int32_t>> ties,
                    const WorkDone* nodes) {
    const int n = d.node_count;
    FlatLists out(n, ties, true, false);
    FlatLists in(n, ties, false, true);
    std::fill(d.out_degree_histogram.begin(), d.out_degree_histogram.end(), 0);
    std::fill(d.in_degree_histogram.begin(), d.in_degree_histogram.end(), 0);
    std::vector<uint8_t> sends(as_size(n), 0);  // the senders to the node at hand
    int64_t arcs = 0, mutual_ends = 0;
    for (int a = 0; a < n; ++a) {
        const std::span<const int32_t> receivers = out.of(a), senders = in.of(a);
        const size_t v = as_size(a);
        d.out_lists[v].assign(receivers.begin(), receivers.end());
        d.in_lists[v].assign(senders.begin(), senders.end());
        d.out_degree_values[v] = static_cast<int32_t>(receivers.size());
        d.in_degree_values[v] = static_cast<int32_t>(senders.size());
        d.out_degree_histogram[receivers.size()] += 1;
        d.in_degree_histogram[senders.size()] += 1;
        // a->b is mutual when b is among a's senders.
        for (const int32_t s : senders) sends[as_size(s)] = 1;
        int32_t mutual = 0;
        for (const int32_t b : receivers) mutual += sends[as_size(b)];
        for (const int32_t s : senders) sends[as_size(s)] = 0;
        d.mutual_degree_values[v] = mutual;
        arcs += static_cast<int64_t>(receivers.size());
        mutual_ends += mutual;
    }
    d.arc_count = static_cast<int32_t>(arcs);
    d.mutual_count = static_cast<int32_t>(mutual_ends / 2);
    recount_digraph(d, std::move(out), std::move(in), nodes);
}

}  // namespace vexa
