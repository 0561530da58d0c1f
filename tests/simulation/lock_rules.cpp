#include "simulation/lock_rules.hpp"

#include <algorithm>
#include <string>

#include "simulation/course_rules.hpp"

namespace tamo::simulation::Referee {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr seconds longestWait(60);

/// How long it has waited.
Moment lockWait(const Companion& companion) {
  const auto now = companion.world.clocks.now();
  const auto since = companion.record.lockFirstTried.value_or(now);
  return {.awake = now.awake - since.awake, .monotonic = now.monotonic - since.monotonic};
}

/// An agent that is enabled is unregistered before it is registered anew.
bool skipsUnregister(const Record& record) {
  const bool enabled = !record.statuses.empty() && record.statuses.back() == 1;
  return enabled && record.unregistrations == 0;
}

/// Which actions may lead to a deed, given what the companion was told.
bool mayDo(const Companion& companion, std::string_view deed) {
  const auto& record = companion.record;
  const auto action = actionOf(companion);
  if (deed == "copy" || deed == "remove" || deed == "trash") return action == "move-to-applications";
  if (deed == "kickstart") return action == "register";
  if (deed == "kickstart -k") return action == "restart";
  if (deed == "register" && (record.unregisterFailed || skipsUnregister(record))) return false;
  if (deed == "register" && action == "unregister") return false;
  if (action == "sync") return record.definitionChanged;
  return action == "register" || action == "unregister" || action == "reseat" || action == "restart";
}

}  // namespace

void triesLock(Companion& companion, bool gained) {
  auto& record = companion.record;
  const auto slow = record.slow - record.lockSlowBefore;
  const auto wait = lockWait(companion);
  companion.expect(wait.awake - slow <= longestWait + milliseconds(200), Invariant::Waits,
                   "the lock is waited for beyond 60 s");
  if (wait.monotonic >= longestWait) ++record.lateTries;
  companion.expect(record.lateTries <= 1, Invariant::Waits, "the lock is tried again after its 60 s");
  if (!gained) return;
  const auto& all = companion.world.companions;
  const bool free =
      std::none_of(all.begin(), all.end(), [](const auto& other) { return other->record.lockHeld; });
  companion.expect(free, Invariant::OneHolder, "gained while another holds it");
  companion.note("has the lock");
  record.lockHeld = true;
  record.lockHeldOnce = true;
}

void letsLockGo(Companion& companion) {
  companion.expect(companion.record.terminations > 0, Invariant::LockKept,
                   "let go before the terminate request");
  companion.note("lets the lock go");
  companion.record.lockHeld = false;
}

void givesLockUp(Companion& companion) {
  companion.note("goes on without the lock");
  companion.record.lockGivenUp = true;
  if (actionOf(companion) == "move-to-applications") companion.world.copiesDisturbed = true;
  if (!companion.record.lockFirstTried) return;
  const auto wait = lockWait(companion);
  companion.expect(wait.monotonic >= longestWait, Invariant::Waits, "the lock is given up early");
  if (wait.awake < longestWait) ++companion.world.locksSleptThrough;
}

void acts(Companion& companion, std::string_view deed) {
  const auto& record = companion.record;
  companion.expect(record.lockHeld || record.lockGivenUp, Invariant::ActsUnderLock, deed);
  companion.expect(record.dispatched && record.terminations == 0, Invariant::Permission, deed);
  companion.expect(mayDo(companion, deed), Invariant::Permission, deed);
  companion.expect(courseOf(companion) != Course::Refused, Invariant::Permission, deed);
}

void launchctlTook(Companion& companion, Time duration, Time slow) {
  companion.expect(duration - slow <= seconds(5) + milliseconds(100), Invariant::Waits,
                   "a launchctl is waited for beyond 5 s");
}

}  // namespace tamo::simulation::Referee
