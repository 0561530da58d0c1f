#include <algorithm>
#include <csignal>
#include <fstream>
#include <regex>

#include "platform/posix/posix_files.hpp"
#include "soak/stop_rounds.hpp"

/// Restarts of a Core that the harness plays: launchctl's print names it, and the harness alone decides what
/// becomes of it and of its pid. launchd's own Core obeys meanwhile.
namespace tamo::soak {
namespace {

using std::chrono::milliseconds;

}  // namespace

/// One played round.
struct StopRounds::Play {
  std::string name;
  std::vector<std::string> outcomes;
  /// The group that the Core is in at first, and the companion's: 0 for one of its own.
  enum class Core { Leads, WithCompanion, WithStranger } core = Core::Leads;
  /// A random moment of the grace.
  enum class Then { Nothing, DiesUnreaped, GivesPid, GivesPidTwice, LeavesGroup } then = Then::Nothing;
};

std::size_t StopRounds::variants() {
  return 7;
}

void StopRounds::playedRound(std::size_t variant) {
  using Core = Play::Core;
  using Then = Play::Then;
  const std::array<Play, 7> plays = {{
      {.name = "shares the companion's group", .outcomes = {"killedProcess"}, .core = Core::WithCompanion},
      {.name = "is in a stranger's group", .outcomes = {"killedProcess"}, .core = Core::WithStranger},
      {.name = "leaves the group that it led", .outcomes = {"killedProcess"}, .then = Then::LeavesGroup},
      {.name = "is a zombie", .outcomes = {"exited"}, .then = Then::DiesUnreaped},
      {.name = "gives its pid to a stranger", .outcomes = {"exited"}, .then = Then::GivesPid},
      {.name = "gives its pid to a stranger, again and again",
       .outcomes = {"exited"},
       .then = Then::GivesPidTwice},
      {.name = "ignores everything", .outcomes = {"killedGroup"}},
  }};
  play(plays.at(variant % variants()));
}

/// The job's real print with another pid.
void StopRounds::lie(pid_t pid) {
  stage_.set("tool-launchctl", "");
  const auto print = stage_.launchctl({"print", stage_.target()});
  const auto told =
      std::regex_replace(print, std::regex("\n\tpid = [0-9]+\n"), "\n\tpid = " + std::to_string(pid) + "\n");
  std::ofstream(stage_.root().host("/private/tmp/print.txt"), std::ios::trunc) << told;
  stage_.set("tool-launchctl", "print lie /private/tmp/print.txt");
}

bool StopRounds::giveTo(Strangers& strangers, pid_t pid) {
  const auto group = chance_.half() ? std::optional<pid_t>(0) : std::nullopt;
  return strangers.add(group ? "with the Core's pid, leading its group" : "with the Core's pid",
                       {.group = group, .pid = pid});
}

/// The last of them stays; each has to be untouched.
void StopRounds::passOn(Witness& companion, Strangers& strangers, pid_t pid, int times) {
  for (int turn = 1; turn < times; ++turn) {
    Strangers brief;
    if (giveTo(brief, pid)) tally_.count("pids of a played Core given to a stranger");
    companion.serveUntil(Clock::now() + milliseconds(chance_.between(0, 8)));
    brief.judge(tally_, "played, a stranger for some milliseconds");
  }
  tally_.count(giveTo(strangers, pid) ? "pids of a played Core given to a stranger"
                                      : "pids of a played Core that were taken");
}

void StopRounds::happen(const Play& round, Witness& companion, Strangers& strangers, Bystander& core) {
  using Then = Play::Then;
  const auto pid = core.pid();
  if (round.then == Then::Nothing) return;
  companion.serveUntil(companion.begun() + chance_.milliseconds(600, 2250));
  if (round.then == Then::LeavesGroup) {
    if (::setpgid(pid, strangers.first()) != 0) tally_.wrong(round.name + ": it could not leave");
    return;
  }
  core.kill();
  if (round.then == Then::DiesUnreaped)
    return tally_.count("Cores seen as zombies that answer signal 0", ::kill(pid, 0) == 0 ? 1 : 0);
  core.reap();
  passOn(companion, strangers, pid, round.then == Then::GivesPid ? 1 : 20);
}

void StopRounds::play(const Play& round) {
  tally_.count("played Core " + round.name);
  stage_.set("tool-launchctl", "");
  if (freshCore("term=obey") == 0) return tally_.wrong(round.name + ": launchd has no Core");
  const auto leader = Bystander::start({});
  auto core = Bystander::start({.group = round.core == Play::Core::WithStranger ? leader->pid() : 0});
  const StopExpected expected{
      .round = "played, " + round.name, .core = core->pid(), .outcomes = round.outcomes};
  lie(expected.core);
  Strangers strangers;
  if (round.then == Play::Then::LeavesGroup) strangers.add("whose group the Core joins", {});
  strangers.addNextTo(expected.core);
  strangers.add("in the soak's own group", {.group = std::nullopt});
  if (round.then == Play::Then::LeavesGroup)
    strangers.add("in the group that the Core has left", {.group = expected.core});
  // A companion that joins the Core's group finds itself in the group that the Core leads.
  Witness companion(this->companion(round.core == Play::Core::WithCompanion ? expected.core : 0));
  strangers.add("in the companion's group", {.group = ::getpgid(companion.pid())});
  happen(round, companion, strangers, *core);
  const auto outcome = finish(companion, expected);
  stage_.set("tool-launchctl", "");
  if (!outcome) return;
  if (!outcome->starts_with("exited") && !core->over()) tally_.wrong(expected.round + ": the Core lives on");
  if (const auto harm = leader->harm(); !harm.empty())
    tally_.wrong(expected.round + ": the group's leader " + harm);
  strangers.judge(tally_, expected.round);
}

void StopRounds::canary() {
  static_cast<void>(freshCore("term=obey"));
  auto core = Bystander::start({});
  const auto pid = core->pid();
  lie(pid);
  Strangers strangers;
  auto program = companion(0);
  program.atSending = [&](const Sent&) {
    core->kill();
    core->reap();
    strangers.add("with the Core's pid", {.pid = pid});
  };
  Witness companion(program);
  static_cast<void>(finish(companion, {.round = "canary", .core = pid, .outcomes = {"killedGroup"}}));
  stage_.set("tool-launchctl", "");
  strangers.judge(tally_, "canary");
}

}  // namespace tamo::soak
