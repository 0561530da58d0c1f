#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <ucontext.h>

namespace tamo::simulation {

/// A stack to run on, switched to and from by hand within one thread. Simulated threads are fibers, so that a
/// run has one order of events and no other. The address sanitizer is told of each switch; the
/// thread sanitizer is not, and would have nothing to find.
///
/// While an exception is being thrown or handled no switch is allowed: the language keeps one record of those
/// per thread, not per fiber.
class Fiber {
 public:
  /// The stack that the caller stands on.
  Fiber();
  /// A stack of its own. `body` runs at the first switch to it and never returns.
  explicit Fiber(std::function<void()> body);
  Fiber(const Fiber&) = delete;
  Fiber& operator=(const Fiber&) = delete;

  /// Goes on where `next` left off; comes back when somebody switches to this. Called on this fiber.
  void switchTo(Fiber& next);

 private:
  static void enter();

  std::function<void()> body_;
  std::unique_ptr<std::byte[]> stack_;
  const void* bottom_ = nullptr;
  std::size_t size_ = 0;
  ucontext_t context_{};
  void* fakeStack_ = nullptr;
};

}  // namespace tamo::simulation
