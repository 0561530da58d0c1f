#pragma once

#include "platform/clock.hpp"

namespace tamo::platform {

/// The host's clocks. The monotonic one counts while the machine sleeps; what the standard library calls
/// steady stops then on Linux. A sleep does not count the machine's own: it is resumed where it was.
class PosixClock final : public Clock {
 public:
  [[nodiscard]] std::chrono::system_clock::time_point wallNow() const override;
  [[nodiscard]] Instant monotonicNow() const override;
  void sleep(std::chrono::nanoseconds duration) override;
};

}  // namespace tamo::platform
