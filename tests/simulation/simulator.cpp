#include "simulation/simulator.hpp"

#include <variant>

#include "simulation/companion.hpp"
#include "simulation/course_rules.hpp"

namespace tamo::simulation {
namespace {

using platform::LogFormat;
using platform::LogLine;

/// Far more than any run needs.
constexpr std::uint64_t mostEvents = 200'000;

std::string upTo(const std::string& text, char end) {
  return text.substr(0, text.find(end));
}

void countLine(Report& report, const LogLine& line) {
  const auto text = [&line](std::size_t index) { return std::get<std::string>(line.arguments.at(index)); };
  switch (line.format) {
    case LogFormat::outcome:
      ++report.met["outcome " + text(0) + " " + text(2)];
      return;
    case LogFormat::hardStop:
      ++report.met["stop " + upTo(text(1), ',').substr(0, text(1).find_first_of("0123456789"))];
      return;
    case LogFormat::moveResult:
      ++report.met["move " + text(0)];
      return;
    case LogFormat::refused:
      ++report.met["refused"];
      return;
    case LogFormat::moveRefused:
      ++report.met["move refused"];
      return;
    case LogFormat::receiptFailed:
      ++report.met["receipt failed"];
      return;
    case LogFormat::definition:
      ++report.met[std::get<bool>(line.arguments[4]) ? "definition changed" : "definition unchanged"];
      return;
  }
}

void count(Report& report, const Companion& companion) {
  const auto& record = companion.record;
  ++report.met["companions"];
  for (const auto& line : record.lines)
    countLine(report, line);
  for (const auto& stop : record.stops)
    report.met["signals"] += static_cast<std::uint64_t>(stop.signals);
  if (companion.wasKilled()) ++report.met["companions killed"];
  if (record.lockGivenUp) ++report.met["lock given up"];
  if (record.receipt) ++report.met["receipts"];
  if (companion.plan.proofHome) ++report.met["companions with another home"];
  if (record.settingsOpened > 0) ++report.met["settings opened"];
  if (record.socketsTried > 0) ++report.met["sockets tried"];
  if (record.struck.any()) ++report.met["companions with failing calls"];
  if (record.slow > Time(0)) ++report.met["companions with slow calls"];
}

}  // namespace

void endAll(World& world) {
  world.timeline.clear();
  for (const auto& companion : world.companions)
    companion->die();
  static_cast<void>(world.timeline.runUntilIdle(mostEvents));
  world.timeline.clear();
}

Report Simulator::run(std::uint64_t seed, const RunOptions& options) {
  World world(timeline_, Dice(seed), options.plant, options.traced);
  timeline_.begin(world.dice);
  furnish(world);
  const bool inTime = timeline_.runUntilIdle(mostEvents);
  Report report{.seed = seed, .simulated = world.lastEnd, .violations = {}, .trace = {}, .met = {}};
  Referee::runEnded(world, inTime);
  for (const auto& companion : world.companions)
    count(report, *companion);
  const auto add = [&report](const char* name, int times) {
    if (times > 0) report.met[name] += static_cast<std::uint64_t>(times);
  };
  add("machine slept", world.clocks.slept() > Time(0) ? 1 : 0);
  add("wall clock was set", world.clocks.wasSet() ? 1 : 0);
  add("signals after a grace that the machine slept through a part of", world.gracesSleptThrough);
  add("locks given up after a wait that the machine slept through a part of", world.locksSleptThrough);
  add("old Cores spared as young after the clock was set", world.sparedThoughOld);
  add("young Cores killed as old after the clock was set", world.killedThoughYoung);
  add("parts of a copy left after a disturbance", world.partsLeft);
  add("moves that told of a part of a copy after a disturbance", world.partsTold);
  add("whole copies in the Trash only, after a disturbance", world.onlyInTrash ? 1 : 0);
  add("signals too late", world.lateSignals);
  add("signals too late, to a stranger", world.strangersHit);
  add("last copy lost after a look at it failed", world.overlooked);
  report.violations = world.verdict.violations();
  report.trace = world.trace.text();
  endAll(world);
  return report;
}

}  // namespace tamo::simulation
