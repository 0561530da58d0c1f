#include "values/property_list.hpp"

#include <cmath>

namespace tamo::values {

const PropertyList* PropertyList::entry(const std::string& key) const {
  const auto* entries = dictionary();
  if (entries == nullptr) return nullptr;
  const auto found = entries->find(key);
  return found == entries->end() ? nullptr : &found->second;
}

/// A real without a fraction counts, as it does for a Mac's numbers. A text that looks like a number is none.
std::optional<std::int64_t> exactInt64(const PropertyList& list) {
  if (const auto* integer = std::get_if<std::int64_t>(&list.value)) return *integer;
  const auto* real = std::get_if<double>(&list.value);
  if (real == nullptr) return std::nullopt;
  // The largest signed integer is no double, but the number above it is; so the range is open there. What is no number
  // at all is in no range.
  constexpr double twoTo63 = 9223372036854775808.0;
  const bool inRange = *real >= -twoTo63 && *real < twoTo63;
  if (!inRange || std::trunc(*real) != *real) return std::nullopt;
  return static_cast<std::int64_t>(*real);
}

}  // namespace tamo::values
