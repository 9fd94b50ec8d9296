// Geodesics, their distribution and quartiles.

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <type_traits>

#include "base/sizes.h"
#include "describe/graph_describe.h"

namespace vexa {

namespace {

// A batch searches from 64 x lane_words sources at once; each node holds lane_words words
// per level. Wider batches share the cost of walking the neighbour lists among more sources.
constexpr int lane_words = 4;
constexpr int batch_sources = 64 * lane_words;
// Levels kept of the arrival words: the frontier and the level arriving from it.
constexpr int32_t held_levels = 2;

using Lanes = uint64_t[lane_words];

}  // namespace

namespace {

// Neighbour lists: a level then costs one OR per tie, not a scan of every row's words.
template <class G>
void list_neighbours(const G& graph, DescribeScratch& scratch) {
    const int n = graph.node_count;
    scratch.offsets.resize(as_size(n) + 1);
    scratch.targets.resize(2 * as_size(graph.edge_count));
    int32_t filled = 0;
    for (int v = 0; v < n; ++v) {
        scratch.offsets[as_size(v)] = filled;
        if constexpr (std::is_same_v<G, Graph>) {
            const uint64_t* row = graph.row(v);
            for (int w = 0; w < graph.row_words; ++w) {
                for_each_bit(row[w], w * 64,
                             [&](int u) { scratch.targets[as_size(filled++)] = u; });
            }
        } else {
            for (const int32_t u : graph.neighbours_of(v)) scratch.targets[as_size(filled++)] = u;
        }
    }
    scratch.offsets[as_size(n)] = filled;
}

// One level of a batch's searches: the nodes that a source reaches first from the frontier.
// Returns the number of (source, node) pairs that arrived; `grown` is zero when none did.
int64_t next_level(DescribeScratch& scratch, size_t nodes, const Lanes& batch,
                   const uint64_t* frontier, uint64_t* arriving, uint64_t& grown) {
    const int32_t* offsets = scratch.offsets.data();
    const int32_t* targets = scratch.targets.data();
    uint64_t* reached = scratch.reached.data();
    int64_t arrived = 0;
    grown = 0;
    for (size_t v = 0; v < nodes; ++v) {
        uint64_t* fresh = arriving + v * lane_words;
        uint64_t* seen = reached + v * lane_words;
        uint64_t missing = 0;
        for (int w = 0; w < lane_words; ++w) missing |= batch[w] & ~seen[w];
        Lanes from_neighbours = {};
        if (missing != 0) {  // else every source of the batch is here already
            for (int32_t k = offsets[v]; k < offsets[v + 1]; ++k) {
                const uint64_t* from = frontier + as_size(targets[k]) * lane_words;
                for (int w = 0; w < lane_words; ++w) from_neighbours[w] |= from[w];
            }
        }
        for (int w = 0; w < lane_words; ++w) {
            const uint64_t found = from_neighbours[w] & ~seen[w];
            fresh[w] = found;
            seen[w] |= found;
            grown |= found;
            arrived += std::popcount(found);
        }
    }
    return arrived;
}

// The searches from `width` sources at once, source s being source(base + s); adds the ordered
// pairs found at each distance to the counts.
template <class Source>
void search_batch(DescribeScratch& scratch, size_t nodes, int base, int width,
                  const Source& source) {
    const size_t level_stride = nodes * lane_words;
    uint64_t* reached = scratch.reached.data();
    std::vector<int64_t>& counts = scratch.geodesic_counts;
    Lanes batch = {};
    for (int s = 0; s < width; ++s) batch[s >> 6] |= uint64_t{1} << (s & 63);
    // Level 0: each source of the batch has reached itself.
    uint64_t* seeds = scratch.arrivals.data();
    std::fill(reached, reached + level_stride, 0);
    std::fill(seeds, seeds + level_stride, 0);
    for (int s = 0; s < width; ++s) {
        const size_t at = as_size(source(base + s)) * lane_words + as_size(s >> 6);
        reached[at] = seeds[at] = uint64_t{1} << (s & 63);
    }
    for (int32_t level = 1;; ++level) {
        const uint64_t* frontier =
            scratch.arrivals.data() + as_size((level - 1) % held_levels) * level_stride;
        uint64_t* arriving = scratch.arrivals.data() + as_size(level % held_levels) * level_stride;
        uint64_t grown = 0;
        counts[as_size(level)] += next_level(scratch, nodes, batch, frontier, arriving, grown);
        if (grown == 0) break;
    }
}

}  // namespace

template <class G>
void geodesics(const G& graph, DescribeScratch& scratch) {
    const int n = graph.node_count;
    const size_t nodes = as_size(n);
    list_neighbours(graph, scratch);
    scratch.reached.resize(nodes * lane_words);
    scratch.arrivals.resize(as_size(held_levels) * nodes * lane_words);
    // Ordered pairs by distance while searching; halved into unordered pairs at the end.
    std::vector<int64_t>& counts = scratch.geodesic_counts;
    counts.assign(nodes + 1, 0);

    // All sources, or on a large network an evenly spread sample of them.
    const int sources = geodesic_sources(n);
    const auto source = [&](int k) {
        return sources == n ? k : static_cast<int>(int64_t{k} * n / sources);
    };
    for (int base = 0; base < sources; base += batch_sources)
        search_batch(scratch, nodes, base, std::min(batch_sources, sources - base), source);

    counts[0] = 0;  // the diagonal, written as level 0
    int64_t found_pairs = 0;
    for (size_t d = 1; d < nodes; ++d) {
        if (sources == n) {
            counts[d] /= 2;  // each pair was met once from either end
        } else {
            // Pairs met from the sample, scaled to the pairs met from all n sources, halved.
            counts[d] = std::llround(static_cast<double>(counts[d]) * n / (2.0 * sources));
        }
        found_pairs += counts[d];
    }
    counts[nodes] = int64_t{n} * (n - 1) / 2 - found_pairs;
    scratch.giant_size = largest_component_size(graph, scratch);
}

template <class G>
int32_t largest_component_size(const G& graph, DescribeScratch& scratch) {
    // Labels components by a walk over the neighbour lists: O(n + E), where reading the
    // component off the distance matrix would take n^2 steps.
    const size_t nodes = as_size(graph.node_count);
    scratch.visited.assign(nodes, 0);
    scratch.stack.resize(nodes);
    int32_t largest = 0;
    for (size_t start = 0; start < nodes; ++start) {
        if (scratch.visited[start] != 0) continue;
        scratch.visited[start] = 1;
        size_t top = 0;
        scratch.stack[top++] = static_cast<int32_t>(start);
        int32_t size = 0;
        while (top > 0) {
            const int32_t v = scratch.stack[--top];
            ++size;
            for (const int32_t u : graph.neighbours_of(v)) {
                if (scratch.visited[as_size(u)] == 0) {
                    scratch.visited[as_size(u)] = 1;
                    scratch.stack[top++] = u;
                }
            }
        }
        largest = std::max(largest, size);
    }
    return largest;
}

GeodesicQuartiles geodesic_quartiles(const std::vector<int64_t>& counts) {
    int64_t pairs = 0;
    for (const int64_t c : counts) pairs += c;
    // Share q = numerator / 4 is met when 4 x (pairs within g) >= numerator x pairs: exact in
    // integers, so a quartile falling exactly on a boundary is never missed by rounding.
    int32_t found[3] = {0, 0, 0};
    bool done[3] = {false, false, false};
    int64_t within = 0;
    for (size_t g = 0; g < counts.size(); ++g) {
        within += counts[g];
        for (int q = 0; q < 3; ++q) {
            if (!done[q] && 4 * within >= int64_t{q + 1} * pairs) {
                found[q] = static_cast<int32_t>(g);
                done[q] = true;
            }
        }
    }
    return {found[0], found[1], found[2]};
}

GeodesicQuartiles geodesic_quartiles(const DescribeScratch& scratch) {
    return geodesic_quartiles(scratch.geodesic_counts);
}

int geodesic_sources(int n) { return n > all_pairs_limit ? sampled_sources : n; }

template void geodesics(const Graph&, DescribeScratch&);
template void geodesics(const SparseGraph&, DescribeScratch&);
template int32_t largest_component_size(const Graph&, DescribeScratch&);
template int32_t largest_component_size(const SparseGraph&, DescribeScratch&);

}  // namespace vexa
