#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include "platform/log.hpp"
#include "values/fatal.hpp"

/// A log line as the arguments of a call that is checked against its format like printf. Such a call needs
/// the types when it is compiled, so the format is read then. Any thread.
namespace tamo::platform {

/// The type that a placeholder takes: const char*, int, long, and int for a truth value.
enum class LogTakes { Text, Int, Long, Truth };

/// How a placeholder is spelt, who may see its argument in the log, and the type that it takes.
struct LogPlaceholder {
  std::string_view text;
  LogPiece::Kind kind;
  LogTakes takes;
};

/// All that a format may hold.
inline constexpr std::array knownPlaceholders{
    LogPlaceholder{"%{public}s", LogPiece::Kind::Public, LogTakes::Text},
    LogPlaceholder{"%{private}s", LogPiece::Kind::Private, LogTakes::Text},
    LogPlaceholder{"%{public}d", LogPiece::Kind::Public, LogTakes::Int},
    LogPlaceholder{"%{public}ld", LogPiece::Kind::Public, LogTakes::Long},
    LogPlaceholder{"%{bool,public}d", LogPiece::Kind::Public, LogTakes::Truth},
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

/// The argument of a line at a place, as its placeholder takes it. A text lives as long as the line. Each
/// stops the process (fatal) when the argument is missing or of another kind, or does not fit an int.
[[nodiscard]] const char* logText(const LogLine& line, std::size_t at);
[[nodiscard]] int logInt(const LogLine& line, std::size_t at);
[[nodiscard]] long logLong(const LogLine& line, std::size_t at);
[[nodiscard]] int logTruth(const LogLine& line, std::size_t at);

template <LogTakes takes>
[[nodiscard]] auto logArgument(const LogLine& line, std::size_t at) {
  if constexpr (takes == LogTakes::Text) return logText(line, at);
  if constexpr (takes == LogTakes::Int) return logInt(line, at);
  if constexpr (takes == LogTakes::Long) return logLong(line, at);
  if constexpr (takes == LogTakes::Truth) return logTruth(line, at);
}

/// Hands `call` the arguments of the line, each in the type that its placeholder takes. Stops the process
/// (fatal) when the line does not fit the format.
template <LogPlaceholders placeholders, class Call>
void withLogArguments(const LogLine& line, const Call& call) {
  if (line.arguments.size() != placeholders.count) fatal("a log line does not fit its format");
  [&]<std::size_t... at>(std::index_sequence<at...>) {
    call(logArgument<placeholders.takes[at]>(line, at)...);
  }
  (std::make_index_sequence<placeholders.count>());
}

}  // namespace tamo::platform
