#pragma once

#include <optional>
#include <string_view>

#include "values/property_list.hpp"

namespace tamo::stage {

/// Reads a binary property list. Absent for one that is cut off, damaged, or refused by binaryListIsSound.
/// Any thread.
[[nodiscard]] std::optional<platform::PropertyList> readBinaryPropertyList(std::string_view bytes);

}  // namespace tamo::stage
