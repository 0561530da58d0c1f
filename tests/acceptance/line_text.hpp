#pragma once

#include <string>
#include <vector>

#include "acceptance/log_line.hpp"

namespace tamo::acceptance {

/// The lines as the report keeps them: "TIME pid N LEVEL TEXT   [public public private]", one each, with the
/// time in UTC. A line feed in a text is written "\n".
[[nodiscard]] std::string lineText(const std::vector<Line>& lines);

/// Texts one below the other, each with its line feed.
[[nodiscard]] std::string joined(const std::vector<std::string>& texts);

}  // namespace tamo::acceptance
