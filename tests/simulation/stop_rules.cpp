#include "simulation/stop_rules.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "simulation/course_rules.hpp"

namespace tamo::simulation::Referee {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::uint64_t microsPerSecond = 1'000'000;
constexpr seconds graceTime(2);
constexpr seconds reapTime(2);
constexpr seconds spareTime(20);
constexpr std::array<std::string_view, 3> markers{"core.db.revert.pending", "core.db.revert.partial",
                                                  "core.db.revert.partial.json"};

std::uint64_t startOf(const platform::ProcessInfo& info) {
  return info.startSeconds * microsPerSecond + info.startMicroseconds;
}

bool sawGone(const StopRecord& stop) {
  const auto& told = stop.last.told;
  return !told || told->zombie || startOf(*told) != startOf(*stop.first.told);
}

/// The wait that a look belongs to: the grace, what follows the signal, or what follows the decision to spare.
/// The decision cannot be seen where no marker is asked for.
std::optional<Time> deadlineOf(const StopRecord& stop) {
  if (stop.signalledAt) return *stop.signalledAt + reapTime;
  if (stop.decidedAt) return *stop.decidedAt + spareTime;
  return stop.homeKnown ? std::optional(stop.from.monotonic + graceTime) : std::nullopt;
}

/// One look may have begun before the deadline, and one is due after it.
void judgeLookInTime(const Companion& companion, StopRecord& stop) {
  const auto deadline = deadlineOf(stop);
  if (deadline && companion.world.clocks.monotonicNow() >= *deadline) ++stop.lateLooks;
  companion.expect(stop.lateLooks <= 2, Invariant::Waits, "it is looked on after the wait is over");
}

bool struck(const Companion& companion, Call call) {
  return companion.record.struck.test(static_cast<std::size_t>(call));
}

bool markerExists(const Companion& companion) {
  const auto directory = companion.dataDirectory();
  return std::any_of(markers.begin(), markers.end(), [&](std::string_view marker) {
    return companion.world.files.exists(directory + std::string(marker));
  });
}

/// The clock that is set makes start times that are compared tell another age than the true one.
void judgeAge(Companion& companion, const StopRecord& stop) {
  if (!stop.younger || !stop.ownStartMicros) return;
  auto& world = companion.world;
  const bool told = *stop.ownStartMicros < startOf(*stop.first.told);
  companion.expect(told == *stop.younger || world.clocks.wasSet(), Invariant::Spared, "another age was told");
}

/// Empty when nothing spoke for sparing the process, by what the companion was told.
std::string_view reasonTold(const StopRecord& stop) {
  if (stop.version && stop.version->contains('.')) return "revert_release";
  if (stop.markerTold) return "revert_restoring";
  if (stop.ownStartMicros && *stop.ownStartMicros < startOf(*stop.first.told)) return "young_core";
  return "";
}

/// A group is the target exactly when the process leads it and it is nobody's that must not be hit.
bool isRightTarget(const Companion& companion, const StopRecord& stop) {
  const auto& seen = *stop.last.told;
  const bool leads = seen.group == stop.last.pid && seen.group > 1 && seen.group != companion.group();
  return stop.toGroup == leads && stop.target == stop.last.pid;
}

void judgeTarget(Companion& companion, const StopRecord& stop) {
  constexpr auto rule = Invariant::SignalTarget;
  companion.expect(stop.target >= 2, rule, "a target below 2");
  companion.expect(!stop.toGroup || stop.target != companion.group(), rule, "the own group");
  companion.expect(stop.toGroup || stop.target != companion.pid(), rule, "the companion itself");
  companion.expect(!sawGone(stop), rule, "the last look found the process gone");
  if (sawGone(stop)) return;
  companion.expect(isRightTarget(companion, stop), rule, "not what the last look asks for");
  auto& world = companion.world;
  const auto* there = world.processes.find(stop.last.pid, startOf(*stop.first.told));
  const bool held = there != nullptr && (!stop.toGroup || there->group == stop.target);
  const bool inTime = companion.record.slow == stop.last.slow;
  companion.expect(held || !inTime, rule, "another process");
  if (held || inTime) return;
  ++world.lateSignals;
  if (there == nullptr && world.processes.find(stop.target) != nullptr) ++world.strangersHit;
}

/// The state of the files counts only when the companion had no way to miss it.
void judgeReason(Companion& companion, const StopRecord& stop) {
  companion.expect(reasonTold(stop).empty(), Invariant::Spared, "a reason was told");
  if (stop.younger.value_or(false) && stop.ownStartMicros) ++companion.world.killedThoughYoung;
  const bool sure = !struck(companion, Call::exists) && !struck(companion, Call::passwordEntry) &&
                    companion.record.slow == stop.last.slow;
  companion.expect(!sure || !markerExists(companion), Invariant::Spared, "a marker file is there");
}

std::string killText(const StopRecord& stop) {
  const std::string name = stop.toGroup ? "killedGroup(" : "killedProcess(";
  return name + std::to_string(stop.target) + ", gone: " + (sawGone(stop) ? "true)" : "false)");
}

/// A watch ends before its time only when a look found the process gone, which the last one need not confirm.
bool fits(const StopRecord& stop, const std::string& text, Time after) {
  const std::string end = sawGone(stop) ? "true)" : "false)";
  if (stop.signals > 0) return text == killText(stop) && (stop.onceGone || after >= graceTime + reapTime);
  if (text == "exited") return sawGone(stop);
  if (text == "cancelled") return !sawGone(stop) && stop.failedAt.has_value();
  const auto reason = reasonTold(stop);
  return !reason.empty() && (stop.onceGone || after >= graceTime + spareTime) &&
         text == "spared(\"" + std::string(reason) + "\", gone: " + end;
}

StopRecord* running(Companion& companion) {
  auto& stops = companion.record.stops;
  return stops.empty() || stops.back().ended ? nullptr : &stops.back();
}

/// Whether the process started after the companion, whatever their start times say; absent when it is gone.
std::optional<bool> isYounger(const Companion& companion, const Look& look) {
  auto& processes = companion.world.processes;
  const auto* own = processes.find(companion.pid());
  const auto* watched = processes.find(look.pid, startOf(*look.told));
  if (own == nullptr || watched == nullptr) return std::nullopt;
  return own->number < watched->number;
}

}  // namespace

void asksForMarker(Companion& companion, std::string_view path, bool told) {
  constexpr auto rule = Invariant::DataPlaces;
  auto* stop = running(companion);
  const bool due = stop != nullptr && !companion.onMain() && stop->homeKnown && !stop->markerTold &&
                   stop->signals == 0 && stop->markersAsked < markers.size();
  companion.expect(due, rule, "a marker is looked for out of turn");
  if (!due) return;
  const auto here = companion.dataDirectory() + std::string(markers[stop->markersAsked]);
  companion.expect(path == here, rule, path);
  const auto now = companion.world.clocks.monotonicNow();
  companion.expect(now - stop->from.monotonic >= graceTime, rule,
                   "a marker is looked for before the decision");
  ++stop->markersAsked;
  stop->markerTold = told;
  stop->decidedAt = now;
  stop->lateLooks = 0;
}

void looked(Companion& companion, std::int32_t pid, const std::optional<platform::ProcessInfo>& told) {
  auto& record = companion.record;
  const Look look{.pid = pid, .told = told, .at = companion.world.timeline.now(), .slow = record.slow};
  companion.note("looks at ", pid, told ? (told->zombie ? ": a zombie" : ": alive") : ": nothing");
  if (!companion.onMain()) {
    auto* stop = running(companion);
    companion.expect(stop != nullptr && stop->first.pid == pid, Invariant::SignalTarget,
                     "another pid is watched");
    if (stop == nullptr) return;
    stop->last = look;
    stop->onceGone = stop->onceGone || sawGone(*stop);
    judgeLookInTime(companion, *stop);
  } else if (pid == companion.pid()) {
    record.ownStartMicros = told ? std::optional(startOf(*told)) : std::nullopt;
  } else {
    record.lastLook = look;
  }
}

void watching(Companion& companion) {
  auto& record = companion.record;
  const bool found = record.lastLook && record.lastLook->told;
  companion.expect(found && running(companion) == nullptr, Invariant::OneSignal,
                   "a watcher with nothing to watch");
  companion.note("watches ", found ? record.lastLook->pid : 0);
  record.stops.push_back({.first = record.lastLook.value_or(Look()),
                          .from = companion.world.clocks.now(),
                          .slowBefore = record.slow,
                          .homeKnown = record.homeKnown,
                          .version = record.infoVersion,
                          .ownStartMicros = record.ownStartMicros,
                          .younger = found ? isYounger(companion, *record.lastLook) : std::nullopt,
                          .last = {},
                          .decidedAt = std::nullopt,
                          .signalledAt = std::nullopt,
                          .failedAt = std::nullopt});
  judgeAge(companion, record.stops.back());
}

void watchBegins(Companion& companion, std::size_t index) {
  auto& stop = companion.record.stops[index];
  stop.from = companion.world.clocks.now();
  stop.slowBefore = companion.record.slow;
}

void signals(Companion& companion, std::int32_t target, bool toGroup) {
  auto* stop = running(companion);
  const bool due = stop != nullptr && !companion.onMain() && stop->signals == 0;
  companion.expect(due, Invariant::OneSignal, "a signal too many");
  if (!due) return;
  ++stop->signals;
  stop->target = target;
  stop->toGroup = toGroup;
  const auto now = companion.world.clocks.now();
  companion.expect(now.monotonic - stop->from.monotonic >= graceTime, Invariant::Grace, "killed early");
  if (now.awake - stop->from.awake < graceTime) ++companion.world.gracesSleptThrough;
  companion.expect(!stop->failedAt || *stop->failedAt >= stop->last.at, Invariant::CalledOff,
                   "killed all the same");
  judgeTarget(companion, *stop);
  judgeReason(companion, *stop);
  companion.expect(!stop->homeKnown || stop->markersAsked == markers.size(), Invariant::DataPlaces,
                   "not every marker was looked for");
  stop->signalledAt = now.monotonic;
  stop->lateLooks = 0;
}

void stopFailed(Companion& companion) {
  auto& stops = companion.record.stops;
  if (!stops.empty() && !stops.back().noted) stops.back().failedAt = companion.world.timeline.now();
}

/// Who saw the Core's pid in the print looks at the process, and asks for a thread to watch what is there.
void asksToStop(Companion& companion) {
  const auto& record = companion.record;
  if (actionOf(companion) == "unregister" || !record.print || !record.print->pid) return;
  const bool looked = record.lastLook && record.lastLook->pid == *record.print->pid;
  companion.expect(looked, Invariant::Watched, "a Core that was told of is not looked at");
  const bool watches = record.begunStops() == record.stopsBeforePrint + 1;
  companion.expect(!looked || !record.lastLook->told || watches, Invariant::Watched, "nothing is watched");
}

void watchEnded(Companion& companion, std::size_t index) {
  auto& stop = companion.record.stops[index];
  stop.ended = true;
  const auto took =
      companion.world.timeline.now() - stop.from.awake - (companion.record.slow - stop.slowBefore);
  companion.expect(took <= graceTime + spareTime + milliseconds(100), Invariant::Waits,
                   "a hard stop beyond 22 s");
  const bool reaps = stop.signals == 0 || took <= graceTime + reapTime + milliseconds(100);
  companion.expect(reaps, Invariant::Waits, "a kill beyond 4 s");
}

void stopNoted(Companion& companion, const platform::LogLine& line) {
  auto& stops = companion.record.stops;
  const bool due = !stops.empty() && stops.back().ended && !stops.back().noted;
  companion.expect(due, Invariant::StopNote, "no hard stop to note");
  if (!due) return;
  auto& stop = stops.back();
  stop.noted = true;
  const auto& text = std::get<std::string>(line.arguments[1]);
  const auto after = companion.world.clocks.monotonicNow() - stop.from.monotonic;
  companion.expect(std::get<std::int64_t>(line.arguments[0]) == stop.first.pid, Invariant::StopNote,
                   "another pid");
  companion.expect(fits(stop, text, after), Invariant::StopNote, text);
  const bool old = !stop.younger.value_or(true);
  if (old && text.starts_with("spared(\"young_core\"")) ++companion.world.sparedThoughOld;
  companion.record.stopText = text + (stop.failedAt ? " stopFailed" : "");
}

}  // namespace tamo::simulation::Referee
