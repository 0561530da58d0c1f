#include "simulation/move_rules.hpp"

#include <algorithm>
#include <string>
#include <variant>

#include "simulation/tool_rules.hpp"

namespace tamo::simulation::Referee {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// Absent while no line of a result was logged.
std::optional<std::string> loggedCode(const Companion& companion) {
  for (const auto& line : companion.record.lines) {
    if (line.format == platform::LogFormat::moveResult) return std::get<std::string>(line.arguments[0]);
  }
  return std::nullopt;
}

/// Absent for a version that does not begin with a number.
std::optional<int> buildOf(const std::optional<std::string>& version) {
  if (!version || version->find_first_of("0123456789") != 0) return std::nullopt;
  return std::stoi(*version);
}

/// Whether the companion had to leave the installed copy alone, by what it was told.
bool leavesInstalled(const Record& record) {
  if (!record.destinationExists.value_or(false)) return false;
  const auto source = buildOf(record.infoVersion);
  const auto installed = buildOf(record.destinationVersion);
  return !source || !installed || *installed >= *source;
}

bool isSuccess(std::string_view code) {
  return code == "moved" || code == "opened";
}

/// When a look at the destination fails, the move takes an installed copy for missing, copies over it, and
/// clears it away with the rest of the copy if that fails. What it copies from remains; but that may be the
/// destination itself, reached through a link, or a view of a copy that is in the Trash. The order of the
/// move leads there; it is counted, not judged.
bool wasOverlooked(const World& world) {
  return std::any_of(world.companions.begin(), world.companions.end(), [](const auto& companion) {
    const auto& record = companion->record;
    return record.copies > 0 && record.struck.test(static_cast<std::size_t>(Call::exists));
  });
}

/// What is at the destination when a move tells its code.
void judgeDestination(const Companion& companion, const std::string& code) {
  const auto& world = companion.world;
  const bool there = world.files.exists(Places::installed);
  const bool whole = world.isWhole(Places::installed);
  companion.expect(whole || !there, Invariant::WholeOrAbsent, code);
  companion.expect(whole || !isSuccess(code), Invariant::MoveResult, code);
  const bool cleared = isSuccess(code) || companion.record.copies == 0 || !there;
  companion.expect(cleared, Invariant::WholeOrAbsent, "left after a failure");
}

}  // namespace

/// The Trash counts when companions were in each other's way: what one of them threw away is still there.
void copiesChanged(World& world) {
  if (world.copiesAtFirst == 0) return;
  if (world.wholeCopies(false) > 0) return;
  if (world.copiesDisturbed && world.wholeCopies(true) > 0) {
    world.onlyInTrash = true;
    return;
  }
  if (wasOverlooked(world)) {
    ++world.overlooked;
    return;
  }
  world.verdict.broken({Invariant::LastCopy, world.timeline.now(), "world", "no whole copy is left"});
}

void copies(Companion& companion) {
  auto& record = companion.record;
  ++record.copies;
  const bool cleared = !record.destinationExists.value_or(false) || record.trashed == 1;
  companion.expect(cleared, Invariant::MoveResult, "copied over an installed copy");
}

void movedOrNot(Companion& companion, const platform::LogLine& line) {
  auto& world = companion.world;
  const auto& record = companion.record;
  const auto& code = std::get<std::string>(line.arguments[0]);
  if (!world.copiesDisturbed) {
    judgeDestination(companion, code);
  } else if (world.files.exists(Places::installed) && !world.isWhole(Places::installed)) {
    ++world.partsTold;
  }
  copyingEnded(companion);
  companion.expect(leavesInstalled(record) == (code == "opened"), Invariant::MoveResult,
                   "not the plan for the builds");
  const bool untouched = code != "opened" || (record.copies == 0 && record.trashed == 0);
  companion.expect(untouched, Invariant::MoveResult, "opened, and yet changed");
}

void recordsMove(Companion& companion, std::string_view bytes) {
  auto& record = companion.record;
  const auto code = loggedCode(companion);
  companion.expect(code && !record.moveResult, Invariant::MoveResult, "recorded out of turn");
  if (!code) return;
  const std::string truth = isSuccess(*code) ? "true" : "false";
  companion.expect(bytes == "{\"ok\":" + truth + ",\"code\":\"" + *code + "\"}", Invariant::MoveResult,
                   bytes);
  record.moveResult = std::string(bytes);
  record.recordedAt = companion.world.timeline.now();
  record.recordedWall = companion.world.clocks.wallNow();
  record.recordedSlow = record.slow;
}

void opensInstalled(Companion& companion, std::string_view path) {
  auto& record = companion.record;
  companion.expect(path == Places::installed, Invariant::MoveResult, path);
  const auto code = loggedCode(companion);
  const bool due = code && isSuccess(*code) && record.moveResult && ++record.opened == 1;
  companion.expect(due, Invariant::MoveResult, "opened without a success");
  if (!due) return;
  const auto waited =
      companion.world.timeline.now() - *record.recordedAt - (record.slow - record.recordedSlow);
  companion.expect(waited <= milliseconds(30'300) + companion.world.clocks.setBack(), Invariant::Waits,
                   "the old copy is waited for beyond 30 s");
  const auto passed = companion.world.clocks.wallNow() - record.recordedWall;
  companion.expect(!record.oldCopyRuns || passed >= seconds(30), Invariant::Waits, "the old copy still runs");
}

}  // namespace tamo::simulation::Referee
