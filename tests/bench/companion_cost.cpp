#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <vector>

#include "platform/stage/launchd_wire.hpp"
#include "platform/stage/programs/app_copy.hpp"
#include "platform/stage/programs/stage_layout.hpp"

/// What the companion itself costs per action on a stage, beyond the waits that its rules order: CPU time
/// (its own, not its tools'), peak memory, and wall time over those waits. The middle value of several runs
/// each.
///
///   companion_cost [RUNS]
namespace {

using std::chrono::duration;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

struct Action {
  const char* name;
  const char* situation;
  /// The Core's behaviour, as the stage's setting "core" spells it.
  const char* core;
  /// The sleeps and delays that the action cannot do without: 400 ms of intake, 50 ms a launchctl run (the
  /// first look at a tool that has just been started finds it running), and a hard stop's watch.
  milliseconds ordered;
};

const std::vector<Action> actions{
    {"status", "the agent is enabled", "", milliseconds(400)},
    {"sync", "the definition is unchanged: one print", "", milliseconds(450)},
    {"register", "the agent is enabled: one kickstart", "", milliseconds(450)},
    {"restart", "the Core obeys SIGTERM: two prints, a kickstart beside the watch", "", milliseconds(550)},
    {"restart", "the Core ignores SIGTERM: the watch's 2 s of grace and one poll", "term=ignore",
     milliseconds(2550)},
};

struct Cost {
  double cpuMilliseconds;
  double overMilliseconds;
  double peakMegabytes;
};

/// The CPU time of a process that has ended but is not yet reaped: its own, without that of its children.
double ownCpuMilliseconds(pid_t pid) {
  clockid_t clock{};
  timespec spent{};
  if (::clock_getcpuclockid(pid, &clock) != 0 || ::clock_gettime(clock, &spent) != 0) return -1;
  return static_cast<double>(spent.tv_sec) * 1e3 + static_cast<double>(spent.tv_nsec) / 1e6;
}

Cost runOnce(const tamo::stage::StageRoot& root, const Action& action) {
  const auto program = root.host(tamo::stage::companionProgram(tamo::stage::copyPath(root, "installed")));
  const auto started = steady_clock::now();
  const pid_t pid = ::fork();
  if (pid == 0) {
    std::freopen("/dev/null", "w", stderr);
    ::execl(program.c_str(), program.c_str(), "--core-action", action.name, nullptr);
    ::_exit(127);
  }
  siginfo_t ended{};
  ::waitid(P_PID, static_cast<id_t>(pid), &ended, WEXITED | WNOWAIT);
  const duration<double, std::milli> wall = steady_clock::now() - started;
  const double cpu = ownCpuMilliseconds(pid);
  rusage usage{};
  int status = 0;
  ::wait4(pid, &status, 0, &usage);
  if (status != 0) std::fprintf(stderr, "%s ended with %d\n", action.name, status);
  return {cpu, wall.count() - static_cast<double>(action.ordered.count()),
          static_cast<double>(usage.ru_maxrss) / 1024};
}

double middle(std::vector<Cost> costs, double Cost::*value) {
  std::sort(costs.begin(), costs.end(),
            [value](const Cost& a, const Cost& b) { return a.*value < b.*value; });
  return costs[costs.size() / 2].*value;
}

void measure(const tamo::stage::StageRoot& root, const Action& action, int runs) {
  root.set("core", action.core);
  static_cast<void>(tamo::stage::askLaunchd(
      root, {"kickstart", "-k", "gui/" + std::to_string(root.userID()) + "/studio.pell.tamo.core"}));
  std::vector<Cost> costs;
  for (int run = 0; run < runs; ++run) {
    // The watch's rule for a young Core looks at ticks; a Core and a companion of different ticks tell
    // nothing new.
    ::usleep(100'000);
    costs.push_back(runOnce(root, action));
  }
  std::printf("%-9s %6.2f ms CPU  %6.2f MB peak  %7.2f ms over the %lld ms ordered   %s\n", action.name,
              middle(costs, &Cost::cpuMilliseconds), middle(costs, &Cost::peakMegabytes),
              middle(costs, &Cost::overMilliseconds), static_cast<long long>(action.ordered.count()),
              action.situation);
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc > 1 ? std::atoi(argv[1]) : 9;
  const auto directory = std::filesystem::temp_directory_path() / ("tamo-cost-" + std::to_string(::getpid()));
  const auto root = tamo::stage::layStage({.directory = directory, .programs = TAMO_BINARY_DIR "/bin"});
  ::setenv("TAMO_STAGE", root.directory().c_str(), 1);
  runOnce(root, {"register", "", "", milliseconds(0)});
  for (const auto& action : actions)
    measure(root, action, std::max(runs, 1));
  ::unsetenv("TAMO_STAGE");
  tamo::stage::strikeStage(root.directory());
  return 0;
}
