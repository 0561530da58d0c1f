#pragma once

#include <functional>

namespace tamo::platform {

/// Dedicated operating-system threads, for work that blocks. Any thread.
class Threads {
 public:
  virtual ~Threads() = default;

  /// Runs `work` on a new thread that nobody joins. `work` must not throw. When no thread can be had, the
  /// process stops (fatal): a hard stop without its watcher would wait for ever.
  virtual void detach(std::function<void()> work) = 0;
};

}  // namespace tamo::platform
