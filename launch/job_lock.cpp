#include "launch/job_lock.hpp"

#include <chrono>

#include "platform/deadline.hpp"
#include "values/fatal.hpp"
#include "values/paths.hpp"

namespace tamo {
namespace {

/// How long an action waits for the one before it. Then it goes on without the lock: one that hangs must not
/// stop all that come after it.
constexpr std::chrono::seconds lockDeadline(60);
constexpr std::chrono::microseconds lockPoll(100'000);
constexpr std::int32_t noLock = -1;

}  // namespace

/// The user's own temporary directory is closed to other users, so nobody else can hold the lock up.
std::string JobLock::path() const {
  const auto directory = needs_.files.temporaryDirectory();
  if (!directory) values::fatal("there is no temporary directory for the job lock");
  return values::joinedPath(*directory, needs_.label + ".job.lock");
}

/// The time is asked after a try, never before, so that a lock released at the last moment is still gained.
/// The clock is the monotonic one, because the wall clock can be set during the wait.
bool JobLock::waitForLock(std::int32_t descriptor) {
  const auto deadline = platform::deadlineAfter(needs_.clock.monotonicNow(), lockDeadline);
  while (!needs_.lockFiles.tryLock(descriptor)) {
    if (needs_.clock.monotonicNow() >= deadline) return false;
    needs_.clock.sleep(lockPoll);
  }
  return true;
}

std::int32_t JobLock::lockJob() {
  const auto descriptor = needs_.lockFiles.open(path());
  if (descriptor < 0) return noLock;
  if (waitForLock(descriptor)) return descriptor;
  needs_.lockFiles.close(descriptor);
  return noLock;
}

void JobLock::unlockJob(std::int32_t descriptor) {
  if (descriptor < 0) return;
  needs_.lockFiles.unlock(descriptor);
  needs_.lockFiles.close(descriptor);
}

}  // namespace tamo
