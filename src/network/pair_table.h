#pragma once
// A table of counts per pair of nodes, holding only the pairs whose count is not 0, so that it
// grows with the pairs that have something to count rather than with n^2. The sparse stores
// keep their pair counts (shared partners, two-paths) in it.

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "base/compiler.h"

namespace vexa {

// Counts kept per pair for the pairs whose count is not 0: an open-addressing hash table
// keyed by the pair (linear probing, backward-shift deletion, so no tombstones build up). A
// pair is unordered under key(a, b) (stored as a < b) or ordered under ordered_key(a, b).
class PairTable {
public:
    static uint64_t key(int a, int b) {
        if (a > b) std::swap(a, b);
        return ordered_key(a, b);
    }
    static uint64_t ordered_key(int a, int b) {
        return uint64_t{static_cast<uint32_t>(a)} << 32 | static_cast<uint32_t>(b);
    }

    // Room for `expected` pairs before the first growth.
    void reserve(size_t expected);
    size_t size() const { return size_; }
    size_t capacity() const { return slots_.size(); }
    double bytes() const { return static_cast<double>(slots_.capacity() * sizeof(Slot)); }

    int32_t get(uint64_t key) const {
        if (slots_.empty()) return 0;
        for (size_t s = home(key);; s = (s + 1) & mask_) {
            const Slot& slot = slots_[s];
            if (slot.key == key) return slot.value;
            if (slot.key == empty) return 0;
        }
    }
    // Asks for the home slot of a pair ahead of reading it.
    void prefetch(uint64_t key) const {
        if (!slots_.empty()) vexa::prefetch(&slots_[home(key)]);
    }
    // Adds delta to the pair's count and returns the new count; a pair reaching 0 leaves.
    int32_t add(uint64_t key, int32_t delta);

    // Calls fn(a, b, count) for every pair held (a < b for unordered keys), in table order.
    template <typename Fn>
    void for_each(Fn&& fn) const {
        for (const Slot& slot : slots_) {
            if (slot.key != empty) {
                fn(static_cast<int>(slot.key >> 32), static_cast<int>(slot.key & 0xffffffffu),
                   slot.value);
            }
        }
    }

private:
    struct Slot {
        uint64_t key;
        int32_t value;
    };
    static constexpr uint64_t empty = ~uint64_t{0};

    size_t home(uint64_t key) const {
        return static_cast<size_t>((key * 0x9e3779b97f4a7c15ull) >> shift_);
    }
    void rehash(size_t capacity);

    std::vector<Slot> slots_;
    size_t mask_ = 0;
    int shift_ = 64;
    size_t size_ = 0;
};

}  // namespace vexa
