#pragma once

#include <string>
#include <string_view>

/// The places where text is more than bytes. Each backend brings its library for the first two; one suite holds them
/// to the same answers. Invalid UTF-8 is compared and kept byte for byte, never an error. Any thread.
namespace tamo::values {

/// Lower case by Unicode's full rules, each character by itself: neither the locale nor what stands beside it
/// matters, so a capital sigma becomes the common small one at the end of a word as well.
[[nodiscard]] std::string lowercased(std::string_view text);

/// Every character taken apart, and its marks put in order: two texts are canonically equal when they are the same
/// afterwards. `text` is UTF-8.
[[nodiscard]] std::string decomposed(std::string_view text);

/// Equal under canonical equivalence: "e" with a combining accent equals the precomposed letter. Nothing else
/// is overlooked, a byte order mark in front of a text neither.
[[nodiscard]] bool canonicallyEqual(std::string_view left, std::string_view right);

}  // namespace tamo::values
