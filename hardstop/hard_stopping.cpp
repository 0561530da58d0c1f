#include "hardstop/hard_stopping.hpp"

#include <algorithm>
#include <exception>
#include <expected>
#include <memory>
#include <utility>
#include <vector>

#include "guard/live_data_guard.hpp"
#include "hardstop/hard_stop.hpp"
#include "hardstop/process_snapshot.hpp"
#include "hardstop/spare_reason.hpp"
#include "hardstop/stop_failed.hpp"
#include "platform/bundle_info.hpp"
#include "platform/completion.hpp"

namespace tamo {
namespace {

using HardStop::Outcome;
using HardStop::Seen;
using Needs = HardStopping::Needs;
using platform::Completion;
using platform::Task;

/// What the main thread finds out before the watcher starts; the watcher is given a copy of it.
struct Gathered {
  Seen first;
  std::vector<std::string> revertPaths;
  std::int32_t ownGroup;
  std::optional<std::string> build;
  std::optional<std::uint64_t> helperStartMicros;
};

/// The print only names a pid. Whether a process is behind it is the kernel's to say, and the look gives it
/// the identity that every later look is compared with.
std::optional<Seen> runningCore(const Needs& needs) {
  const auto print = needs.printedJob();
  if (!print) return std::nullopt;
  const auto pid = HardStop::pid(*print);
  if (!pid) return std::nullopt;
  return HardStop::kernel(needs.kernelProcesses, *pid);
}

/// Without a data directory there is nowhere to look, and the Core counts as not reverting.
std::vector<std::string> revertPaths(const std::optional<std::string>& dataDirectory) {
  std::vector<std::string> paths;
  if (!dataDirectory) return paths;
  for (const auto name : HardStop::revertFiles)
    paths.push_back(*dataDirectory + std::string(name));
  return paths;
}

/// Of the application around this helper: the Core that runs was installed with it.
std::optional<std::string> installedBuild(const Needs& needs) {
  const auto app = LiveDataGuard::outerApp(needs.bundles.mainBundlePath());
  return platform::bundleText(needs.files, app, "CFBundleVersion");
}

/// Asked of the kernel, as the Core's start is: two stamps of one clock can be compared.
std::optional<std::uint64_t> ownStartMicros(const platform::KernelProcesses& processes) {
  const auto own = HardStop::kernel(processes, processes.ownPid());
  if (!own) return std::nullopt;
  return own->startMicros;
}

/// The members are filled in the order in which they are declared.
Gathered gather(const Needs& needs, const Seen& first) {
  return Gathered{
      .first = first,
      .revertPaths = revertPaths(needs.dataDirectory()),
      .ownGroup = needs.kernelProcesses.ownGroup(),
      .build = installedBuild(needs),
      .helperStartMicros = ownStartMicros(needs.kernelProcesses),
  };
}

/// Judged when the decision is due: a marker file may have come or gone since the watcher started.
std::optional<std::string> reasonToSpare(const Gathered& gathered, const platform::FileReader& files) {
  const auto exists = [&files](const std::string& path) { return files.exists(path); };
  return HardStop::spareReason({
      .build = gathered.build,
      .watched = gathered.first,
      .helperStartMicros = gathered.helperStartMicros,
      .revertFilesPresent = std::ranges::any_of(gathered.revertPaths, exists),
  });
}

void kill(platform::KernelProcesses& processes, std::int32_t target, bool isGroup) {
  if (isGroup) {
    processes.killGroup(target);
  } else {
    processes.kill(target);
  }
}

/// What the watcher may do on its thread: it holds copies of what was gathered, and refers only to what any
/// thread may ask.
HardStop::Operations operations(const Needs& needs, const Gathered& gathered,
                                std::shared_ptr<const StopFailed> failed) {
  auto& processes = needs.kernelProcesses;
  auto& clock = needs.clock;
  const auto& files = needs.files;
  return {
      .grace = HardStop::grace,
      .poll = HardStop::poll,
      .reap = HardStop::reap,
      .spareWait = HardStop::spareWait,
      .ownGroup = gathered.ownGroup,
      .look = [&processes](std::int32_t pid) { return HardStop::kernel(processes, pid); },
      .spare = [&files, gathered] { return reasonToSpare(gathered, files); },
      .cancelled = [failed = std::move(failed)] { return failed->value(); },
      .signal = [&processes](std::int32_t target, bool isGroup) { kill(processes, target, isGroup); },
      .sleep = [&clock](std::chrono::nanoseconds duration) { clock.sleep(duration); },
      .now = [&clock] { return clock.monotonicNow(); },
  };
}

/// Absent when no thread can be had: nobody watches then.
std::optional<Completion<Outcome>> startWatcher(const Needs& needs, const Gathered& gathered,
                                                std::shared_ptr<const StopFailed> failed) {
  const Completion<Outcome> ended(needs.mainQueue);
  const auto with = operations(needs, gathered, std::move(failed));
  const bool watches = needs.threads.detach(
      [first = gathered.first, with, ended] { ended.deliver(HardStop::run(first, with)); });
  return watches ? std::optional(ended) : std::nullopt;
}

/// How an operation ended: with a result or with an error.
template <class T>
using Settled = std::expected<T, std::exception_ptr>;

/// Keeps the error instead of raising it: the watcher has to be waited for before it travels on.
template <class T>
Task<Settled<T>> settled(std::function<Task<T>()> operation) {
  try {
    co_return co_await operation();
  } catch (...) {
    co_return std::unexpected(std::current_exception());
  }
}

template <class T>
bool stopFailed(const Settled<T>& end, const std::function<bool(const T&)>& asked) {
  return !end || !asked(*end);
}

}  // namespace

HardStopping::HardStopping(Needs needs) : needs_(std::move(needs)) {}

template <class T>
Task<T> HardStopping::hardStopping(std::function<Task<T>()> operation, std::function<bool(const T&)> asked) {
  platform::requireMain(needs_.mainQueue, "a hard stop");
  const auto first = runningCore(needs_);
  const auto failed = std::make_shared<StopFailed>();
  const auto watcher = first ? startWatcher(needs_, gather(needs_, *first), failed) : std::nullopt;
  if (!watcher) co_return co_await operation();
  const auto end = co_await settled<T>(std::move(operation));
  platform::requireMain(needs_.mainQueue, "a stop request's end");
  // Before the watcher is awaited: what it has not decided yet can still be called off.
  if (stopFailed(end, asked)) failed->set();
  const auto outcome = co_await *watcher;
  note(outcome, first->pid, stopFailed(end, asked));
  if (!end) std::rethrow_exception(end.error());
  co_return *end;
}

template Task<platform::Nothing> HardStopping::hardStopping(
    std::function<Task<platform::Nothing>()> operation, std::function<bool(const platform::Nothing&)> asked);
template Task<std::int32_t> HardStopping::hardStopping(std::function<Task<std::int32_t>()> operation,
                                                       std::function<bool(const std::int32_t&)> asked);

/// The record says that the stop request failed. The log's line does not: the outcome line beside it has the
/// error.
void HardStopping::note(const Outcome& outcome, std::int32_t pid, bool stopFailed) {
  platform::requireMain(needs_.mainQueue, "a hard stop's note");
  const auto text = HardStop::text(outcome);
  hardStop_ = text + (stopFailed ? " stopFailed" : "");
  needs_.log.write({.format = platform::LogFormat::hardStop, .arguments = {std::int64_t{pid}, text}});
}

}  // namespace tamo
