#pragma once

#include <string_view>
#include <vector>

#include "exhaustion/print_description.hpp"

namespace tamo::exhaustion {

/// What the lines of any text are. The views are into `text`.
[[nodiscard]] std::vector<Line> linesOf(std::string_view text);

/// Of the same make, for what is read of other texts: a text without the blanks at its ends, and a decimal
/// integer.
[[nodiscard]] std::string_view describedStripped(std::string_view text);
[[nodiscard]] std::optional<std::int64_t> describedInt64(std::string_view text);

}  // namespace tamo::exhaustion
