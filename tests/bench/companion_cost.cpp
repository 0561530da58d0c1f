#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

#include "figure_row.hpp"
#include "platform/stage/launchd_wire.hpp"
#include "process_cost.hpp"
#include "stage/control/app_copy.hpp"
#include "stage/control/stage_layout.hpp"

/// What the companion itself costs per action on a stage, beside the sleeper (sleeper.cpp), with which it takes turns:
/// CPU time (its own, not its tools'), wall time and peak memory, the middle value of several runs each. A sleep costs
/// CPU time and comes to its end late, on some machines a good deal of both, so what the rules order is measured as the
/// machine carries it out and not only counted.
///
///   companion_cost [RUNS]
namespace {

using std::chrono::milliseconds;
using tamo::bench::Cost;
using tamo::bench::costOf;
using tamo::bench::median;
using tamo::bench::text;
using Words = std::vector<std::string>;

constexpr double mostTimesTheSleeper = 1.5;
constexpr double mostMillisecondsOverTheWaits = 5;
/// Memory varies by a page or two, so a few runs tell.
constexpr int memoryRuns = 5;

/// The polls of 50 ms that an action cannot do without, after the 0.4 s of intake: one for each launchctl run at least
/// (the first look at a tool that was just started finds it running), and those of a hard stop's watch beside them.
struct Action {
  const char* name;
  const char* situation;
  /// The Core's behaviour, as the stage's setting "core" spells it.
  const char* core;
  int polls;
  int watchPolls;

  [[nodiscard]] double orderedMilliseconds() const { return 400 + polls * 50; }
  [[nodiscard]] Words sleeper() const {
    return {TAMO_BINARY_DIR "/tests/bench/sleeper", std::to_string(polls), std::to_string(watchPolls)};
  }
};

const std::vector<Action> actions{
    {"status", "the agent is enabled", "", 0, 0},
    {"sync", "the definition is unchanged: a print", "", 1, 0},
    {"register", "the agent is enabled: a kickstart", "", 1, 0},
    {"restart", "the Core obeys: two prints, a kickstart beside the watch", "", 3, 1},
    {"restart", "the Core ignores SIGTERM: killed after 2 s", "term=ignore", 43, 41},
};

struct Costs {
  std::vector<double> cpu;
  std::vector<double> wall;
  std::vector<double> peak;

  void add(const Cost& cost) {
    cpu.push_back(cost.cpuMilliseconds);
    wall.push_back(cost.wallMilliseconds);
  }
};

struct Pair {
  Costs own;
  Costs sleeper;
};

Words companion(const tamo::stage::StageRoot& root, const char* action) {
  return {root.host(tamo::stage::companionProgram(tamo::stage::copyPath(root, "installed"))), "--core-action",
          action};
}

/// The first run of each only warms the machine's caches.
Pair measured(const Words& own, const Words& sleeper, int runs) {
  Pair costs;
  for (int run = -1; run < runs; ++run) {
    const auto slept = costOf(sleeper);
    const auto acted = costOf(own);
    if (run < 0) continue;
    costs.sleeper.add(slept);
    costs.own.add(acted);
  }
  for (int run = 0; run < std::min(runs, memoryRuns); ++run) {
    costs.sleeper.peak.push_back(tamo::bench::peakMegabytesOf(sleeper));
    costs.own.peak.push_back(tamo::bench::peakMegabytesOf(own));
  }
  return costs;
}

void printBeside(const std::string& what, const char* unit, double own, double sleeper) {
  const double times = own / sleeper;
  tamo::bench::printRow({.what = what,
                         .asked = text("at most %.1f × the sleeper's", mostTimesTheSleeper),
                         .measured = text("%.2f %s, the sleeper's %.2f: %.2f ×", own, unit, sleeper, times),
                         .held = times <= mostTimesTheSleeper});
}

void print(const Action& action, const Pair& costs) {
  const std::string name = text("`%s` (%s)", action.name, action.situation);
  printBeside(name + ": CPU time", "ms", median(costs.own.cpu), median(costs.sleeper.cpu));
  printBeside(name + ": peak memory", "MB", median(costs.own.peak), median(costs.sleeper.peak));
  const double own = median(costs.own.wall);
  const double over = own - median(costs.sleeper.wall);
  tamo::bench::printRow({.what = name + ": wall time over the ordered waits",
                         .asked = text("at most %.0f ms", mostMillisecondsOverTheWaits),
                         .measured = text("%.2f ms (over %.0f ms by the clock: %.2f)", over,
                                          action.orderedMilliseconds(), own - action.orderedMilliseconds()),
                         .held = over <= mostMillisecondsOverTheWaits});
}

void measure(const tamo::stage::StageRoot& root, const Action& action, int runs) {
  root.set("core", action.core);
  static_cast<void>(tamo::stage::askLaunchd(
      root, {"kickstart", "-k", "gui/" + std::to_string(root.userID()) + "/studio.pell.tamo.core"}));
  print(action, measured(companion(root, action.name), action.sleeper(), runs));
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc > 1 ? std::atoi(argv[1]) : 20;
  const auto directory = std::filesystem::temp_directory_path() / ("tamo-cost-" + std::to_string(::getpid()));
  const auto root = tamo::stage::layStage({.directory = directory, .programs = TAMO_BINARY_DIR "/bin"});
  ::setenv("TAMO_STAGE", root.directory().c_str(), 1);
  static_cast<void>(costOf(companion(root, "register")));
  for (const auto& action : actions)
    measure(root, action, std::max(runs, 1));
  ::unsetenv("TAMO_STAGE");
  tamo::stage::strikeStage(root.directory());
  return 0;
}
