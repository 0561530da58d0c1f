#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "values/property_list.hpp"

/// The numbers and dates of an XML property list, as macOS reads them. Pure functions, any thread.
namespace tamo::values::open {

/// The text of an <integer>: white space, a sign, white space, then decimal digits or "0x" and hexadecimal
/// ones. Leading zeros make no octal number. Absent for any other text and for a value beyond 64 bits; white
/// space at the end is such another text.
[[nodiscard]] std::optional<PropertyList> integerValue(std::string_view text);

/// The text of a <real>: a decimal number with or without fraction and exponent, or "nan", "inf" or
/// "infinity" in any letter case. Absent for any other text.
[[nodiscard]] std::optional<PropertyList> realValue(const std::string& text);

/// Whether this is the text of a <date>: "2020-01-02T03:04:05Z" with any number of digits in the year and
/// perhaps a minus before it. Whether there is such a day is not looked at.
[[nodiscard]] bool isDate(std::string_view text);

}  // namespace tamo::values::open
