#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "acceptance/log_line.hpp"

/// What `log show --style ndjson` gives. Pure.
namespace tamo::acceptance {

/// The line; absent for what is none, such as the count at the end.
[[nodiscard]] std::optional<Line> lineOfUnifiedLog(std::string_view object);

/// Every line of the text, by time.
[[nodiscard]] std::vector<Line> linesOfUnifiedLog(std::string_view text);

/// "2026-11-21 23:00:00.123456+0100" in microseconds since 1970; absent for anything else.
[[nodiscard]] std::optional<std::int64_t> unifiedTime(const std::string& text);

}  // namespace tamo::acceptance
