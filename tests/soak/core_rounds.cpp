#include <algorithm>
#include <array>
#include <csignal>

#include "platform/posix/posix_files.hpp"
#include "soak/stop_rounds.hpp"
#include "stage/common/stage_census.hpp"

/// Restarts of launchd's own Core, in every shape.
namespace tamo::soak {
namespace {

using std::chrono::milliseconds;

const std::vector<std::string> exitedOnly = {"exited"};
const std::vector<std::string> killedOnly = {"killedGroup"};
const std::vector<std::string> either = {"exited", "killedGroup"};

/// The words for launchd's process, which the stage's own are found by.
pid_t launchdOf(const std::string& directory) {
  for (const auto& process : stage::processesOfStage(directory))
    if (process.command.contains("launchd") && !process.command.contains("launchctl")) return process.pid;
  return 0;
}

}  // namespace

struct StopRounds::Shape {
  std::string name;
  std::string words;
  std::vector<std::string> outcomes;
  /// The Core's words end in a number of milliseconds between these.
  int least = -1;
  int most = -1;
  /// Whether a stranger takes the Core's pid as soon as it is free.
  bool reuse = false;
  /// Whether launchd stands still while the Core ends, so that it stays a zombie.
  bool unreaped = false;

  static const std::vector<Shape>& all();
};

const std::vector<StopRounds::Shape>& StopRounds::Shape::all() {
  static const std::vector<Shape> shapes = {
      {.name = "obeys at once", .words = "term=obey", .outcomes = exitedOnly},
      {.name = "obeys late", .words = "term=late:", .outcomes = exitedOnly, .least = 1, .most = 1500},
      {.name = "obeys about the end of the grace",
       .words = "term=late:",
       .outcomes = either,
       .least = 1850,
       .most = 2150},
      {.name = "obeys too late", .words = "term=late:", .outcomes = killedOnly, .least = 3500, .most = 5000},
      {.name = "ignores the request", .words = "term=ignore", .outcomes = killedOnly},
      {.name = "stops itself", .words = "stops-itself", .outcomes = killedOnly},
      {.name = "has children in its group", .words = "term=ignore children=3", .outcomes = killedOnly},
      {.name = "has children that left its group",
       .words = "term=ignore children=2:leave",
       .outcomes = killedOnly},
      {.name = "has orphans in its group", .words = "term=ignore children=2:orphan", .outcomes = killedOnly},
      {.name = "is in launchd's group", .words = "term=ignore group=parent", .outcomes = {"killedProcess"}},
      {.name = "dies by itself",
       .words = "term=ignore dies-after:",
       .outcomes = either,
       .least = 1200,
       .most = 2300},
      {.name = "is busy with a revert", .words = "term=revert:2700", .outcomes = {"spared"}},
      {.name = "is not reaped", .words = "term=late:600", .outcomes = exitedOnly, .unreaped = true},
      {.name = "is followed by a stranger with its pid",
       .words = "term=late:",
       .outcomes = exitedOnly,
       .least = 1,
       .most = 1600,
       .reuse = true},
  };
  return shapes;
}

std::size_t StopRounds::shapes() {
  return Shape::all().size();
}

/// Tries from the moment of the Core's end on, over and over: the pid becomes free when launchd reaps.
void StopRounds::takePid(Witness& companion, Strangers& strangers, const Held& core, pid_t pid) {
  const auto limit = companion.begun() + milliseconds(2500);
  while (!core.ended() && Clock::now() < limit)
    static_cast<void>(companion.serveUntil(Clock::now() + milliseconds(1)));
  const auto give = Clock::now() + milliseconds(300);
  while (Clock::now() < give)
    if (giveTo(strangers, pid)) return tally_.count("pids of a Core given to a stranger");
  tally_.count("pids of a Core that were not free in time");
}

/// From the request on, which is the last that launchd notes, and from before the Core's end until after the
/// grace, so that only a look at its state tells that it is gone.
void StopRounds::leaveUnreaped(Witness& companion, const Held& core, pid_t pid) {
  const auto launchd = launchdOf(stage_.root().directory());
  const auto log = stage_.root().control("launchd.log");
  const auto asked = "SIGTERM to pid " + std::to_string(pid) + "\n";
  const auto limit = companion.begun() + milliseconds(2000);
  while (Clock::now() < limit && !platform::posix::readWhole(log).value_or("").ends_with(asked))
    companion.serveUntil(Clock::now() + milliseconds(2));
  ::kill(launchd, SIGSTOP);
  companion.serveUntil(companion.begun() + milliseconds(3000));
  const bool zombie = core.ended() && ::kill(pid, 0) == 0;
  tally_.count(zombie ? "Cores seen as zombies that answer signal 0" : "Cores that were no zombie in time");
  ::kill(launchd, SIGCONT);
}

StopRounds::Helpers StopRounds::helpersOf(pid_t core) const {
  Helpers helpers;
  for (const auto& process : stage::processesOfStage(stage_.root().directory())) {
    if (process.pid == core || !process.command.ends_with("tamo-core-agent")) continue;
    (process.group == core ? helpers.members : helpers.leavers).push_back(process.pid);
  }
  return helpers;
}

void StopRounds::judgeHelpers(const std::string& outcome, const std::string& round, const Helpers& helpers) {
  for (const auto pid : helpers.members) {
    tally_.count("helpers in the Core's group");
    if (outcome.starts_with("killedGroup") && scenario::runs(pid))
      tally_.wrong(round + ": a member of the Core's group lives on");
  }
  for (const auto pid : helpers.leavers) {
    tally_.count("helpers outside the Core's group");
    if (!scenario::runs(pid)) tally_.wrong(round + ": a helper outside the group was hit");
  }
}

void StopRounds::coreRound(std::size_t number) {
  const auto& shape = Shape::all().at(number % shapes());
  const auto words =
      shape.words + (shape.most < 0 ? "" : std::to_string(chance_.between(shape.least, shape.most)));
  tally_.count("Core " + shape.name);
  const StopExpected expected{
      .round = shape.name + " (" + words + ")", .core = freshCore(words), .outcomes = shape.outcomes};
  if (expected.core == 0) return tally_.wrong(expected.round + ": there is no Core");
  restart(shape, expected);
  const auto next = stage_.corePid();
  if (next == 0 || next == expected.core) tally_.wrong(expected.round + ": no new Core runs");
  endHelpers(next);
}

void StopRounds::restart(const Shape& shape, const StopExpected& expected) {
  const auto helpers = helpersOf(expected.core);
  const Held core(expected.core);
  Strangers strangers;
  strangers.add("in the soak's own group", {.group = std::nullopt});
  strangers.addNextTo(expected.core);
  auto program = companion(0);
  program.atSending = [&](const Sent&) {
    if (core.ended()) tally_.count("kills asked for when the Core had just ended");
  };
  Witness companion(program);
  strangers.add("in the companion's group", {.group = companion.pid()});
  if (shape.reuse) takePid(companion, strangers, core, expected.core);
  if (shape.unreaped) leaveUnreaped(companion, core, expected.core);
  const auto outcome = finish(companion, expected);
  if (!outcome) return;
  if (!core.ended()) tally_.wrong(expected.round + ": the Core lives on");
  judgeHelpers(*outcome, expected.round, helpers);
  strangers.judge(tally_, expected.round);
}

}  // namespace tamo::soak
