#include "values/unicode.hpp"

#include "values/text.hpp"

namespace tamo::values {

/// Bytes that are no UTF-8 have no characters to take apart, so they equal their own kind alone. Equal bytes are
/// answered first: they need no library.
bool canonicallyEqual(std::string_view left, std::string_view right) {
  if (left == right) return true;
  if (!isUtf8(left) || !isUtf8(right)) return false;
  return decomposed(left) == decomposed(right);
}

}  // namespace tamo::values
