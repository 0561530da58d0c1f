#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace tamo::simulation {

using Time = std::chrono::nanoseconds;

/// The one source of chance of a run, or the lack of it. The same seed gives the same throws with every compiler and library,
/// which the distributions of the standard library do not promise.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : state_(seed) {}
  /// Dice that are not thrown: what is likely happens, every choice is the first, every time the middle one.
  /// For runs in which someone else says what goes wrong.
  [[nodiscard]] static Dice calm();

  [[nodiscard]] std::uint64_t next();
  /// Below `bound`, which is not 0.
  [[nodiscard]] std::uint64_t below(std::uint64_t bound) { return calm_ ? 0 : next() % bound; }
  /// True so many times in a thousand. Throws also for 0 and 1000.
  [[nodiscard]] bool chance(unsigned inThousand) {
    return calm_ ? inThousand >= 500 : below(1000) < inThousand;
  }
  /// Whole microseconds, both ends included.
  [[nodiscard]] Time between(Time least, Time most);
  template <class T, std::size_t N>
  [[nodiscard]] const T& oneOf(const std::array<T, N>& values) {
    return values[below(N)];
  }

 private:
  std::uint64_t state_;
  bool calm_ = false;
};

}  // namespace tamo::simulation
