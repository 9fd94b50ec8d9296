#pragma once
// Every node's list laid end to end in one array, for the sparse stores' work at once on a
// whole network (a reader's): a walk that jumps from list to list misses the cache once a list
// instead of twice (the list's header, then its entries), and can ask for the next lists ahead.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "base/compiler.h"

namespace vexa {

class FlatLists {
public:
    // A copy of list_of(v) for every node v.
    template <class ListOf>
    FlatLists(int n, ListOf&& list_of) : start_(static_cast<size_t>(n) + 1, 0) {
        for (size_t v = 0; v < static_cast<size_t>(n); ++v)
            start_[v + 1] = start_[v] + list_of(static_cast<int>(v)).size();
        nodes_.resize(start_.back());
        for (int v = 0; v < n; ++v) {
            const std::span<const int32_t> list = list_of(v);
            std::copy(list.begin(), list.end(), nodes_.data() + start_[static_cast<size_t>(v)]);
        }
    }

    // The lists a store would hold after add_edge or add_arc of every tie (from, to) in order:
    // `to` in the list of `from` when `forward`, `from` in the list of `to` when `backward`,
    // each list in the order of its ties, a repeated entry (a tie listed again, or an edge
    // listed both ways) left out as the store leaves it out.
    FlatLists(int n, std::span<const std::pair<int32_t, int32_t>> ties, bool forward, bool backward)
        : start_(static_cast<size_t>(n) + 1, 0) {
        const auto at = [](int32_t v) { return static_cast<size_t>(v); };
        for (const auto& [from, to] : ties) {
            if (forward) ++start_[at(from) + 1];
            if (backward) ++start_[at(to) + 1];
        }
        for (size_t v = 1; v < start_.size(); ++v) start_[v] += start_[v - 1];
        nodes_.resize(start_.back());
        std::vector<size_t> next(start_.begin(), start_.end() - 1);
        for (const auto& [from, to] : ties) {
            if (forward) nodes_[next[at(from)]++] = to;
            if (backward) nodes_[next[at(to)]++] = from;
        }
        drop_repeats();
    }

    std::span<const int32_t> of(int v) const {
        const size_t at = start_[static_cast<size_t>(v)];
        return {nodes_.data() + at, start_[static_cast<size_t>(v) + 1] - at};
    }
    // The entries above a of a sorted list.
    std::span<const int32_t> above(int v, int a) const {
        const std::span<const int32_t> list = of(v);
        return {std::upper_bound(list.begin(), list.end(), a), list.end()};
    }
    // Sorts every list.
    void sort_each() {
        for (size_t v = 0; v + 1 < start_.size(); ++v)
            std::sort(nodes_.begin() + static_cast<ptrdiff_t>(start_[v]),
                      nodes_.begin() + static_cast<ptrdiff_t>(start_[v + 1]));
    }
    void ask_for_start(int v) const { prefetch(&start_[static_cast<size_t>(v)]); }
    void ask_for_list(int v) const { prefetch(nodes_.data() + start_[static_cast<size_t>(v)]); }

private:
    // Keeps the first of equal entries of each list, closing up the array.
    void drop_repeats() {
        std::vector<uint8_t> seen(start_.size() - 1, 0);
        size_t kept = 0;
        size_t begin = 0;
        for (size_t v = 0; v + 1 < start_.size(); ++v) {
            const size_t end = start_[v + 1];
            start_[v] = kept;
            for (size_t k = begin; k < end; ++k) {
                const auto entry = static_cast<size_t>(nodes_[k]);
                if (seen[entry] != 0) continue;
                seen[entry] = 1;
                nodes_[kept++] = nodes_[k];
            }
            for (size_t k = start_[v]; k < kept; ++k) seen[static_cast<size_t>(nodes_[k])] = 0;
            begin = end;
        }
        start_.back() = kept;
        nodes_.resize(kept);
        nodes_.shrink_to_fit();
    }

    std::vector<size_t> start_;
    std::vector<int32_t> nodes_;
};

}  // namespace vexa
