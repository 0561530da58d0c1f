#pragma once

#include <optional>
#include <string>
#include <sys/types.h>

namespace tamo::soak {

/// A process that nobody may touch: it bears the Core's name, runs as the same user and notes every signal
/// that can be caught. SIGKILL shows as its death, SIGSTOP as its stopping. It ends with its parent.
///
/// A Core can be played by one as well: nothing but SIGKILL moves it, and who made it decides when it is
/// reaped. One thread, which also makes and ends it.
class Bystander {
 public:
  struct Wish {
    /// The group to join; 0 for one of its own; absent to stay in the caller's.
    std::optional<pid_t> group = 0;
    /// Exactly this pid, which must be free.
    std::optional<pid_t> pid{};
  };

  /// Absent when the pid is not free.
  [[nodiscard]] static std::optional<Bystander> start(const Wish& wish);
  Bystander(Bystander&& other) noexcept;
  Bystander& operator=(Bystander&&) = delete;
  /// Ends and reaps it.
  ~Bystander();

  [[nodiscard]] pid_t pid() const { return pid_; }
  /// What was done to it; empty when nothing was.
  [[nodiscard]] std::string harm() const;
  /// Ends it; until it is reaped it is a zombie, which still answers signal 0.
  void kill();
  void reap();
  /// Whether it has ended.
  [[nodiscard]] bool over() const;

 private:
  struct Notes;
  Bystander(pid_t pid, Notes* notes) : pid_(pid), notes_(notes) {}
  [[noreturn]] static void live(const Wish& wish, Notes& notes, pid_t parent);

  pid_t pid_;
  Notes* notes_;
};

}  // namespace tamo::soak
