#pragma once
// The few compiler extensions the engine uses, behind names that build with every compiler
// that targets Windows or POSIX: where one is missing, the hint is dropped and the code stays
// the same.

#if defined(_MSC_VER) && !defined(__clang__)
#include <xmmintrin.h>
#endif

// Checks a printf-style format against its arguments at compile time. MinGW's runtime is
// built with the C99 formats (%zu, %lld), so the GNU archetype is the right one there too.
#if defined(__MINGW32__)
#define VEXA_PRINTF_FORMAT(format_index, first_argument) \
    __attribute__((format(gnu_printf, format_index, first_argument)))
#elif defined(__GNUC__) || defined(__clang__)
#define VEXA_PRINTF_FORMAT(format_index, first_argument) \
    __attribute__((format(printf, format_index, first_argument)))
#else
#define VEXA_PRINTF_FORMAT(format_index, first_argument)
#endif

namespace vexa {

// Asks for the cache line at `address` ahead of a scan that will read it. Only a hint: it
// never faults and changes no result. On x86 it is written as an instruction the compiler must
// keep: GCC drops __builtin_prefetch calls whose address comes from loads inside a function that
// does nothing else (a store's prefetch_dyad, say), which silently removes the whole hint.
inline void prefetch(const void* address) {
#if (defined(__GNUC__) || defined(__clang__)) && (defined(__x86_64__) || defined(__i386__))
    __asm__ volatile("prefetcht0 %0" : : "m"(*static_cast<const char*>(address)));
#elif defined(__GNUC__) || defined(__clang__)
    __builtin_prefetch(address);
#elif defined(_MSC_VER) && (defined(_M_X64) || defined(_M_IX86))
    _mm_prefetch(static_cast<const char*>(address), _MM_HINT_T0);
#else
    (void)address;
#endif
}

}  // namespace vexa
