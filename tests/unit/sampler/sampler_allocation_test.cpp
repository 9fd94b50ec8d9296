// A sampler step must not touch the heap: the chains run billions of steps. The ordinary
// operator new of this test program is replaced by one that counts its calls; the counting is
// left out of the sanitizer build, whose runtime owns the allocator, and of the build that
// recounts the store after every accepted step (that recount allocates on purpose).
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <vector>

#include "effects/graph_catalogue.h"
#include "effects/model.h"
#include "sampler/graph_sampler.h"

#if defined(__SANITIZE_ADDRESS__) || defined(VEXA_CHECK_BOOKKEEPING)
#define VEXA_COUNT_ALLOCATIONS 0
#else
#define VEXA_COUNT_ALLOCATIONS 1
#endif

#if VEXA_COUNT_ALLOCATIONS
namespace {
std::atomic<long> allocation_count{0};
}
void* operator new(std::size_t size) {
    allocation_count.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
#endif

namespace vexa {
namespace {

TEST(GraphSampler, StepsAllocateNothingOnceTheChainHasSettled) {
#if !VEXA_COUNT_ALLOCATIONS
    GTEST_SKIP() << "allocations are not counted in this build";
#else
    // Every effect the chain carries, so that every change function and every store update
    // is exercised.
    Model model = empty_model(NetworkKind::graph);
    for (int r = 0; r < graph_effect_count; ++r) {
        const auto effect = static_cast<GraphEffect>(r);
        model.structural[static_cast<size_t>(r)].slot = model.structural_included++;
        model.structural[static_cast<size_t>(r)].lambda = graph_row(effect).lambda_default;
    }
    const std::vector<Term> terms = graph_terms(model);
    const int p = model.structural_included;
    std::vector<double> parameters(static_cast<size_t>(p), 0.0);
    parameters[0] = -1.0;
    parameters[static_cast<size_t>(GraphEffect::at)] = 0.1;
    Rng rng;
    SeedSource seeds;
    seeds.fixed = true;
    seeds.base = 8;
    Graph g = random_graph(60, 150, p, 8, rng, seeds);
    compute_totals(g, terms);
    for (const bool fixed_edges : {false, true}) {
        GraphSampler sampler = make_graph_sampler(terms, p, 9999, fixed_edges, nullptr);
        // Neighbour lists grow to the largest degree the chain visits, then keep their room.
        for (int s = 0; s < 100000; ++s) sampler_step(g, sampler, parameters.data(), rng);
        const long before = allocation_count.load();
        int accepted = 0;
        for (int s = 0; s < 20000; ++s) accepted += sampler_step(g, sampler, parameters.data(), rng);
        EXPECT_EQ(allocation_count.load() - before, 0) << (fixed_edges ? "swaps" : "toggles");
        EXPECT_GT(accepted, 100) << (fixed_edges ? "swaps" : "toggles");
    }
#endif
}

}  // namespace
}  // namespace vexa
