#pragma once

#include <optional>
#include <string_view>

#include "values/property_list.hpp"

namespace tamo::values::open {

/// Reads a binary property list. Absent for one that is cut off, damaged, or refused by binaryListIsSound.
/// Any thread.
[[nodiscard]] std::optional<PropertyList> readBinaryPropertyList(std::string_view bytes);

}  // namespace tamo::values::open
