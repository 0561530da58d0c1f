#pragma once

#include <optional>
#include <string_view>

#include "platform/property_list.hpp"

namespace tamo::stage {

/// Reads a property list in XML: one <plist> with one value in it. Absent for everything that is not well
/// formed, for entities other than XML's own, for unknown elements, and for text between elements. What
/// stands in a date or in data is not looked at. Any thread.
[[nodiscard]] std::optional<platform::PropertyList> readXmlPropertyList(std::string_view bytes);

}  // namespace tamo::stage
