#pragma once

#include <chrono>
#include <sys/types.h>

#include "platform/clock.hpp"
#include "platform/log.hpp"
#include "platform/stage/stage_root.hpp"

/// The stage's log. A line goes to standard error as "LEVEL TEXT", and to the control room's file "log" as
/// seven columns with tabs between: the time (ISO 8601, UTC, milliseconds), the pid, the level ("default" or
/// "error"), the subsystem, the category, the text as shown, and the text with its marks, in which an
/// argument reads "{public:TEXT}" or "{private:TEXT}".
///
/// The file is the log; standard error is for who looks on, and holds the companion up as little as a Mac's log does
/// (see onlooker.hpp).
///
/// A private argument reads "<private>", or "{private}" among the marks, unless the setting "log-private" is
/// "shown". A tab, a line break and a backslash inside a text are written "\t", "\n" and "\\", and another
/// control character by its number; among the marks a brace is written "\{" or "\}" too, so that the column can
/// be read back exactly.
namespace tamo::stage {

enum class PrivateTexts { Hidden, Shown };

/// The sixth and the seventh column.
[[nodiscard]] std::string shownColumn(const platform::LogLine& line, PrivateTexts privateTexts);
[[nodiscard]] std::string markedColumn(const platform::LogLine& line, PrivateTexts privateTexts);

/// "2024-02-29T12:34:56.789Z": truncated towards the past.
[[nodiscard]] std::string logTime(std::chrono::system_clock::time_point time);

/// Known differences from a Mac: no line is cut for its length, none is dropped for being too many, and the
/// log knows no level below default.
class StageLog final : public platform::LogSystem {
 public:
  /// Both must outlive it and its loggers.
  StageLog(const StageRoot& root, const platform::Clock& clock) : root_(root), clock_(clock) {}

  [[nodiscard]] std::unique_ptr<platform::Logger> logger(const std::string& subsystem,
                                                         const std::string& category) override;

 private:
  const StageRoot& root_;
  const platform::Clock& clock_;
};

}  // namespace tamo::stage
