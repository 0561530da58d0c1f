#pragma once

#include <optional>
#include <string>

#include "platform/property_list.hpp"

/// The numbers of an XML property list, read as macOS reads them. Pure functions, any thread.
namespace tamo::stage {

/// The text of an <integer>: white space, a sign, white space, then decimal digits or "0x" and hexadecimal
/// ones. Leading zeros make no octal number. Absent for any other text and for a value beyond 64 bits; white
/// space at the end is such another text.
[[nodiscard]] std::optional<platform::PropertyList> integerValue(std::string_view text);

/// The text of a <real>: a decimal number with or without fraction and exponent, or "nan", "inf" or
/// "infinity" in any letter case. Absent for any other text.
[[nodiscard]] std::optional<platform::PropertyList> realValue(const std::string& text);

}  // namespace tamo::stage
