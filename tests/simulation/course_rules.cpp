#include "simulation/course_rules.hpp"

#include <algorithm>
#include <cstddef>

namespace tamo::simulation::Referee {
namespace {

using platform::LogFormat;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::string_view moveAction = "move-to-applications";

bool mayStay(const Companion& companion, bool homeKnown) {
  const auto& copy = companion.plan.copy;
  return copy == Places::installed || (homeKnown && copy == Places::staged);
}

std::ptrdiff_t linesOf(const Companion& companion, LogFormat format) {
  const auto& lines = companion.record.lines;
  return std::count_if(lines.begin(), lines.end(),
                       [format](const auto& line) { return line.format == format; });
}

/// A restart and a sync of an agent that is enabled compare its definitions.
bool comparesDefinitions(const Companion& companion) {
  const auto& action = actionOf(companion);
  const auto& statuses = companion.record.statuses;
  return (action == "restart" || action == "sync") && !statuses.empty() && statuses.front() == 1;
}

void judgeLines(const Companion& companion) {
  const auto course = courseOf(companion);
  const auto outcomes = linesOf(companion, LogFormat::outcome);
  const auto refusals = linesOf(companion, LogFormat::refused);
  const auto moves = linesOf(companion, LogFormat::moveRefused) + linesOf(companion, LogFormat::moveResult);
  constexpr auto rule = Invariant::Lines;
  companion.expect(outcomes == (course == Course::Agent ? 1 : 0), rule, "outcome lines");
  companion.expect(refusals == (course == Course::Refused ? 1 : 0), rule, "refusals");
  companion.expect(moves == (course == Course::Move ? 1 : 0), rule, "lines of a move");
  companion.expect(linesOf(companion, LogFormat::receiptFailed) == (companion.record.receiptDenied ? 1 : 0),
                   rule, "lines of a failed receipt");
  companion.expect(linesOf(companion, LogFormat::definition) == (comparesDefinitions(companion) ? 1 : 0),
                   rule, "lines of a comparison");
}

void judgeReports(const Companion& companion) {
  const auto& record = companion.record;
  const bool receiptDue = companion.plan.writesReceipts && courseOf(companion) == Course::Agent;
  companion.expect(receiptDue == (record.receipt || record.receiptDenied), Invariant::Receipt,
                   receiptDue ? "none was written" : "one too many");
  const bool noted =
      std::all_of(record.stops.begin(), record.stops.end(), [](const auto& stop) { return stop.noted; });
  companion.expect(noted, Invariant::StopNote, "a hard stop without a note");
  companion.expect(linesOf(companion, LogFormat::moveResult) == (record.moveResult ? 1 : 0),
                   Invariant::MoveResult, "the result file and the line of a move");
}

void judgeLock(const Companion& companion) {
  const auto& record = companion.record;
  const bool due = courseOf(companion) != Course::Refused && actionOf(companion) != "status";
  companion.expect(record.lockAsked == due, Invariant::LockKept, due ? "never asked for" : "asked for");
  companion.expect(!record.leftLocked, Invariant::LockKept, "never let go");
  companion.expect(record.terminations == 1, Invariant::TerminatesOnce, std::to_string(record.terminations));
}

/// What a failure does not excuse.
void judgeDeeds(const Companion& companion) {
  const auto& record = companion.record;
  if (courseOf(companion) != Course::Agent) return;
  const auto& action = actionOf(companion);
  if (action == "unregister") companion.expect(record.unregistrations == 1, Invariant::Deeds, action);
  if (record.lastError) return;
  const bool registers = action == "reseat" || (action == "sync" && record.definitionChanged);
  if (registers) companion.expect(record.registrations == 1, Invariant::Deeds, action);
  const bool starts = action == "register" || action == "restart";
  if (starts) companion.expect(record.registrations + record.kickstarts >= 1, Invariant::Deeds, action);
}

/// The sum of every wait that is ordered, and of those that others caused.
Time longestLife(const Companion& companion) {
  const auto& record = companion.record;
  const auto counted = [](std::size_t count, Time each) { return each * static_cast<Time::rep>(count); };
  const auto moveWait = record.moveResult ? milliseconds(30'500) + companion.world.clocks.setBack() : Time(0);
  const auto lockWait = record.lockAsked ? milliseconds(60'200) : milliseconds(0);
  return milliseconds(500) + lockWait +
         counted(static_cast<std::size_t>(record.launchctls), milliseconds(5'100)) +
         counted(record.stops.size(), milliseconds(22'100)) + moveWait + record.waitedForTools +
         record.waitedForAnswers + record.slow;
}

void judgeLeftovers(const Companion& companion) {
  const auto print =
      std::string(Places::temporary) + "tamo-core-print-" + std::to_string(companion.pid()) + ".txt";
  const bool couldRemove =
      companion.record.printed && !companion.record.struck.test(static_cast<std::size_t>(Call::remove));
  const bool left = companion.world.files.read(print) != nullptr;
  companion.expect(!left || !couldRemove, Invariant::Leftovers, print);
}

}  // namespace

bool needsMove(const Companion& companion) {
  const auto& record = companion.record;
  return record.infoID == Places::releaseID && !mayStay(companion, record.homeKnown);
}

const std::string& actionOf(const Companion& companion) {
  return companion.record.requested ? *companion.record.requested : companion.record.otherwise;
}

Course courseOf(const Companion& companion) {
  const auto& record = companion.record;
  const auto& action = actionOf(companion);
  if (action == moveAction) return Course::Move;
  if (action == "status" || companion.plan.proofHome) return Course::Agent;
  const bool may = record.judgedID == Places::releaseID && mayStay(companion, record.judgedHomeKnown);
  return may ? Course::Agent : Course::Refused;
}

void ended(Companion& companion) {
  judgeLines(companion);
  judgeReports(companion);
  judgeLock(companion);
  judgeDeeds(companion);
  judgeLeftovers(companion);
  const auto life = companion.world.timeline.now() - companion.record.launchedAt;
  companion.expect(life <= longestLife(companion), Invariant::Waits, "a life longer than its waits");
  companion.expect(life >= milliseconds(400), Invariant::Requested, "acted before the 0.4 s were over");
  companion.note("has ended");
}

void runEnded(World& world, bool inTime) {
  for (const auto& companion : world.companions) {
    companion->expect(!companion->launched() || companion->ended(), Invariant::Ends,
                      inTime ? "waits for ever" : "goes on for ever");
  }
  const bool whole = !world.files.exists(Places::installed) || world.isWhole(Places::installed);
  if (whole) return;
  if (world.copiesDisturbed) {
    ++world.partsLeft;
    return;
  }
  world.verdict.broken({Invariant::WholeOrAbsent, world.timeline.now(), "world", "a part of a copy is left"});
}

}  // namespace tamo::simulation::Referee
