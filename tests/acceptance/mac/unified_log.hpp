#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "acceptance/log_line.hpp"

/// What `log show --style ndjson` gives. Pure.
namespace tamo::acceptance {

/// The line; absent for what is none, such as the count at the end, and for one whose time has no zone.
[[nodiscard]] std::optional<Line> lineOfUnifiedLog(std::string_view object);

/// Every line of the text, by time.
[[nodiscard]] std::vector<Line> linesOfUnifiedLog(std::string_view text);

}  // namespace tamo::acceptance
