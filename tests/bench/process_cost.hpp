#pragma once

#include <functional>

namespace tamo::bench {

/// What a process cost by itself, without the processes that it started.
struct Cost {
  double cpuMilliseconds = 0;
  double wallMilliseconds = 0;
  double peakMegabytes = 0;
};

/// Runs `work` in a process of its own, which ends with it.
[[nodiscard]] Cost costOf(const std::function<void()>& work);

}  // namespace tamo::bench
