#pragma once

#include <coroutine>
#include <exception>
#include <optional>
#include <type_traits>
#include <utility>
#include <variant>

namespace tamo::platform {

/// The value of an operation that gives nothing.
using Nothing = std::monostate;

/// An operation that may suspend, gives a T and may raise. Lazy: nothing runs before start() or co_await. One
/// thread. Whoever holds a task owns its frame; destroying a suspended task destroys what it holds and runs
/// nothing further.
///
/// A frame holds copies of its parameters, but only the address of what a reference names and of the lambda that
/// it is the body of. So what a parameter refers to outlives the task, and so does a lambda with captures: both
/// stay with whoever awaits it. A catch cannot await: what has to be awaited after an error comes behind the
/// handler.
template <class T>
class [[nodiscard]] Task {
 public:
  class Promise;
  class Awaiter;
  using promise_type = Promise;
  using Handle = std::coroutine_handle<Promise>;

  Task(Task&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Task& operator=(Task&& other) noexcept {
    // A task moved onto itself is kept: its handle has left it by the time of the reset.
    reset(std::exchange(other.handle_, nullptr));
    return *this;
  }
  ~Task() { reset(nullptr); }

  /// Runs the task, which nobody awaits, to its first suspension. Once.
  void start() { handle_.resume(); }
  [[nodiscard]] bool done() const { return handle_.done(); }
  /// What the finished task gave, once; raises what it raised.
  T take() { return handle_.promise().take(); }

  /// Runs the task and resumes the awaiting coroutine when it ends.
  Awaiter operator co_await() const noexcept { return Awaiter(handle_); }

 private:
  explicit Task(Handle handle) : handle_(handle) {}
  void reset(Handle next) {
    if (handle_) handle_.destroy();
    handle_ = next;
  }

  Handle handle_;
};

template <class T>
class Task<T>::Promise {
 public:
  /// Hands control back to the coroutine that awaited this one, if any did.
  class Final {
   public:
    Final() = default;
    [[nodiscard]] bool await_ready() const noexcept { return false; }
    [[nodiscard]] std::coroutine_handle<> await_suspend(Handle ended) const noexcept {
      const auto next = ended.promise().continuation_;
      return next ? next : std::noop_coroutine();
    }
    void await_resume() const noexcept {}
  };

  Task get_return_object() { return Task(Handle::from_promise(*this)); }
  [[nodiscard]] std::suspend_always initial_suspend() const noexcept { return {}; }
  [[nodiscard]] Final final_suspend() const noexcept { return Final(); }
  void return_value(T value) { value_.emplace(std::move(value)); }
  void unhandled_exception() noexcept { failure_ = std::current_exception(); }

  void resumesAtEnd(std::coroutine_handle<> continuation) { continuation_ = continuation; }
  T take() {
    if (failure_) std::rethrow_exception(failure_);
    // NOLINTNEXTLINE(bugprone-unchecked-optional-access): what ended without a failure has given its value.
    return std::move(*value_);
  }

 private:
  std::coroutine_handle<> continuation_;
  std::optional<T> value_;
  std::exception_ptr failure_;
};

template <class T>
class Task<T>::Awaiter {
 public:
  explicit Awaiter(Handle handle) : handle_(handle) {}
  [[nodiscard]] bool await_ready() const noexcept { return false; }
  [[nodiscard]] std::coroutine_handle<> await_suspend(std::coroutine_handle<> awaiting) const noexcept {
    handle_.promise().resumesAtEnd(awaiting);
    return handle_;
  }
  T await_resume() const { return handle_.promise().take(); }

 private:
  Handle handle_;
};

}  // namespace tamo::platform
