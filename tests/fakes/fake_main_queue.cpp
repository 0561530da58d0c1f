#include "fakes/fake_main_queue.hpp"

#include <string>

namespace tamo::fakes {

void FakeMainQueue::runPosted() {
  for (;;) {
    std::function<void()> work;
    {
      const std::lock_guard hold(lock_);
      if (posted_.empty()) return;
      work = std::move(posted_.front());
      posted_.pop_front();
    }
    work();
  }
}

void FakeMainQueue::runUntilIdle() {
  for (runPosted(); !delayed_.empty(); runPosted()) {
    auto next = delayed_.extract(delayed_.begin());
    clock_.advanceTo(next.key());
    next.mapped()();
  }
}

bool FakeMainQueue::idle() const {
  const std::lock_guard hold(lock_);
  return posted_.empty() && delayed_.empty();
}

void FakeMainQueue::post(std::function<void()> work) {
  const std::lock_guard hold(lock_);
  posted_.push_back(std::move(work));
}

void FakeMainQueue::postAfter(std::chrono::nanoseconds delay, std::function<void()> work) {
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(delay).count();
  ledger_.note(clock_.monotonicNow(), "queue: after " + std::to_string(milliseconds) + " ms");
  delayed_.emplace(clock_.monotonicNow() + delay, std::move(work));
}

}  // namespace tamo::fakes
