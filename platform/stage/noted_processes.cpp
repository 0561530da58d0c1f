#include "platform/stage/noted_processes.hpp"

#include <csignal>
#include <utility>

namespace tamo::stage {
namespace {

const char* lifeIn(const std::optional<platform::ProcessInfo>& info) {
  if (!info) return "none";
  return info->zombie ? "dead" : "alive";
}

}  // namespace

/// With what was found: a picture shows what the companion went by, which need not hold any longer.
std::optional<platform::ProcessInfo> NotedKernelProcesses::info(std::int32_t pid) const {
  auto found = processes_.info(pid);
  journal_.note("looks", {std::to_string(pid), lifeIn(found)});
  return found;
}

// A signal is noted before it is sent: what comes of it, others note at once.

void NotedKernelProcesses::kill(std::int32_t pid) {
  journal_.note("signals", {std::to_string(SIGKILL), "process", std::to_string(pid)});
  processes_.kill(pid);
}

void NotedKernelProcesses::killGroup(std::int32_t group) {
  journal_.note("signals", {std::to_string(SIGKILL), "group", std::to_string(group)});
  processes_.killGroup(group);
}

bool NotedLockFiles::tryLock(int descriptor) {
  const bool gained = files_.tryLock(descriptor);
  journal_.note("lock", {gained ? "gained" : "busy"});
  return gained;
}

/// Noted first, for whoever waits may gain the lock and note that before this process runs on.
void NotedLockFiles::unlock(int descriptor) {
  journal_.note("unlocks");
  files_.unlock(descriptor);
}

bool NotedThreads::detach(std::function<void()> work) {
  // The thread may outlive all of these.
  return threads_.detach([journal = journal_, work = std::move(work)] {
    journal.note("watches");
    work();
    journal.note("watched");
  });
}

}  // namespace tamo::stage
