#pragma once
// The engine's random generator and where its seeds come from.
//
// The generator is the classic 32-bit linear congruential one that the engine was first
// built with (state = state * 214013 + 2531011 mod 2^32, draws are bits 16..30), so that a
// given seed always gives the same draws on every platform. It is a value owned by the run,
// never the C library's rand(), so a host process keeps its own generator untouched.

#include <chrono>
#include <cstdint>

namespace vexa {

struct Rng {
    uint32_t state = 1;

    void seed(uint32_t value) { state = value; }

    // 0 .. 32767
    int next() {
        state = state * 214013u + 2531011u;
        return static_cast<int>((state >> 16) & 0x7fffu);
    }
    // A node drawn as draw mod n (n > 0). A draw has 15 bits, so beyond 32,768 nodes two draws
    // make one of 30 bits, and every node can be drawn.
    int node(int n) { return n <= 32768 ? next() % n : wide() % n; }
    // Exactly uniform on 0 .. n - 1 (n > 0): draws past the last whole multiple of n are
    // drawn again, so no value is favoured. Proposals whose acceptance ratio assumes uniform
    // draws need this; draw mod n favours the low values whenever n does not divide the range.
    int64_t uniform(int64_t n) {
        const int draws = n <= (int64_t{1} << 15) ? 1 : n <= (int64_t{1} << 30) ? 2 : 3;
        const int64_t range = int64_t{1} << (15 * draws);
        const int64_t limit = range - range % n;
        int64_t draw = 0;
        do {
            draw = 0;
            for (int k = 0; k < draws; ++k) draw = draw << 15 | next();
        } while (draw >= limit);
        return draw % n;
    }
    // 0 .. 2^30 - 1, from two draws.
    int wide() { return next() << 15 | next(); }
    // A uniform number in [0, 1], both ends possible.
    double unit() { return next() / 32767.0; }
    // A uniform number in [0, 1) of 30 bits, from two draws: the test of a Metropolis-Hastings
    // move, accepted when below its probability p. A single 15-bit draw would accept every
    // move with probability at least 1/32768 and misjudge small p by up to 1/(32768 p); with
    // 30 bits a move is accepted with probability within 2^-30 of p, whatever p is.
    double acceptance_uniform() { return wide() / 1073741824.0; }
};

// Draws nodes of an n-node network exactly as Rng::node(n) does, taking the remainder by two
// multiplications instead of a division: a sampler step draws two to four nodes, and a
// division costs as much as the rest of a cheap step. (x mod n = the high half of
// ((ceil(2^64 / n) x) mod 2^64) n, exact for every 32-bit x and n.)
struct NodeDraw {
    uint32_t n = 1;
    uint64_t magic = 0;

    static NodeDraw of(int nodes) {
        NodeDraw draw;
        draw.n = static_cast<uint32_t>(nodes);
        draw.magic = UINT64_MAX / draw.n + 1;
        return draw;
    }
    uint32_t remainder(uint32_t x) const {
#if defined(__SIZEOF_INT128__)
        __extension__ using Wide = unsigned __int128;
        return static_cast<uint32_t>((static_cast<Wide>(magic * x) * n) >> 64);
#else
        return x % n;
#endif
    }
    int operator()(Rng& rng) const {
        const int draw = n <= 32768u ? rng.next() : rng.wide();
        return static_cast<int>(remainder(static_cast<uint32_t>(draw)));
    }
};

// Every place that seeds the generator asks this. The k-th seeding of a run takes its seed from
// a hash of (base, k): the base is the run's fixed seed, or the clock read once when the run
// first seeds. Reseeds of one run, and runs of different bases, thus draw different streams;
// the same base repeats a run exactly. (Seeding from the clock at every reseed would repeat
// the stream for reseeds within one second, and the estimation's repeated runs exist to be
// independent tries.)
struct SeedSource {
    bool fixed = false;  // base set by the caller; otherwise read from the clock at first use
    uint32_t base = 0;
    uint32_t seedings = 0;

    uint32_t next_seed() {
        if (!fixed && seedings == 0) base = clock_base();
        return stream_seed(base, seedings++);
    }
    void reseed(Rng& rng) { rng.seed(next_seed()); }

    // The clock in nanoseconds, folded to 32 bits: runs started within one second differ too.
    static uint32_t clock_base() {
        const auto ticks =
            static_cast<uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
        return static_cast<uint32_t>(ticks ^ (ticks >> 32));
    }

    // A 64-bit mix of base and counter (the finaliser of a splitmix generator), folded to 32
    // bits: neighbouring bases and counters land far apart.
    static uint32_t stream_seed(uint32_t base_seed, uint32_t counter) {
        uint64_t z = (uint64_t{base_seed} << 32 | counter) + 0x9e3779b97f4a7c15ull;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ull;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebull;
        z ^= z >> 31;
        return static_cast<uint32_t>(z ^ (z >> 32));
    }
};

}  // namespace vexa
