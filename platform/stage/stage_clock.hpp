#pragma once

#include "platform/clock.hpp"
#include "platform/posix/posix_clock.hpp"
#include "platform/stage/stage_root.hpp"

namespace tamo::stage {

/// The host's clocks, and a wall clock that the stage's user sets: the setting "clock-ahead" says by how many seconds
/// it is ahead of the host's, or behind with a "-". Read afresh at each question. The monotonic clock and sleeps
/// know nothing of it.
class StageClock final : public platform::Clock {
 public:
  explicit StageClock(const StageRoot& root) : root_(root) {}

  [[nodiscard]] std::chrono::system_clock::time_point wallNow() const override;
  [[nodiscard]] platform::Instant monotonicNow() const override { return host_.monotonicNow(); }
  void sleep(std::chrono::nanoseconds duration) override { host_.sleep(duration); }

 private:
  const StageRoot root_;
  platform::PosixClock host_;
};

}  // namespace tamo::stage
