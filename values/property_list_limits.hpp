#pragma once

#include <cstddef>

namespace tamo::values {

/// How many containers may stand one in another. Reading, copying and destroying a list take stack for each.
inline constexpr std::size_t deepestNesting = 512;

/// How many values a list may have in all. A binary list can name one array a thousand times, and that array
/// another a thousand times, and so grow without bound out of a few bytes. The largest of sixty real ones
/// had 608.
inline constexpr std::size_t mostValues = 10'000;

}  // namespace tamo::values
