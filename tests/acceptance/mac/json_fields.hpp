#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tamo::acceptance {

/// The members of a JSON object on one line that are texts or numbers, by name: a text as what it says, in UTF-8, a
/// number as it stands. Members of other kinds are left out. Absent for what is no object. Pure.
[[nodiscard]] std::optional<std::map<std::string, std::string>> jsonFields(std::string_view object);

}  // namespace tamo::acceptance
