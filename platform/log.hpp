#pragma once

#include <memory>
#include <string>

#include "platform/log_format.hpp"

namespace tamo::platform {

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
