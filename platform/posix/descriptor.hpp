#pragma once

#include <cerrno>

/// The few helpers that every POSIX adapter stands on: who owns a descriptor, calls that a signal interrupts,
/// and streams of bytes read and written to their end.
namespace tamo::platform {

/// Owns one file descriptor, or none. A failure to close is ignored.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor() { close(); }

  /// The number, or -1 when nothing is owned.
  [[nodiscard]] int get() const { return number_; }
  [[nodiscard]] explicit operator bool() const { return number_ >= 0; }

  /// Gives the number away: the caller owns it from now on.
  [[nodiscard]] int release();
  /// Repeating it is harmless.
  void close();

 private:
  int number_ = -1;
};

/// The result of a call that answers -1 on failure, made again as often as a signal interrupts it.
template <class Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR)
    result = call();
  return result;
}

}  // namespace tamo::platform
