#pragma once
// The engine's random generator and where its seeds come from.
//
// The generator is the classic 32-bit linear congruential one that the engine was first
// built with (state = state * 214013 + 2531011 mod 2^32, draws are bits 16..30), so that a
// given seed always gives the same draws on every platform. It is a value owned by the run,
// never the C library's rand(), so a host process keeps its own generator untouched.

#include <cstdint>
#include <ctime>

namespace vexa {

struct Rng {
    uint32_t state = 1;

    void seed(uint32_t value) { state = value; }

    // 0 .. 32767
    int next() {
        state = state * 214013u + 2531011u;
        return static_cast<int>((state >> 16) & 0x7fffu);
    }
    // A node drawn as draw mod n (n > 0).
    int node(int n) { return next() % n; }
    // A uniform number in [0, 1], both ends possible.
    double unit() { return next() / 32767.0; }
};

// Every place that seeds from the clock asks this instead. By default it answers the
// current time in seconds; with a fixed base N, the k-th seeding of the run answers N + k,
// so a run is reproducible and its reseeds still differ.
struct SeedSource {
    bool fixed = false;
    uint32_t base = 0;
    uint32_t seedings = 0;

    uint32_t next_seed() {
        if (fixed) return base + seedings++;
        ++seedings;
        return static_cast<uint32_t>(std::time(nullptr));
    }
    void reseed(Rng& rng) { rng.seed(next_seed()); }
};

}  // namespace vexa
