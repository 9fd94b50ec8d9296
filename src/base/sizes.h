#pragma once
// Node numbers and counts are signed (32- and 64-bit, as the data model has them); container
// indices are size_t. One conversion, written once.

#include <cstddef>
#include <type_traits>

namespace vexa {

template <class Integer>
requires std::is_integral_v<Integer>
constexpr std::size_t as_size(Integer value) { return static_cast<std::size_t>(value); }

}  // namespace vexa
