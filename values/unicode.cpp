#include "values/unicode.hpp"

#include <algorithm>

#include "values/text.hpp"

namespace tamo::values {
namespace {

bool isAsciiText(std::string_view text) {
  return std::ranges::all_of(text, isAscii);
}

}  // namespace

/// Bytes that are no UTF-8 have no characters to take apart, so they equal their own kind alone. Equal bytes are
/// answered first, and texts that are ASCII both, which have one spelling each: they need no library. One that is not may
/// be equal to one that is: the sign for kelvin is taken apart into the letter K.
bool canonicallyEqual(std::string_view left, std::string_view right) {
  if (left == right) return true;
  if (isAsciiText(left) && isAsciiText(right)) return false;
  if (!isUtf8(left) || !isUtf8(right)) return false;
  return decomposed(left) == decomposed(right);
}

}  // namespace tamo::values
