#pragma once

#include <chrono>
#include <functional>

namespace tamo::platform {

/// The queue of the main thread. Work posted to it runs there one piece at a time, never inside the call that
/// posts it, in the order of posting (of due times for delayed work). Work must not throw.
class MainQueue {
 public:
  virtual ~MainQueue() = default;

  /// Whether the calling thread is the main thread. Any thread.
  [[nodiscard]] virtual bool isMain() const = 0;

  /// Runs `work` on a later turn of the main loop. Any thread.
  virtual void post(std::function<void()> work) = 0;

  /// Runs `work` no earlier than `delay` from now, counted on a clock that cannot be set. Main thread.
  virtual void postAfter(std::chrono::nanoseconds delay, std::function<void()> work) = 0;
};

/// Stops the process when the calling thread is not the main thread; `where` names the entry point in the
/// reason.
void requireMain(const MainQueue& queue, const char* where);

}  // namespace tamo::platform
