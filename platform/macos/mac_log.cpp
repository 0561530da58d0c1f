#include "platform/macos/mac_log.hpp"

#include <os/log.h>

#include "platform/log_arguments.hpp"

namespace tamo::macos {
namespace {

using platform::LogFormat;
using platform::LogLevel;

constexpr os_log_type_t typeOf(LogLevel level) {
  return level == LogLevel::Error ? OS_LOG_TYPE_ERROR : OS_LOG_TYPE_DEFAULT;
}

class MacLogger final : public platform::Logger {
 public:
  explicit MacLogger(os_log_t channel) : channel_(channel) {}

  // The system's log keeps the format apart from the arguments, in the program itself; so each line is a
  // literal of its own at its own call.
  void write(const platform::LogLine& line) override {
    switch (line.format) {
#define TAMO_LOG_CASE(name, level, format)                                                                 \
  case LogFormat::name:                                                                                    \
    return platform::withLogArguments<platform::logPlaceholders(format)>(line, [this](auto... arguments) { \
      os_log_with_type(channel_, typeOf(LogLevel::level), format, arguments...);                           \
    });
      TAMO_LOG_LINES(TAMO_LOG_CASE)
#undef TAMO_LOG_CASE
    }
  }

 private:
  // Channels belong to the system, which keeps one for each subsystem and category.
  os_log_t channel_;
};

}  // namespace

void logAtFaultLevel(std::string_view reason) noexcept {
  // By its name: what is fatal may be so before any logger was asked for.
  os_log_with_type(os_log_create("studio.pell.Tamo.Core", "lifecycle"), OS_LOG_TYPE_FAULT,
                   "fatal: %{public}.*s", static_cast<int>(reason.size()), reason.data());
}

std::unique_ptr<platform::Logger> MacLog::logger(const std::string& subsystem, const std::string& category) {
  return std::make_unique<MacLogger>(os_log_create(subsystem.c_str(), category.c_str()));
}

}  // namespace tamo::macos
