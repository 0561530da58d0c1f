#include "soak/tool_rounds.hpp"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "scenario/move_stage.hpp"
#include "soak/witness.hpp"
#include "stage/common/stage_census.hpp"

namespace tamo::soak {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

constexpr long smallPeak = 32 * 1024;

struct Case {
  std::string tool;
  std::string fault;
  std::string action;
  /// A part of the last line of the log.
  std::string answer;
  milliseconds bound{8000};
  milliseconds least{0};
  long kilobytes = smallPeak;
  /// Nothing bounds the wait for it, so the harness ends it after two seconds.
  bool endedByHarness = false;
  /// The user may not write to /Applications.
  bool closed = false;
  /// The Core and its job must be as they were.
  bool keepsCore = false;
};

const std::string moving = "move-to-applications";

const std::vector<Case>& cases() {
  static const std::vector<Case> all = {
      // While launchctl's print cannot be had, the action goes on without it, after five seconds each time.
      {.tool = "launchctl",
       .fault = "* hang hard",
       .action = "sync",
       .answer = "{public:sync} -> status {public:1} ok {public:Optional(true)}{public:}{public:}",
       .bound = milliseconds(30000),
       .keepsCore = true},
      {.tool = "launchctl",
       .fault = "* hang hard",
       .action = "restart",
       .answer = "kickstart -1",
       .bound = milliseconds(40000)},
      {.tool = "launchctl",
       .fault = "print hang hard",
       .action = "restart",
       .answer = "kickstart 0",
       .bound = milliseconds(30000)},
      {.tool = "launchctl",
       .fault = "kickstart hang hard",
       .action = "restart",
       .answer = "kickstart -1",
       .bound = milliseconds(30000)},
      {.tool = "launchctl",
       .fault = "print flood 100000000",
       .action = "restart",
       .answer = "kickstart 0",
       .bound = milliseconds(40000),
       .kilobytes = 400000},
      {.tool = "launchctl",
       .fault = "kickstart flood 100000000",
       .action = "restart",
       .answer = "kickstart 0",
       .bound = milliseconds(20000)},
      {.tool = "launchctl", .fault = "* hold 3000", .action = "restart", .answer = "kickstart 0"},
      {.tool = "launchctl", .fault = "* die 9", .action = "restart", .answer = "kickstart 9"},
      {.tool = "launchctl",
       .fault = "print die 11",
       .action = "sync",
       .answer = "{public:sync} -> status {public:1} ok {public:Optional(true)}{public:}{public:}",
       .keepsCore = true},
      {.tool = "launchctl", .fault = "kickstart die 15", .action = "restart", .answer = "kickstart 15"},
      {.tool = "launchctl",
       .fault = "* hang hard",
       .action = "register",
       .answer = "kickstart -1",
       .bound = milliseconds(20000),
       .keepsCore = true},
      {.tool = "ditto",
       .fault = "* hang hard",
       .action = moving,
       .answer = "{public:copy_failed}",
       .endedByHarness = true},
      {.tool = "ditto",
       .fault = "* flood 100000000",
       .action = moving,
       .answer = "{public:moved}",
       .bound = milliseconds(15000)},
      {.tool = "ditto",
       .fault = "* hold 1500",
       .action = moving,
       .answer = "{public:moved}",
       .least = milliseconds(1500)},
      {.tool = "ditto", .fault = "* die 9", .action = moving, .answer = "{public:copy_failed}"},
      {.tool = "ditto", .fault = "* die 11", .action = moving, .answer = "{public:copy_failed}"},
      {.tool = "xattr",
       .fault = "* hang hard",
       .action = moving,
       .answer = "{public:moved}",
       .endedByHarness = true},
      {.tool = "xattr",
       .fault = "* flood 100000000",
       .action = moving,
       .answer = "{public:moved}",
       .bound = milliseconds(15000)},
      {.tool = "xattr",
       .fault = "* hold 1500",
       .action = moving,
       .answer = "{public:moved}",
       .least = milliseconds(1500)},
      {.tool = "xattr", .fault = "* die 9", .action = moving, .answer = "{public:moved}"},
      {.tool = "osascript",
       .fault = "* hang hard",
       .action = moving,
       .answer = "{public:not_writable}",
       .endedByHarness = true,
       .closed = true},
      {.tool = "osascript",
       .fault = "* flood 100000000",
       .action = moving,
       .answer = "{public:moved}",
       .bound = milliseconds(15000),
       .closed = true},
      {.tool = "osascript",
       .fault = "* hold 1500",
       .action = moving,
       .answer = "{public:moved}",
       .least = milliseconds(1500),
       .closed = true},
      {.tool = "osascript",
       .fault = "* die 9",
       .action = moving,
       .answer = "{public:not_writable}",
       .closed = true},
  };
  return all;
}

Witness::Program companion(const stage::StageRoot& root, const Case& one) {
  const auto copy = stage::copyPath(root, one.action == moving ? "downloaded" : "installed");
  return {.path = root.host(stage::companionProgram(copy)),
          .arguments = {"--core-action", one.action},
          .environment = {"TAMO_STAGE=" + root.directory(), "PATH=/usr/bin:/bin"},
          .group = 0};
}

void endTools(const stage::StageRoot& root) {
  for (const auto& process : stage::processesOfStage(root.directory())) {
    const bool tool =
        process.command.starts_with("/bin/launchctl") || process.command.starts_with("/usr/bin/");
    if (tool) ::kill(process.pid, SIGKILL);
  }
}

/// A tool may end itself, the companion may ask tools of its own to end, and a hard
/// stop may kill the Core. Nothing else may go to anybody.
std::string astray(const std::vector<Sent>& sent, pid_t companion, pid_t core) {
  for (const auto& one : sent) {
    const bool toItself = one.by != companion && one.target == one.by;
    const bool request = one.by == companion && one.signal == SIGTERM && one.target > 1;
    const bool hardStop = one.by == companion && one.signal == SIGKILL && core > 1 && one.target == -core;
    if (toItself || request || hardStop) continue;
    return "signal " + std::to_string(one.signal) + " went from " + std::to_string(one.by) + " to " +
           std::to_string(one.target);
  }
  return "";
}

void play(Tally& tally, const Case& one, const scenario::Stage& stage, bool hitsCore = false) {
  const auto name = one.tool + ", " + one.fault + ", " + one.action;
  const auto& root = stage.root();
  const auto core = one.action == moving ? 0 : stage.corePid();
  root.set("tool-" + one.tool, one.fault);
  Witness witness(companion(root, one));
  if (hitsCore) ::kill(core, SIGKILL);
  if (one.endedByHarness && !witness.serveUntil(witness.begun() + milliseconds(2000))) endTools(root);
  const auto pid = witness.pid();
  const auto ended = witness.finish(one.bound + milliseconds(5000));
  root.set("tool-" + one.tool, "");
  endTools(root);
  tally.count("tools that misbehaved");
  if (!ended) return tally.wrong(name + ": the companion hung");
  const auto lines = stage.lines();
  const auto last = lines.empty() ? std::string("no line") : lines.back();
  tally.greatest(name + ": ms", ended->after.count());
  tally.greatest(name + ": kilobytes", ended->kilobytes);
  if (ended->status != 0) tally.wrong(name + ": the companion ended with " + std::to_string(ended->status));
  if (ended->after > one.bound || ended->after < one.least)
    tally.wrong(name + ": it took " + std::to_string(ended->after.count()) + " ms");
  if (ended->kilobytes > one.kilobytes)
    tally.wrong(name + ": " + std::to_string(ended->kilobytes) + " kilobytes");
  if (!last.contains(one.answer)) tally.wrong(name + ": " + last);
  if (const auto what = astray(witness.sent(), pid, one.keepsCore ? 0 : core); !what.empty())
    tally.wrong(name + ": " + what);
  if (one.keepsCore && stage.corePid() != core) tally.wrong(name + ": the Core was hit");
}

}  // namespace

std::size_t toolCases() {
  return cases().size();
}

void playTool(Tally& tally, std::size_t number) {
  const auto& one = cases().at(number % toolCases());
  if (one.action != moving) return play(tally, one, scenario::Stage({.core = "term=obey"}));
  const scenario::MoveStage stage;
  const auto folder = stage.root().host("/Applications");
  if (one.closed) fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
  play(tally, one, stage.stage());
  for (const auto& process : stage::processesOfStage(stage.root().directory()))
    if (process.command.ends_with("/MacOS/Tamo")) ::kill(process.pid, SIGKILL);
  fs::permissions(folder, fs::perms::owner_all);
}

void toolCanary(Tally& tally) {
  const Case one{
      .tool = "launchctl", .fault = "print die 11", .action = "sync", .answer = "", .keepsCore = true};
  play(tally, one, scenario::Stage({.core = "term=obey"}), true);
}

}  // namespace tamo::soak
