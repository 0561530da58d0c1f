#pragma once

#include <chrono>
#include <cstdint>
#include <random>

namespace tamo::soak {

/// The one source of chance of a lane; the same seed throws the same.
class Chance {
 public:
  explicit Chance(std::uint64_t seed) : engine_(seed) {}

  /// Both ends included.
  [[nodiscard]] int between(int least, int most) {
    return least + static_cast<int>(engine_() % static_cast<std::uint64_t>(most - least + 1));
  }
  [[nodiscard]] std::chrono::milliseconds milliseconds(int least, int most) {
    return std::chrono::milliseconds(between(least, most));
  }
  [[nodiscard]] bool half() { return between(0, 1) == 1; }

 private:
  std::mt19937_64 engine_;
};

}  // namespace tamo::soak
