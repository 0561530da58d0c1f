#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include "platform/stage/launchd_wire.hpp"
#include "process_cost.hpp"
#include "stage/control/app_copy.hpp"
#include "stage/control/stage_layout.hpp"

/// What the companion itself costs per action on a stage, beside a program that only sleeps as the action's rules order:
/// CPU time (its own, not its tools'), peak memory and wall time, the middle value of several runs each. A sleep costs
/// CPU time and comes to its end late, on some machines a good deal of both, so what the rules order is measured as the
/// machine carries it out and not only counted.
///
///   companion_cost [RUNS]
namespace {

using std::chrono::milliseconds;
using tamo::bench::Cost;
using tamo::bench::costOf;

constexpr milliseconds intake(400);
constexpr milliseconds poll(50);

/// The polls of 50 ms that an action cannot do without, after the 0.4 s of intake: one for each launchctl run at least
/// (the first look at a tool that was just started finds it running), and those of a hard stop's watch beside them.
struct Action {
  const char* name;
  const char* situation;
  /// The Core's behaviour, as the stage's setting "core" spells it.
  const char* core;
  int polls;
  int watchPolls;

  [[nodiscard]] milliseconds ordered() const { return intake + polls * poll; }
};

const std::vector<Action> actions{
    {"status", "the agent is enabled", "", 0, 0},
    {"sync", "the definition is unchanged: a print", "", 1, 0},
    {"register", "the agent is enabled: a kickstart", "", 1, 0},
    {"restart", "the Core obeys SIGTERM: two prints, a kickstart beside the watch", "", 3, 1},
    {"restart", "the Core ignores SIGTERM: killed after 2 s", "term=ignore", 43, 41},
};

Cost sleepingAlone(const Action& action) {
  return costOf([&action] {
    std::thread watch([&action] {
      std::this_thread::sleep_for(intake + (action.polls - action.watchPolls) * poll);
      for (int sleep = 0; sleep < action.watchPolls; ++sleep)
        std::this_thread::sleep_for(poll);
    });
    std::this_thread::sleep_for(intake);
    for (int sleep = 0; sleep < action.polls; ++sleep)
      std::this_thread::sleep_for(poll);
    watch.join();
  });
}

Cost companion(const tamo::stage::StageRoot& root, const char* action) {
  const auto program = root.host(tamo::stage::companionProgram(tamo::stage::copyPath(root, "installed")));
  return costOf([&program, action] {
    if (std::freopen("/dev/null", "w", stderr) == nullptr) ::_exit(126);
    ::execl(program.c_str(), program.c_str(), "--core-action", action, nullptr);
    ::_exit(127);
  });
}

double middle(std::vector<Cost> costs, double Cost::* value) {
  std::sort(costs.begin(), costs.end(),
            [value](const Cost& a, const Cost& b) { return a.*value < b.*value; });
  return costs[costs.size() / 2].*value;
}

void measure(const tamo::stage::StageRoot& root, const Action& action, int runs) {
  root.set("core", action.core);
  static_cast<void>(tamo::stage::askLaunchd(
      root, {"kickstart", "-k", "gui/" + std::to_string(root.userID()) + "/studio.pell.tamo.core"}));
  std::vector<Cost> own;
  std::vector<Cost> sleeping;
  for (int run = 0; run < runs; ++run) {
    sleeping.push_back(sleepingAlone(action));
    own.push_back(companion(root, action.name));
  }
  const double wall = middle(own, &Cost::wallMilliseconds);
  std::printf(
      "%-9s CPU %5.2f ms, %5.2f of it for sleeping; peak %4.2f MB; wall %6.2f ms over the %4lld ordered, "
      "%6.2f over the sleeps   %s\n",
      action.name, middle(own, &Cost::cpuMilliseconds), middle(sleeping, &Cost::cpuMilliseconds),
      middle(own, &Cost::peakMegabytes), wall - static_cast<double>(action.ordered().count()),
      static_cast<long long>(action.ordered().count()), wall - middle(sleeping, &Cost::wallMilliseconds),
      action.situation);
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc > 1 ? std::atoi(argv[1]) : 9;
  const auto directory = std::filesystem::temp_directory_path() / ("tamo-cost-" + std::to_string(::getpid()));
  const auto root = tamo::stage::layStage({.directory = directory, .programs = TAMO_BINARY_DIR "/bin"});
  ::setenv("TAMO_STAGE", root.directory().c_str(), 1);
  companion(root, "register");
  for (const auto& action : actions)
    measure(root, action, std::max(runs, 1));
  ::unsetenv("TAMO_STAGE");
  tamo::stage::strikeStage(root.directory());
  return 0;
}
