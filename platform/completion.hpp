#pragma once

#include <coroutine>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/main_queue.hpp"
#include "values/fatal.hpp"

namespace tamo::platform {

/// An answer that comes exactly once, from a callback on any thread, to one coroutine on the main thread.
///
/// Copies are the same completion: the callback keeps one, because it may outlive the coroutine that waits. A
/// second delivery stops the process; without a delivery the coroutine waits for ever. T is a value; there
/// are no errors here, an operation that can fail delivers a value that says so.
template <class T>
class Completion {
 public:
  /// `queue` must outlive every copy.
  explicit Completion(MainQueue& queue) : shared_(std::make_shared<Shared>(queue)) {}

  /// Any thread, once. The coroutine goes on in a later turn of the main queue, never inside this call; one
  /// that is gone by then is left alone.
  void deliver(T value) const {
    {
      const std::lock_guard hold(shared_->lock);
      if (shared_->delivered) values::fatal("a completion was delivered twice");
      shared_->delivered = true;
      shared_->value.emplace(std::move(value));
      if (!shared_->waiting) return;
    }
    postResumption(shared_);
  }

  class Awaiter;
  /// Suspends until the delivery, one turn of the main queue at least. Main thread, once.
  Awaiter operator co_await() const { return Awaiter(shared_); }

 private:
  struct Shared {
    explicit Shared(MainQueue& mainQueue) : queue(mainQueue) {}
    MainQueue& queue;
    std::mutex lock;
    bool delivered = false;
    std::optional<T> value;
    /// Null before the wait, after the resumption, and when the waiting coroutine was destroyed.
    std::coroutine_handle<> waiting;
  };

  static void postResumption(const std::shared_ptr<Shared>& shared) {
    shared->queue.post([shared] {
      requireMain(shared->queue, "a resumed operation");
      std::coroutine_handle<> waiting;
      {
        const std::lock_guard hold(shared->lock);
        waiting = std::exchange(shared->waiting, nullptr);
      }
      if (waiting) waiting.resume();
    });
  }

  std::shared_ptr<Shared> shared_;
};

template <class T>
class Completion<T>::Awaiter {
 public:
  explicit Awaiter(std::shared_ptr<Shared> shared) : shared_(std::move(shared)) {}
  Awaiter(const Awaiter&) = delete;
  Awaiter& operator=(const Awaiter&) = delete;
  ~Awaiter() {
    const std::lock_guard hold(shared_->lock);
    shared_->waiting = nullptr;
  }

  [[nodiscard]] bool await_ready() const noexcept { return false; }
  void await_suspend(std::coroutine_handle<> awaiting) {
    requireMain(shared_->queue, "an awaited completion");
    {
      const std::lock_guard hold(shared_->lock);
      shared_->waiting = awaiting;
      if (!shared_->delivered) return;
    }
    postResumption(shared_);
  }
  T await_resume() {
    const std::lock_guard hold(shared_->lock);
    // NOLINTNEXTLINE(bugprone-unchecked-optional-access): only a delivery resumes.
    return std::move(*shared_->value);
  }

 private:
  std::shared_ptr<Shared> shared_;
};

}  // namespace tamo::platform
