#pragma once

#include <cstddef>
#include <utility>

#include "platform/log_format.hpp"
#include "values/fatal.hpp"

/// A log line as the arguments of a call that is checked against its format like printf. Such a call needs
/// the types when it is compiled, so the format is read then. Any thread.
namespace tamo::platform {

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
  if (line.arguments.size() != placeholders.count) values::fatal("a log line does not fit its format");
  [&]<std::size_t... at>(std::index_sequence<at...>) {
    call(logArgument<placeholders.takes[at]>(line, at)...);
  }(std::make_index_sequence<placeholders.count>());
}

}  // namespace tamo::platform
