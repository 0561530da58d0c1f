#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tamo::values {

/// One value of a property list.
struct PropertyList {
  using Array = std::vector<PropertyList>;
  using Dictionary = std::map<std::string, PropertyList>;
  /// A date, data or a reference: nothing that this system reads.
  struct Other {};

  /// Unsigned holds only the integers above the signed range.
  std::variant<Other, bool, std::int64_t, std::uint64_t, double, std::string, Array, Dictionary> value;

  [[nodiscard]] const std::string* text() const { return std::get_if<std::string>(&value); }
  [[nodiscard]] const Array* array() const { return std::get_if<Array>(&value); }
  [[nodiscard]] const Dictionary* dictionary() const { return std::get_if<Dictionary>(&value); }
  /// The entry of a dictionary; null when this is none or has no such key.
  [[nodiscard]] const PropertyList* entry(const std::string& key) const;
};

/// A number that is exactly a signed 64-bit integer: an integer in range, or a real without a fraction. A
/// boolean is another kind, not a number.
[[nodiscard]] std::optional<std::int64_t> exactInt64(const PropertyList& list);

/// Reads an XML or binary property list. Absent for anything else, and past the limits of
/// property_list_limits.hpp: one wrong number or date makes the whole list unreadable. A key that a dictionary
/// has twice keeps its last value in XML and its first in the binary form.
///
/// Each backend brings its own reader. What the stage's reads, a Mac's reads as the same; one suite holds both
/// to that. A Mac's reads more, as its system does: the old ASCII form, in which any bare word is a text; a
/// value without <plist> around it, and one with anything behind it; a key in the place of a value; other
/// encodings; characters that XML forbids, and a byte A9 as U+FFFD; all that binary lists can hold. Another
/// suite says where the stage's gives up. Any thread.
[[nodiscard]] std::optional<PropertyList> readPropertyList(std::string_view bytes);

}  // namespace tamo::values
