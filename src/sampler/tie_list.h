#pragma once
// The ties a chain may remove, kept in an array so that one can be drawn uniformly, with an
// open-addressing index from tie to position so that a tie is added or removed in O(1). Used
// by the tie/no-tie proposal. Keys are dyads: (i, j) with i < j for a graph, ordered for a
// digraph. The index grows by doubling when it fills, so after a chain has seen its largest
// number of ties, nothing allocates.

#include <algorithm>
#include <cstdint>
#include <vector>

namespace vexa {

class TieList {
public:
    // Room for `expected` ties before the first growth.
    explicit TieList(size_t expected = 0) { reserve(expected); }

    static uint64_t key(int i, int j) { return uint64_t{static_cast<uint32_t>(i)} << 32 | static_cast<uint32_t>(j); }
    static int first(uint64_t key) { return static_cast<int>(key >> 32); }
    static int second(uint64_t key) { return static_cast<int>(key & 0xffffffffu); }

    size_t size() const { return ties_.size(); }
    uint64_t at(size_t k) const { return ties_[k]; }
    bool contains(uint64_t key) const { return find(key) != npos; }

    void clear() {
        ties_.clear();
        std::fill(slots_.begin(), slots_.end(), empty);
    }

    void add(uint64_t key) {
        if (4 * (ties_.size() + 1) > 3 * slots_.size()) grow();
        size_t s = home(key);
        while (slots_[s] != empty) s = (s + 1) & mask_;
        slots_[s] = static_cast<uint32_t>(ties_.size());
        ties_.push_back(key);
    }

    // Removes the tie (it must be present): the last tie takes its place in the array.
    void remove(uint64_t key) {
        const size_t s = find(key);
        const uint32_t position = slots_[s];
        erase_slot(s);
        const size_t last = ties_.size() - 1;
        if (position != last) {
            slots_[find(ties_[last])] = position;
            ties_[position] = ties_[last];
        }
        ties_.pop_back();
    }

    void reserve(size_t expected) {
        size_t capacity = 16;
        while (3 * capacity < 4 * expected + 4) capacity *= 2;
        if (capacity > slots_.size()) rehash(capacity);
        ties_.reserve(expected);
    }

private:
    static constexpr uint32_t empty = 0xffffffffu;
    static constexpr size_t npos = ~size_t{0};

    size_t home(uint64_t key) const {
        uint64_t z = key * 0x9e3779b97f4a7c15ull;
        return static_cast<size_t>(z >> 32) & mask_;
    }
    size_t find(uint64_t key) const {
        if (slots_.empty()) return npos;
        for (size_t s = home(key);; s = (s + 1) & mask_) {
            if (slots_[s] == empty) return npos;
            if (ties_[slots_[s]] == key) return s;
        }
    }

    // Backward-shift deletion: later entries of the probe run move up, so no tombstones build up.
    void erase_slot(size_t s) {
        size_t hole = s;
        for (size_t next = (s + 1) & mask_; slots_[next] != empty; next = (next + 1) & mask_) {
            const size_t want = home(ties_[slots_[next]]);
            // Move the entry into the hole unless its home lies cyclically within (hole, next].
            const bool stays = hole <= next ? (want > hole && want <= next) : (want > hole || want <= next);
            if (!stays) {
                slots_[hole] = slots_[next];
                hole = next;
            }
        }
        slots_[hole] = empty;
    }

    void grow() { rehash(slots_.empty() ? 16 : 2 * slots_.size()); }

    void rehash(size_t capacity) {
        slots_.assign(capacity, empty);
        mask_ = capacity - 1;
        for (size_t k = 0; k < ties_.size(); ++k) {
            size_t s = home(ties_[k]);
            while (slots_[s] != empty) s = (s + 1) & mask_;
            slots_[s] = static_cast<uint32_t>(k);
        }
    }

    std::vector<uint64_t> ties_;
    std::vector<uint32_t> slots_;  // position in ties_, or empty
    size_t mask_ = 0;
};

}  // namespace vexa
