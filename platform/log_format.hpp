#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// The lines that the system can log, and how their formats are read. Values; any thread.
namespace tamo::platform {

/// Every line that the system can log: name, level, format. The formats are literals in a list of macros
/// because the unified logging of macOS takes nothing but a literal at the place of the call; there is one
/// list for all backends. Placeholders: %{public}s and %{private}s take a text, %{public}d and %{public}ld an
/// integer, %{bool,public}d a truth value that shows as true or false.
#define TAMO_LOG_LINES(LINE)                                                                              \
  LINE(outcome, Default, "%{public}s -> status %{public}ld ok %{public}s%{public}s%{public}s%{private}s") \
  LINE(refused, Error, "%{public}s refused: %{public}s")                                                  \
  LINE(receiptFailed, Error, "receipt failed")                                                            \
  LINE(definition, Default,                                                                               \
       "definition: loaded %{public}s exit %{public}s · bundled %{public}s exit %{public}s · changed "    \
       "%{bool,public}d")                                                                                 \
  LINE(hardStop, Default, "hardstop pid %{public}d: %{public}s")                                          \
  LINE(moveRefused, Error, "move refused: this Tamo doesn't need moving")                                 \
  LINE(moveResult, Default, "move-to-applications -> %{public}s")

enum class LogLevel { Default, Error };

#define TAMO_LOG_NAME(name, level, format) name,
enum class LogFormat { TAMO_LOG_LINES(TAMO_LOG_NAME) };
#undef TAMO_LOG_NAME

using LogArgument = std::variant<std::string, std::int64_t, bool>;

/// One line to log. The arguments fit the placeholders of the format, in number and in kind.
struct LogLine {
  LogFormat format;
  std::vector<LogArgument> arguments;
};

/// Who may see an argument in the log; what stands between the placeholders is fixed.
enum class LogPart { Fixed, Public, Private };

/// The type that a placeholder takes: const char*, int, long, and int for a truth value.
enum class LogTakes { Text, Int, Long, Truth };

/// How a placeholder is spelt, who may see its argument in the log, and the type that it takes.
struct LogPlaceholder {
  std::string_view text;
  LogPart part;
  LogTakes takes;
};

/// All that a format may hold.
inline constexpr std::array knownPlaceholders{
    LogPlaceholder{"%{public}s", LogPart::Public, LogTakes::Text},
    LogPlaceholder{"%{private}s", LogPart::Private, LogTakes::Text},
    LogPlaceholder{"%{public}d", LogPart::Public, LogTakes::Int},
    LogPlaceholder{"%{public}ld", LogPart::Public, LogTakes::Long},
    LogPlaceholder{"%{bool,public}d", LogPart::Public, LogTakes::Truth},
};

/// What the placeholders of a format take, in order.
struct LogPlaceholders {
  std::array<LogTakes, 8> takes{};
  std::size_t count = 0;
};

/// Compile time only. A placeholder that is not in the list does not compile, nor do more than eight.
consteval LogPlaceholders logPlaceholders(std::string_view format) {
  LogPlaceholders found;
  for (auto at = format.find('%'); at != std::string_view::npos; at = format.find('%', at + 1)) {
    const auto before = found.count;
    for (const auto& known : knownPlaceholders)
      if (format.substr(at).starts_with(known.text)) found.takes.at(found.count++) = known.takes;
    if (found.count == before) throw "a log format has an unknown placeholder";
  }
  return found;
}

}  // namespace tamo::platform
