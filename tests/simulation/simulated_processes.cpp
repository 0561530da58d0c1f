#include "simulation/simulated_processes.hpp"

#include <algorithm>
#include <utility>

#include "simulation/referee.hpp"
#include "simulation/tool_bench.hpp"

namespace tamo::simulation {
namespace {

constexpr std::uint64_t microsPerSecond = 1'000'000;
constexpr std::chrono::seconds launchctlLimit(5);

bool isKickstart(const platform::ToolLaunch& launch) {
  return launch.path == "/bin/launchctl" && launch.arguments.front() == "kickstart";
}

bool kills(const platform::ToolLaunch& kickstart) {
  return kickstart.arguments[1] == "-k";
}

/// What is asked of a tool, in a word.
std::string_view workOf(const platform::ToolLaunch& launch) {
  const std::string_view path(launch.path);
  const auto name = path.substr(path.rfind('/') + 1);
  return name == "launchctl" ? std::string_view(launch.arguments.front()) : name;
}

/// A tool as the companion that started it holds it.
class HeldTool final : public platform::Tool {
 public:
  HeldTool(Companion& companion, std::shared_ptr<RunningTool> tool)
      : companion_(companion),
        tool_(std::move(tool)),
        number_(companion.record.tools.size() - 1),
        started_(companion.world.clocks.now()),
        slow_(companion.record.slow) {}

  [[nodiscard]] bool running() override {
    static_cast<void>(companion_.enter(Call::toolRunning));
    if (waited().monotonic >= launchctlLimit) ++lateLooks_;
    // One look may have begun before the deadline, and one is due after it.
    companion_.expect(lateLooks_ <= 2, Invariant::Waits, "a tool is looked at after its 5 s");
    return !tool_->done;
  }

  [[nodiscard]] std::int32_t wait() override {
    const bool untold = companion_.enter(Call::toolWait, workOf(tool_->launch));
    waitForEnd();
    return settled(untold ? -1 : tool_->status);
  }

  void terminate() override {
    static_cast<void>(companion_.enter(Call::toolTerminate));
    companion_.expect(waited().monotonic >= launchctlLimit, Invariant::Waits, "a tool is given up early");
    companion_.note("gives up on ", tool_->launch.arguments.front());
    ToolBench::terminate(companion_.world, tool_);
    static_cast<void>(settled(-1));
  }

  [[nodiscard]] std::string readErrors(std::size_t limit) override {
    const bool unread = companion_.enter(Call::toolErrors, workOf(tool_->launch));
    Referee::readsErrors(companion_, tool_->launch, limit);
    waitForEnd();
    return unread ? "" : tool_->errors.substr(0, limit);
  }

 private:
  void waitForEnd() {
    auto& timeline = companion_.world.timeline;
    const auto from = timeline.now();
    while (!tool_->done) {
      tool_->waiting = timeline.current();
      timeline.park();
      tool_->waiting = nullptr;
      companion_.stillThere();
    }
    companion_.record.waitedForTools += timeline.now() - from;
  }

  [[nodiscard]] Moment waited() const {
    const auto now = companion_.world.clocks.now();
    return {.awake = now.awake - started_.awake, .monotonic = now.monotonic - started_.monotonic};
  }

  /// What the companion learns of the tool in the end.
  std::int32_t settled(std::int32_t status) {
    Referee::toolTold(companion_, number_, status);
    if (tool_->launch.path != "/bin/launchctl") return status;
    Referee::launchctlTook(companion_, waited().awake, companion_.record.slow - slow_);
    if (!isKickstart(tool_->launch)) return status;
    companion_.record.kickstart = status;
    if (kills(tool_->launch) && status != 0) Referee::stopFailed(companion_);
    return companion_.world.planted == Plant::DeafToFailure ? 0 : status;
  }

  Companion& companion_;
  std::shared_ptr<RunningTool> tool_;
  std::size_t number_;
  Moment started_;
  Time slow_;
  int lateLooks_ = 0;
};

platform::ProcessInfo infoOf(const Process& process) {
  return {.startSeconds = process.startMicros / microsPerSecond,
          .startMicroseconds = process.startMicros % microsPerSecond,
          .group = process.group,
          .zombie = process.zombie};
}

}  // namespace

/// False for a tool that, by a planted fault, is not started at all.
bool SimulatedProcesses::judgeStart(const platform::ToolLaunch& launch) {
  const auto planted = companion_.world.planted;
  const bool print = workOf(launch) == "print";
  auto asked = launch;
  if (planted == Plant::QuarantineKept && workOf(launch) == "xattr") return false;
  if (planted == Plant::WrongTarget && print) asked.arguments.back() = "user/501/studio.pell.tamo.core";
  if (planted == Plant::PrintDiscarded && print) asked.standardOutput = -1;
  if (planted == Plant::ErrorsDiscarded && !launch.path.ends_with("launchctl")) asked.capturesErrors = false;
  if (planted == Plant::PrintedAgain && print) Referee::startsTool(companion_, asked);
  Referee::startsTool(companion_, asked);
  return true;
}

std::unique_ptr<platform::Tool> SimulatedProcesses::start(const platform::ToolLaunch& launch) {
  auto& record = companion_.record;
  static_cast<void>(companion_.enter(Call::startTool, workOf(launch)));
  const auto way = companion_.way();
  const bool fails = way == Way::Fails;
  companion_.note("starts ", launch.path, " ", launch.arguments.front(), ": ", !fails);
  const bool kickstarts = isKickstart(launch);
  if (!judgeStart(launch)) return nullptr;
  if (kickstarts && kills(launch)) Referee::asksToStop(companion_);
  if (kickstarts) Referee::acts(companion_, kills(launch) ? "kickstart -k" : "kickstart");
  if (launch.path == "/usr/bin/ditto") {
    Referee::acts(companion_, "copy");
    Referee::copies(companion_);
  }
  if (launch.path == "/bin/launchctl") ++record.launchctls;
  if (kickstarts) ++record.kickstarts;
  if (!fails) {
    auto& world = companion_.world;
    auto tool = ToolBench::start(world, launch, way == Way::None ? world.faults.toolTrouble() : way);
    return std::make_unique<HeldTool>(companion_, std::move(tool));
  }
  Referee::toolTold(companion_, record.tools.size() - 1, -1);
  if (kickstarts) {
    record.kickstart = -1;
    if (kills(launch)) Referee::stopFailed(companion_);
  }
  return nullptr;
}

std::optional<platform::ProcessInfo> SimulatedKernelProcesses::info(std::int32_t pid) const {
  auto& world = companion_.world;
  const bool fails = companion_.enter(Call::processInfo, pid == companion_.pid() ? "own" : "core");
  const auto* process = fails ? nullptr : world.processes.find(pid);
  auto told = process == nullptr ? std::nullopt : std::optional(infoOf(*process));
  if (world.planted == Plant::ForgedAge && told && pid == companion_.pid()) told->startSeconds -= 3600;
  Referee::looked(companion_, pid, told);
  const auto& stops = companion_.record.stops;
  if (world.planted == Plant::ForgedIdentity && told && !stops.empty() && !stops.back().ended) {
    told->startSeconds = stops.back().first.told->startSeconds;
    told->startMicroseconds = stops.back().first.told->startMicroseconds;
  }
  return told;
}

void SimulatedKernelProcesses::kill(std::int32_t pid) {
  send(pid, false);
}

void SimulatedKernelProcesses::killGroup(std::int32_t group) {
  send(group, true);
}

/// With a planted fault, what leaves the companion is not what it asked for.
void SimulatedKernelProcesses::send(std::int32_t target, bool toGroup) {
  auto& world = companion_.world;
  const bool fails = companion_.enter(Call::kill);
  if (world.planted == Plant::SignalToLaunchd) target = 1;
  if (world.planted == Plant::SignalToStranger) ++target;
  if (world.planted == Plant::SignalToOwnGroup)
    std::tie(target, toGroup) = std::pair(companion_.group(), true);
  const int times = world.planted == Plant::SecondSignal ? 2 : 1;
  for (int time = 0; time < times; ++time)
    Referee::signals(companion_, target, toGroup);
  companion_.note(toGroup ? "kills group " : "kills ", target, ": ", !fails);
  if (fails) return;
  const auto all = world.processes.all();
  for (const auto& process : all) {
    if (toGroup ? process.group == target : process.pid == target) strike(process);
  }
}

void SimulatedKernelProcesses::strike(const Process& process) {
  auto& world = companion_.world;
  const auto hit =
      std::find_if(world.companions.begin(), world.companions.end(), [&process](const auto& other) {
        return other->launched() && !other->ended() && other->pid() == process.pid;
      });
  if (hit == world.companions.end()) {
    world.job.sigkill(process);
  } else {
    (*hit)->die();
  }
}

bool SimulatedThreads::detach(std::function<void()> work) {
  if (companion_.enter(Call::detach)) {
    ++companion_.record.unwatchedStops;
    return false;
  }
  companion_.detach(std::move(work));
  return true;
}

std::chrono::system_clock::time_point SimulatedClock::wallNow() const {
  constexpr std::chrono::seconds newYear(1'767'225'600);
  return std::chrono::system_clock::time_point(
      std::chrono::duration_cast<std::chrono::system_clock::duration>(companion_.world.clocks.wallNow() +
                                                                      newYear));
}

platform::Instant SimulatedClock::monotonicNow() const {
  const auto& world = companion_.world;
  const auto now = world.clocks.monotonicNow();
  if (world.planted == Plant::ClockStopsAsleep) return world.timeline.now();
  if (world.planted == Plant::ClockIsSet) return world.clocks.wallNow();
  return world.planted == Plant::FastClock && !companion_.onMain() ? now * 3 : now;
}

void SimulatedClock::sleep(std::chrono::nanoseconds duration) {
  static_cast<void>(companion_.enter(Call::sleep));
  const bool longer = companion_.world.planted == Plant::LongSleep;
  const auto beyond = companion_.world.faults.oversleep();
  companion_.record.slow += beyond;
  companion_.world.timeline.sleep((longer ? duration * 7 : duration) + beyond);
  companion_.stillThere();
}

}  // namespace tamo::simulation
