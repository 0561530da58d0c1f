#include "values/unicode.hpp"

#include "values/text.hpp"

namespace tamo::values {

bool canonicallyEqual(std::string_view left, std::string_view right) {
  if (left == right) return true;
  if (!isUtf8(left) || !isUtf8(right)) return false;
  return decomposed(left) == decomposed(right);
}

}  // namespace tamo::values
