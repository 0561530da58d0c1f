#include "simulation/core_job.hpp"

#include <utility>

#include "simulation/job_texts.hpp"

namespace tamo::simulation {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::int32_t notLoaded = 113;
/// What launchd waits for a job that does not say how long.
constexpr std::int64_t defaultExitTimeout = 20;

}  // namespace

CoreJob::Nature CoreJob::drawNature() {
  auto& dice = needs_.dice;
  Nature nature{.stopsAfter = std::nullopt,
                .zombieFor = dice.chance(800) ? dice.between(Time(0), milliseconds(5))
                                              : dice.between(milliseconds(50), seconds(1)),
                .diesAfterKill = dice.between(Time(0), milliseconds(20)),
                .listens = dice.chance(600)};
  const auto temper = dice.below(100);
  if (temper < 30) {
    nature.stopsAfter = dice.between(Time(0), milliseconds(200));
  } else if (temper < 45) {
    nature.stopsAfter = dice.between(milliseconds(200), milliseconds(1900));
  } else if (temper < 55) {
    nature.stopsAfter = dice.between(milliseconds(1900), milliseconds(2100));
  } else if (temper < 70) {
    nature.stopsAfter = dice.between(milliseconds(2100), seconds(8));
  }
  if (dice.chance(100)) nature.diesAfterKill = dice.between(milliseconds(100), seconds(5));
  if (coresIgnoreStops) nature.stopsAfter.reset();
  return nature;
}

/// Most Cores lead a group of their own. Some are in launchd's, some in that of another process, which may be
/// a companion.
std::optional<std::int32_t> CoreJob::drawGroup() {
  auto& dice = needs_.dice;
  const auto place = dice.below(100);
  const auto& all = needs_.processes.all();
  if (place < 75 || all.empty()) return std::nullopt;
  if (place < 85) return 1;
  return all[dice.below(all.size())].group;
}

Process* CoreJob::core() {
  return needs_.processes.find(pid_, startMicros_);
}

std::optional<std::int32_t> CoreJob::corePid() const {
  return pid_ == 0 ? std::nullopt : std::optional(pid_);
}

bool CoreJob::coreListens() {
  const auto* process = core();
  return process != nullptr && !process->zombie && nature_.listens;
}

void CoreJob::startCore() {
  if (!loaded || pid_ != 0) return;
  const auto group = drawGroup();
  const Process started = needs_.processes.spawn(ProcessKind::Core, needs_.clocks.wallNow(), group);
  pid_ = started.pid;
  startMicros_ = started.startMicros;
  stopping_ = false;
  nature_ = drawNature();
  needs_.trace.note(needs_.timeline.now(), "launchd", "Core ", pid_, " in group ", started.group);
  live(started);
}

/// Helpers in the Core's group, a change of the group in mid-life, a death of its own.
void CoreJob::live(const Process& core) {
  auto& dice = needs_.dice;
  if (core.group == core.pid && dice.chance(300))
    needs_.processes.spawn(ProcessKind::Helper, needs_.clocks.wallNow(), core.group);
  if (dice.chance(60)) {
    needs_.timeline.after(dice.between(Time(0), seconds(4)), [this, core] {
      auto* found = needs_.processes.find(core.pid, core.startMicros);
      if (found != nullptr) found->group = found->group == 1 ? found->pid : 1;
    });
  }
  if (deathsLeft_ > 0 && dice.chance(150)) {
    --deathsLeft_;
    dieAfter(dice.between(Time(0), seconds(5)), core.pid, core.startMicros);
  }
}

void CoreJob::askToStop() {
  if (pid_ == 0 || stopping_) return;
  stopping_ = true;
  needs_.trace.note(needs_.timeline.now(), "launchd", "asks Core ", pid_, " to stop");
  if (nature_.stopsAfter) dieAfter(*nature_.stopsAfter, pid_, startMicros_);
  const auto limit = jobDefinitions()[definition].exitTimeout.value_or(defaultExitTimeout);
  needs_.timeline.after(seconds(limit), [this, pid = pid_, start = startMicros_] {
    if (const auto* found = needs_.processes.find(pid, start)) sigkill(Process(*found));
  });
}

void CoreJob::dieAfter(Time delay, std::int32_t pid, std::uint64_t startMicros) {
  needs_.timeline.after(delay, [this, pid, startMicros] { die(pid, startMicros); });
}

void CoreJob::die(std::int32_t pid, std::uint64_t startMicros) {
  auto* process = needs_.processes.find(pid, startMicros);
  if (process == nullptr || process->zombie) return;
  process->zombie = true;
  needs_.trace.note(needs_.timeline.now(), "Core", pid, " has exited");
  needs_.timeline.after(nature_.zombieFor, [this, pid, startMicros] { reap(pid, startMicros); });
}

void CoreJob::reap(std::int32_t pid, std::uint64_t startMicros) {
  if (needs_.processes.find(pid, startMicros) == nullptr) return;
  needs_.processes.remove(pid);
  maybeReuse(pid);
  if (pid_ != pid || startMicros_ != startMicros) return;
  pid_ = 0;
  for (const auto& work : std::exchange(whenGone_, {}))
    work();
  if (loaded) needs_.timeline.after(needs_.dice.between(Time(0), milliseconds(300)), [this] { startCore(); });
}

void CoreJob::maybeReuse(std::int32_t pid) {
  if (!needs_.dice.chance(400)) return;
  needs_.timeline.after(needs_.dice.between(Time(0), milliseconds(100)), [this, pid] {
    if (!needs_.processes.isFree(pid)) return;
    needs_.processes.spawnAs(pid, ProcessKind::Stranger, needs_.clocks.wallNow());
    needs_.trace.note(needs_.timeline.now(), "kernel", "a stranger is ", pid, " now");
  });
}

void CoreJob::whenGone(std::function<void()> work) {
  if (pid_ == 0) {
    work();
  } else {
    whenGone_.push_back(std::move(work));
  }
}

void CoreJob::kickstart(bool kill, Reply reply) {
  if (!loaded) return reply(notLoaded);
  if (!kill || pid_ == 0) {
    startCore();
    return reply(0);
  }
  askToStop();
  if (needs_.dice.chance(300)) return reply(0);
  whenGone([this, reply = std::move(reply)] {
    startCore();
    reply(loaded ? 0 : notLoaded);
  });
}

void CoreJob::registerAgent(std::size_t bundled) {
  status = approvalWithheld ? 2 : 1;
  if (status != 1 || loaded) return;
  loaded = true;
  definition = bundled;
  needs_.timeline.after(needs_.dice.between(Time(0), milliseconds(50)), [this] { startCore(); });
}

void CoreJob::unregisterAgent(Unregistered reply) {
  if (status != 1 && status != 2) {
    return reply(platform::Error("SMAppServiceErrorDomain", 6, "The job \"core\" isn't registered"));
  }
  loaded = false;
  askToStop();
  whenGone([this, reply = std::move(reply)] {
    status = needs_.dice.chance(100) ? 3 : 0;
    reply(std::nullopt);
  });
}

void CoreJob::sigkill(const Process& process) {
  if (process.kind == ProcessKind::Core) {
    dieAfter(nature_.diesAfterKill, process.pid, process.startMicros);
  } else {
    needs_.processes.remove(process.pid);
  }
}

}  // namespace tamo::simulation
