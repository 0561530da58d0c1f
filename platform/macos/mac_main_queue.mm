#include "platform/macos/mac_main_queue.hpp"

#include <algorithm>
#include <dispatch/dispatch.h>
#include <memory>
#include <pthread.h>
#include <utility>

namespace tamo::macos {
namespace {

using Work = std::function<void()>;

/// The queue carries one pointer, so the work travels on the heap and is taken back here. Nothing may be
/// thrown into the system's frames.
void runWork(void* carried) noexcept {
  const std::unique_ptr<Work> work(static_cast<Work*>(carried));
  @autoreleasepool {
    (*work)();
  }
}

void* carriedOf(Work work) {
  return std::make_unique<Work>(std::move(work)).release();
}

}  // namespace

bool MacMainQueue::isMain() const {
  return ::pthread_main_np() != 0;
}

void MacMainQueue::post(Work work) {
  dispatch_async_f(dispatch_get_main_queue(), carriedOf(std::move(work)), &runWork);
}

void MacMainQueue::postAfter(std::chrono::nanoseconds delay, Work work) {
  platform::requireMain(*this, "delayed work");
  const auto atLeastNow = std::max(delay, std::chrono::nanoseconds::zero());
  // This clock cannot be set. It stands still while the machine sleeps, which only prolongs the delay.
  const auto due = dispatch_time(DISPATCH_TIME_NOW, atLeastNow.count());
  dispatch_after_f(due, dispatch_get_main_queue(), carriedOf(std::move(work)), &runWork);
}

}  // namespace tamo::macos
