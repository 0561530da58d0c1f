#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// The three places where text is more than bytes. Each backend brings its library; one suite holds them to
/// the same answers. Invalid UTF-8 is compared and kept byte for byte, never an error. Any thread.
namespace tamo::platform {

/// Lower case by Unicode's full rules, independent of the locale. One is left open: a capital sigma at the
/// end of a word becomes the small sigma of either form, so compare only what both sides had lower-cased
/// here.
[[nodiscard]] std::string lowercased(std::string_view text);

/// Equal under canonical equivalence: "e" with a combining accent equals the precomposed letter.
[[nodiscard]] bool canonicallyEqual(std::string_view left, std::string_view right);

/// The number of characters as a person sees them (extended grapheme clusters). A byte that is no UTF-8 is
/// one by itself.
[[nodiscard]] std::size_t characterCount(std::string_view text);

/// `text` without its first `count` characters; empty when it has no more than that.
[[nodiscard]] std::string_view droppingCharacters(std::string_view text, std::size_t count);

}  // namespace tamo::platform
