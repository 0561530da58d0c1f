#pragma once

#include <string_view>

#include "platform/log.hpp"

namespace tamo::macos {

/// For values::setLastWords: a line of the companion's own channel at fault level, which the system keeps.
/// A process that was started by the system has the null device for its standard error.
void logAtFaultLevel(std::string_view reason) noexcept;

/// The unified logging of the system. Each line is logged where its format stands as a literal, so the marks
/// of its placeholders hold there. A text ends at its first zero byte, and the system cuts the texts of a
/// line at about one kilobyte in all.
class MacLog final : public platform::LogSystem {
 public:
  [[nodiscard]] std::unique_ptr<platform::Logger> logger(const std::string& subsystem,
                                                         const std::string& category) override;
};

}  // namespace tamo::macos
