#pragma once
// An allocator for the large n x n arrays of the network stores. Reads of these arrays are
// scattered (the shared partners of a dyad's neighbours), so on large networks nearly every
// read would also miss the address translation cache; backing them with 2 MB pages where the
// system offers them removes most of those misses. Small arrays use the ordinary heap.

#include <cstddef>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace vexa {

template <typename T>
struct LargeAllocator {
    using value_type = T;
    static constexpr std::size_t page = std::size_t{2} << 20;

    LargeAllocator() noexcept = default;
    template <typename U>
    LargeAllocator(const LargeAllocator<U>&) noexcept {}

    T* allocate(std::size_t count) {
        const std::size_t bytes = count * sizeof(T);
        if (bytes < page) return static_cast<T*>(::operator new(bytes));
        const std::size_t rounded = (bytes + page - 1) / page * page;
        // Aligned operator new rather than aligned_alloc, which the Windows runtimes lack.
        void* memory = ::operator new (rounded, std::align_val_t{page});
#if defined(__linux__) && defined(MADV_HUGEPAGE)
        madvise(memory, rounded, MADV_HUGEPAGE);  // advice only: failure leaves ordinary pages
#endif
        return static_cast<T*>(memory);
    }

    void deallocate(T* memory, std::size_t count) noexcept {
        if (count * sizeof(T) < page) {
            ::operator delete(memory);
        } else {
            ::operator delete (memory, std::align_val_t{page});
        }
    }

    template <typename U>
    bool operator==(const LargeAllocator<U>&) const noexcept {
        return true;
    }
};

}  // namespace vexa
