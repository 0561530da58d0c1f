#pragma once

#include <string>

#include "values/property_list.hpp"

/// Writes property lists, for the bundles that a stage holds. Pure.
namespace tamo::stage {

/// The XML form. Stops the process (fatal) on a date, data or a reference, which the stage writes nowhere.
[[nodiscard]] std::string xmlPropertyList(const values::PropertyList& list);

/// The binary form of the same.
[[nodiscard]] std::string binaryPropertyList(const values::PropertyList& list);

}  // namespace tamo::stage
