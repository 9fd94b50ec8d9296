#pragma once
// The dyads of an observed network whose tie was not observed: a respondent who dropped out, a
// question left unanswered. Such a dyad is neither a tie nor an observed absence; estimation
// and goodness of fit draw it from the model given the rest of the network. A dyad that the
// constraint network fixes stays as observed (absent) and is not missing.

#include <algorithm>
#include <cstdint>
#include <vector>

#include "network/dyad_mask.h"
#include "network/network_kind.h"

namespace vexa {

struct MissingDyads {
    NetworkKind kind = NetworkKind::graph;
    std::vector<uint64_t> keys;  // sorted, once each: i << 32 | j, a graph's with i < j

    static uint64_t key(int i, int j) {
        return uint64_t{static_cast<uint32_t>(i)} << 32 | static_cast<uint32_t>(j);
    }
    static int first(uint64_t key) { return static_cast<int>(key >> 32); }
    static int second(uint64_t key) { return static_cast<int>(key & 0xffffffffu); }

    bool empty() const { return keys.empty(); }
    int64_t count() const { return static_cast<int64_t>(keys.size()); }
    bool contains(int i, int j) const {
        if (kind == NetworkKind::graph && i > j) std::swap(i, j);
        return std::binary_search(keys.begin(), keys.end(), key(i, j));
    }
};

// The missing dyads a reader noted (in any order, repeats allowed), less those the mask fixes.
MissingDyads missing_dyads_of(std::vector<uint64_t> noted, NetworkKind kind, const DyadMask* mask);

// The dyads of n nodes of the kind: unordered pairs for a graph, ordered for a digraph.
inline double dyad_count(int n, NetworkKind kind) {
    const double pairs = static_cast<double>(n) * (n - 1.0);
    return kind == NetworkKind::graph ? pairs / 2.0 : pairs;
}

}  // namespace vexa
