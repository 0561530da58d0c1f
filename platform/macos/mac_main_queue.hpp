#pragma once

#include "platform/main_queue.hpp"

namespace tamo::macos {

/// The process's main dispatch queue, which the application's run loop empties. Each piece of work has an
/// autorelease pool of its own.
///
/// A delay counts on the clock that stands still while the machine sleeps, and has the system's leeway: up
/// to a tenth later than asked for.
class MacMainQueue final : public platform::MainQueue {
 public:
  [[nodiscard]] bool isMain() const override;
  void post(std::function<void()> work) override;
  void postAfter(std::chrono::nanoseconds delay, std::function<void()> work) override;
};

}  // namespace tamo::macos
