#pragma once

#include <functional>

namespace tamo::platform {

/// Dedicated operating-system threads, for work that blocks. Any thread.
class Threads {
 public:
  virtual ~Threads() = default;

  /// Runs `work` on a new thread that nobody joins. `work` must not throw. False when no thread can be had;
  /// `work` never runs then.
  [[nodiscard]] virtual bool detach(std::function<void()> work) = 0;
};

}  // namespace tamo::platform
