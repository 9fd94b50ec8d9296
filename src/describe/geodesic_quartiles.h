#pragma once
// Geodesic quartiles from a distribution of pair distances, for either network kind.

#include <cstdint>
#include <vector>

namespace vexa {

struct GeodesicQuartiles {
    int32_t g25 = 0;
    int32_t g50 = 0;
    int32_t g75 = 0;
};

// G_q = the smallest distance g such that at least a share q of all pairs lie at distance g
// or less, a pair without a path counting as distance n. `counts` has n + 1 entries: pairs at
// distance d for d = 1 .. n-1, pairs without a path at n, entry 0 unused. With no pairs at
// all every quartile is 0.
GeodesicQuartiles geodesic_quartiles(const std::vector<int64_t>& counts);

}  // namespace vexa
