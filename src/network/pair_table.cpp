#include "network/pair_table.h"

#include <algorithm>
#include <bit>

namespace vexa {

void PairTable::reserve(size_t expected) {
    size_t capacity = 16;
    while (7 * capacity < 10 * expected + 10) capacity *= 2;
    if (capacity > slots_.size()) rehash(capacity);
}

void PairTable::rehash(size_t capacity) {
    std::vector<Slot> old(capacity, Slot{empty, 0});
    old.swap(slots_);
    mask_ = capacity - 1;
    shift_ = 64 - std::countr_zero(capacity);
    for (const Slot& slot : old) {
        if (slot.key == empty) continue;
        size_t s = home(slot.key);
        while (slots_[s].key != empty) s = (s + 1) & mask_;
        slots_[s] = slot;
    }
}

int32_t PairTable::add(uint64_t key, int32_t delta) {
    // Held at most 70% full: linear probing stays short.
    if (10 * (size_ + 1) > 7 * slots_.size()) rehash(std::max<size_t>(16, 2 * slots_.size()));
    size_t s = home(key);
    while (slots_[s].key != key && slots_[s].key != empty) s = (s + 1) & mask_;
    if (slots_[s].key == empty) {
        slots_[s] = Slot{key, delta};
        ++size_;
        return delta;
    }
    const int32_t value = slots_[s].value + delta;
    if (value != 0) {
        slots_[s].value = value;
        return value;
    }
    // Backward-shift deletion: entries later in the probe run move up into the hole when
    // their home lies at or before it.
    --size_;
    size_t hole = s;
    for (size_t next = (hole + 1) & mask_; slots_[next].key != empty; next = (next + 1) & mask_) {
        const size_t h = home(slots_[next].key);
        if (((next - h) & mask_) >= ((next - hole) & mask_)) {
            slots_[hole] = slots_[next];
            hole = next;
        }
    }
    slots_[hole] = Slot{empty, 0};
    return 0;
}

}  // namespace vexa
