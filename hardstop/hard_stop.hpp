#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "hardstop/process_snapshot.hpp"
#include "hardstop/stop_outcome.hpp"
#include "platform/clock.hpp"

/// The decision procedure of a hard stop: it watches a process that somebody else has asked to stop, and
/// kills it when it does not go, unless something speaks for leaving it alone. It knows no clock, no thread
/// and no signal; whoever runs it brings them.
///
///   grace watch   from the start. To exited when the process is gone, to cancelled when the stop is called
///                 off while it is alive, to the decision at the grace deadline.
///   decision      one more look. To exited (gone), to cancelled (called off), to the spare watch (a reason),
///                 to the kill (none).
///   spare watch   to spared, when the process is gone or at the spare deadline.
///   kill          one signal, once, and on to the reap watch.
///   reap watch    to killedGroup or killedProcess, when the process is gone or at the reap deadline.
///
/// Gone means no longer alive as of the first look: vanished, zombie, or replaced under its pid.
namespace tamo::HardStop {

/// How long the process has to exit by itself before it is killed.
inline constexpr std::chrono::seconds grace(2);
/// The pause between two looks, in every watch.
inline constexpr std::chrono::milliseconds poll(50);
/// How long, after the kill, the process is watched until it has vanished.
inline constexpr std::chrono::seconds reap(2);
/// How long a spared process is watched until it has exited by itself.
inline constexpr std::chrono::seconds spareWait(20);

/// What run() is told and what it may do. The operations are called on the thread that runs it.
struct Operations {
  std::chrono::nanoseconds grace;
  std::chrono::nanoseconds poll;
  std::chrono::nanoseconds reap;
  std::chrono::nanoseconds spareWait;
  /// The caller's own process group, which is never signalled.
  std::int32_t ownGroup;
  /// A fresh look at a pid; absent counts as gone.
  std::function<std::optional<Seen>(std::int32_t pid)> look;
  /// Why the process must be left alone, judged when it is asked; absent means kill. Asked once at most.
  std::function<std::optional<std::string>()> spare;
  /// Whether the stop has been called off. May read what another thread writes, and then makes that safe.
  std::function<bool()> cancelled;
  /// Sends the kill to a process, or to a whole group. Called once at most; a failure shows in later looks.
  std::function<void(std::int32_t target, bool isGroup)> signal;
  /// Blocks for that long.
  std::function<void(std::chrono::nanoseconds duration)> sleep;
  /// A clock that never goes back.
  std::function<platform::Instant()> now;
};

/// Carries the hard stop out on the process of `first`, of which only the pid and the start time count. Never
/// fails. Blocks for the grace period and then the reap or the spare wait, about 22 seconds with the
/// constants above, so it wants a thread of its own.
[[nodiscard]] Outcome run(const Seen& first, const Operations& operations);

}  // namespace tamo::HardStop
