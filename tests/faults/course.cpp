#include "faults/course.hpp"

#include <algorithm>
#include <memory>
#include <utility>
#include <variant>

#include "faults/death_rules.hpp"
#include "platform/log_text.hpp"
#include "simulation/referee.hpp"
#include "simulation/tool_bench.hpp"

namespace tamo::faults {
namespace {

namespace Places = simulation::Places;
using platform::LogFormat;

/// Far more than any take needs.
constexpr std::uint64_t mostEvents = 200'000;

Companion& add(World& world, CompanionPlan plan) {
  return *world.companions.emplace_back(std::make_unique<Companion>(world, std::move(plan)));
}

/// A line without what differs from one run to the next.
std::string textOf(const platform::LogLine& line) {
  if (line.format == LogFormat::definition)
    return std::get<bool>(line.arguments[4]) ? "definition changed" : "definition unchanged";
  auto text = platform::shownText(line);
  if (line.format != LogFormat::hardStop) return text;
  text.erase(std::remove_if(text.begin(), text.end(), [](char each) { return each >= '0' && each <= '9'; }),
             text.end());
  return text;
}

std::string toldBy(const Companion& companion) {
  std::string told;
  for (const auto& line : companion.record.lines)
    told += (told.empty() ? "" : " / ") + textOf(line);
  return told;
}

std::string copyAt(const World& world, std::string_view place) {
  if (!world.files.exists(place)) return "none";
  if (!world.isWhole(place)) return "part";
  return *world.files.read(std::string(place) + "/Contents/MacOS/Tamo");
}

std::string leftIn(const World& world) {
  const auto& job = world.job;
  auto left = "status " + std::to_string(job.status) + (job.loaded ? " loaded" : "") +
              (job.corePid() ? " running" : "");
  left +=
      ", installed " + copyAt(world, Places::installed) + ", downloaded " + copyAt(world, Places::downloaded);
  return left;
}

Before beforeOf(const World& world) {
  return {
      .status = world.job.status, .loaded = world.job.loaded, .approvalWithheld = world.job.approvalWithheld};
}

/// The scene as the last companion finds it. Absent when that cannot be said by a scene.
std::optional<Scene> freshScene(const World& world, const Scene& scene, std::string_view action) {
  const auto& job = world.job;
  const bool translocated = scene.copy == Places::translocated;
  if (job.corePid() && !job.loaded) return std::nullopt;
  if (copyAt(world, Places::installed) == "part" || (translocated && !world.isWhole(Places::downloaded)))
    return std::nullopt;
  auto fresh = scene;
  fresh.action = action;
  fresh.status = job.status;
  fresh.loaded = job.loaded;
  fresh.definition = job.definition;
  fresh.coreRuns = job.corePid().has_value();
  if (scene.copy == Places::installed) return fresh;
  const auto* installed = world.files.read(std::string(Places::installed) + "/Contents/MacOS/Tamo");
  fresh.installed =
      installed == nullptr ? "" : (*installed == "41" ? "41" : (*installed == "42" ? "42" : "43"));
  return fresh;
}

}  // namespace

void Course::play(Played& played) {
  auto plan = planOf(*take_.scene, take_.by, take_.scene->action, "first");
  if (take_.death && take_.death->when == Death::When::At) plan.diesAfter = take_.death->at;
  auto& first = add(world_, std::move(plan));
  director_.direct(first);
  director_.whenDead([this] { followDeath(); });
  first.launch();
  const bool inTime = untilQuiet();
  played.lasted = world_.lastEnd;
  played.killed = first.wasKilled();
  if (played.killed) {
    playLast(played);
  } else {
    judgeUnkilled(first, played);
  }
  simulation::Referee::runEnded(world_, inTime);
  played.told = toldBy(first);
  played.left = leftIn(world_);
}

bool Course::untilQuiet() {
  return world_.timeline.runUntilIdle(mostEvents);
}

void Course::followDeath() {
  const auto& sequel = take_.sequel;
  if (sequel.toolsDieToo) simulation::ToolBench::killAll(world_);
  if (!sequel.again || !world_.files.exists(take_.scene->copy)) return;
  auto& second = add(world_, planOf(*take_.scene, take_.by, take_.scene->action, "second"));
  world_.timeline.after(std::chrono::milliseconds(1), [&second] { second.launch(); });
}

/// A copy that has moved cannot be asked again.
void Course::playLast(Played& played) {
  judgeFiles(world_, played.wrong);
  if (!world_.files.exists(take_.scene->copy)) return judgeLeft(played);
  const auto before = beforeOf(world_);
  const auto action = take_.sequel.last.empty() ? take_.scene->action : take_.sequel.last;
  fresh_ = freshScene(world_, *take_.scene, action);
  auto& last = add(world_, planOf(*take_.scene, take_.by, action, "last"));
  last.launch();
  static_cast<void>(untilQuiet());
  judgeLeft(played);
  for (const auto& each : world_.companions)
    judgeLockFree(*each, played.wrong);
  played.lastTold = toldBy(last);
  judgeCleanRun(last, before, played.wrong);
}

/// Without a death, a part of a copy may be left only where the clearing of it was made to fail.
void Course::judgeUnkilled(const Companion& first, Played& played) const {
  const bool couldClear = !first.record.struck.test(static_cast<std::size_t>(Call::remove));
  played.partLeft = copyAt(world_, Places::installed) == "part";
  if (played.partLeft && couldClear) played.wrong.emplace_back("a part of a copy is left");
  if (director_.openedPart()) played.wrong.emplace_back("a part of a copy was opened");
  judgeFiles(world_, played.wrong);
}

/// Of a copy, a part may be left only by a tool that was killed, or that failed so, and nobody was there any more to
/// clear it away.
void Course::judgeLeft(Played& played) const {
  const auto leavesPart = [](const Fault& fault) { return fault.way == Way::Part; };
  const bool mayLeavePart = take_.sequel.toolsDieToo || std::ranges::any_of(take_.faults, leavesPart);
  judgeFiles(world_, played.wrong);
  played.partLeft = copyAt(world_, Places::installed) == "part";
  if (played.partLeft && !mayLeavePart) played.wrong.emplace_back("a part of a copy is left");
}

}  // namespace tamo::faults
