#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

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
       "definition: loaded %{public}s exit %{public}s · bundled %{public}s exit %{public}s · changed "  \
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

[[nodiscard]] LogLevel levelOf(LogFormat format);
[[nodiscard]] std::string_view formatText(LogFormat format);

/// A piece of a rendered line: what stands between the placeholders, or what an argument became.
struct LogPiece {
  enum class Kind { Fixed, Public, Private };
  Kind kind;
  std::string text;
};

/// The line cut at its placeholders, with each argument's mark. Stops the process (fatal) when the arguments
/// do not fit the format, which no caller can cause with data.
[[nodiscard]] std::vector<LogPiece> pieces(const LogLine& line);

/// The line as the system's log shows it to a person: an argument that is private reads "<private>".
[[nodiscard]] std::string shownText(const LogLine& line);

/// A log channel with a fixed subsystem and category. Main thread.
class Logger {
 public:
  virtual ~Logger() = default;
  /// Never fails: a line that cannot be written is lost.
  virtual void write(const LogLine& line) = 0;
};

/// The system's log. Main thread.
class LogSystem {
 public:
  virtual ~LogSystem() = default;
  [[nodiscard]] virtual std::unique_ptr<Logger> logger(const std::string& subsystem,
                                                       const std::string& category) = 0;
};

}  // namespace tamo::platform
