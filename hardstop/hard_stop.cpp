#include "hardstop/hard_stop.hpp"

#include <utility>

#include "platform/deadline.hpp"

namespace tamo::HardStop {
namespace {

/// One look; absent unless it finds the process alive.
std::optional<Seen> lookFindsAlive(const Seen& first, const Operations& with) {
  auto seen = with.look(first.pid);
  if (!alive(first, seen)) return std::nullopt;
  return seen;
}

/// Absent when the grace period ended with the process alive and the stop still wanted.
std::optional<Outcome> graceWatch(const Seen& first, const Operations& with) {
  const auto deadline = platform::deadlineAfter(with.now(), with.grace);
  while (with.now() < deadline) {
    if (!lookFindsAlive(first, with)) return Exited();
    if (with.cancelled()) return Cancelled();
    with.sleep(with.poll);
  }
  return std::nullopt;
}

/// Watches until the process is gone, for `limit` at most, and tells what one further look finds. Calling off
/// is not asked about: once the decision is taken it has no effect.
bool goneWithin(std::chrono::nanoseconds limit, const Seen& first, const Operations& with) {
  const auto deadline = platform::deadlineAfter(with.now(), limit);
  while (with.now() < deadline && lookFindsAlive(first, with)) {
    with.sleep(with.poll);
  }
  return !lookFindsAlive(first, with);
}

/// The group goes with the process only when the process leads it. Our own group is never signalled, nor are
/// 0 and 1, which mean the caller's group and launchd's.
bool killsGroup(const Seen& last, std::int32_t ownGroup) {
  return last.group == last.pid && last.group > 1 && last.group != ownGroup;
}

Outcome kill(const Seen& first, const Seen& last, const Operations& with) {
  const bool isGroup = killsGroup(last, with.ownGroup);
  with.signal(isGroup ? last.group : last.pid, isGroup);
  const bool gone = goneWithin(with.reap, first, with);
  if (isGroup) return KilledGroup{.group = last.group, .gone = gone};
  return KilledProcess{.pid = last.pid, .gone = gone};
}

}  // namespace

Outcome run(const Seen& first, const Operations& operations) {
  if (auto ended = graceWatch(first, operations)) return *std::move(ended);
  // The target is chosen from this look: the process may have changed its group since the first.
  const auto last = lookFindsAlive(first, operations);
  if (!last) return Exited();
  if (operations.cancelled()) return Cancelled();
  auto reason = operations.spare();
  if (!reason) return kill(first, *last, operations);
  const bool gone = goneWithin(operations.spareWait, first, operations);
  return Spared{.reason = *std::move(reason), .gone = gone};
}

}  // namespace tamo::HardStop
