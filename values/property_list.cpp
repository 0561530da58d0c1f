#include "values/property_list.hpp"

#include <cmath>

namespace tamo::values {
namespace {

/// Whether a number within the integers' bounds is one of them: from 2^53 on all are, because nothing is left for a
/// fraction. A call of the mathematical library would tell as well, and have it mapped by every process.
bool isWhole(double number) {
  constexpr double twoTo53 = 9007199254740992.0;
  return std::abs(number) >= twoTo53 || static_cast<double>(static_cast<std::int64_t>(number)) == number;
}

}  // namespace

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
  if (!inRange || !isWhole(*real)) return std::nullopt;
  return static_cast<std::int64_t>(*real);
}

}  // namespace tamo::values
