#pragma once

#include <chrono>

namespace tamo::platform {

/// An instant of the monotonic clock; its origin means nothing.
using Instant = std::chrono::nanoseconds;

/// Time. Any thread.
class Clock {
 public:
  virtual ~Clock() = default;

  /// The wall clock, which can be set at any time.
  [[nodiscard]] virtual std::chrono::system_clock::time_point wallNow() const = 0;

  /// A clock that never goes back, cannot be set and keeps counting while the machine sleeps.
  [[nodiscard]] virtual Instant monotonicNow() const = 0;

  /// Blocks the calling thread for at least `duration`; nothing for zero or less.
  virtual void sleep(std::chrono::nanoseconds duration) = 0;
};

}  // namespace tamo::platform
