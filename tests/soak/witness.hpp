#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "platform/posix/descriptor.hpp"

namespace tamo::soak {

using Clock = std::chrono::steady_clock;

/// A signal that a witnessed program, or a tool that it started, asked the kernel to send.
struct Sent {
  pid_t by = 0;
  /// As it was given: negative for a group, 0 where the call names no pid.
  pid_t target = 0;
  int signal = 0;
};

/// A program whose every sending of a signal is seen before it happens: the kernel holds the sender until the
/// witness has looked (a seccomp listener on kill, tkill, tgkill, pidfd_send_signal and rt_sigqueueinfo).
/// Nothing is prevented. One thread.
class Witness {
 public:
  struct Program {
    std::string path;
    std::vector<std::string> arguments;
    std::vector<std::string> environment;
    /// The group to join; 0 for one of its own.
    pid_t group = 0;
    /// Called while the sender is held.
    std::function<void(const Sent&)> atSending{};
  };
  struct Ended {
    /// The exit status, or 128 and the number of the signal.
    int status = 0;
    std::chrono::milliseconds after{0};
    /// Of the program itself, at its greatest.
    long kilobytes = 0;
  };

  explicit Witness(Program program);
  ~Witness();
  Witness(const Witness&) = delete;
  Witness& operator=(const Witness&) = delete;

  [[nodiscard]] pid_t pid() const { return pid_; }
  [[nodiscard]] Clock::time_point begun() const { return begun_; }
  [[nodiscard]] const std::vector<Sent>& sent() const { return sent_; }

  /// Serves until the program has ended or the time has come; true when it has ended.
  bool serveUntil(Clock::time_point time);
  /// Serves until the end, for `bound` from its beginning at most; absent when it was still running then, and
  /// it is killed.
  [[nodiscard]] std::optional<Ended> finish(std::chrono::milliseconds bound);

 private:
  void look();

  Program program_;
  Clock::time_point begun_ = Clock::now();
  pid_t pid_ = 0;
  platform::Descriptor process_;
  platform::Descriptor listener_;
  std::vector<Sent> sent_;
};

}  // namespace tamo::soak
