#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/log_format.hpp"

/// A log line as text. Any thread.
namespace tamo::platform {

[[nodiscard]] LogLevel levelOf(LogFormat format);
[[nodiscard]] std::string_view formatText(LogFormat format);

/// A piece of a rendered line: what stands between the placeholders, or what an argument became.
struct LogPiece {
  LogPart part;
  std::string text;
};

/// The line cut at its placeholders, with each argument's mark. Stops the process (fatal) when the arguments
/// do not fit the format, which no caller can cause with data.
[[nodiscard]] std::vector<LogPiece> pieces(const LogLine& line);

/// The line as the system's log shows it to a person: an argument that is private reads "<private>".
[[nodiscard]] std::string shownText(const LogLine& line);

}  // namespace tamo::platform
