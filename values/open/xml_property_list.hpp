#pragma once

#include <optional>
#include <string_view>

#include "values/property_list.hpp"

namespace tamo::values::open {

/// Reads a property list in XML: one <plist> with one value in it. Absent for everything that is not well
/// formed, for declarations within the document, for entities other than XML's own, for unknown elements, and
/// for text between elements. Absent also for what is good XML and no list on macOS: a comment, an
/// instruction, a reference or a literal part where macOS looks for none, a bracket in an attribute or in the
/// name of the document type, a date of another form. Any thread.
[[nodiscard]] std::optional<PropertyList> readXmlPropertyList(std::string_view bytes);

}  // namespace tamo::values::open
