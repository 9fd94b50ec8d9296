#pragma once
// The distributions a goodness-of-fit plot shows of one network, as counts by value: what a
// host takes of each sample in memory, and what the HTML report draws.

#include <cstdint>
#include <vector>

namespace vexa {

struct NetworkProfile {
    std::vector<int32_t> degree;     // entry d: nodes of degree d (a digraph: out-degree)
    std::vector<int32_t> in_degree;  // a digraph: nodes of in-degree d; a graph: empty
    // Pairs at distance d for d = 1 .. n-1, pairs without a path at n, entry 0 unused (a graph
    // counts unordered pairs, a digraph ordered ones).
    std::vector<int64_t> geodesics;
    std::vector<double> triads;  // a digraph's triad census, in census order; a graph: empty
};

// The profile without the zeros that carry nothing: the degrees beyond the largest, the
// distances beyond the longest path. The geodesics keep their last entry, the pairs without a
// path, after the longest distance; read them by the same rule as before (distances 1 to
// size - 2, then the pairs without a path). Keeps a large network's many samples small.
inline NetworkProfile trimmed(NetworkProfile profile) {
    const auto trim = [](auto& counts) {
        while (!counts.empty() && counts.back() == 0) counts.pop_back();
    };
    trim(profile.degree);
    trim(profile.in_degree);
    if (profile.geodesics.size() >= 2) {
        const int64_t unreached = profile.geodesics.back();
        profile.geodesics.pop_back();
        while (profile.geodesics.size() > 1 && profile.geodesics.back() == 0)
            profile.geodesics.pop_back();
        profile.geodesics.push_back(unreached);
    }
    return profile;
}

}  // namespace vexa
