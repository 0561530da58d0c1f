#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <sys/types.h>

#include "platform/posix/descriptor.hpp"

namespace tamo::soak {

/// How far the machine's wall clock is ahead of the clock that nobody can set.
[[nodiscard]] std::chrono::nanoseconds wallClockAhead();

/// Sets the machine's wall clock several times a second, up to five minutes ahead or back, for as long as it
/// exists. It concerns every process of the machine. The process that does it lives outside any pid namespace
/// that is made later, takes no signal, and puts the clock right when its maker ends, whatever ends it.
class ClockHand {
 public:
  /// Absent where the clock may not be set. The same seed makes the same jumps.
  static std::optional<ClockHand> start(std::uint64_t seed);
  ClockHand(ClockHand&& other) noexcept;
  /// The clock is right again afterwards, or standard error says that it is not. In the maker alone.
  ~ClockHand();
  ClockHand& operator=(ClockHand&&) = delete;

  /// How often the clock was set so far. In the maker and its forks.
  [[nodiscard]] std::int64_t settings() const;

 private:
  struct Count;
  ClockHand(pid_t pid, platform::Descriptor&& life, Count* count);
  [[noreturn]] static void turn(int life, std::uint64_t seed, Count& count);

  pid_t pid_;
  /// Its other end tells the hand that no maker is left.
  platform::Descriptor life_;
  Count* count_;
};

}  // namespace tamo::soak
