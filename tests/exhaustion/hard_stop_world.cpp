#include "exhaustion/hard_stop_world.hpp"

namespace tamo::exhaustion {
namespace {

/// What a look can come upon. The slow one is the same process as the first, but the look outlasts a pause.
/// The moved one has changed its group, and its look tells another pid, which must not matter.
enum class Sight { Leader, Slow, Moved, Zombie, Absent, Younger, Older };
constexpr std::size_t sights = 7;

std::string nameOf(Call call) {
  switch (call) {
    case Call::Now:
      return "now";
    case Call::Look:
      return "look";
    case Call::AskCancelled:
      return "cancelled?";
    case Call::AskSpare:
      return "spare?";
    case Call::Signal:
      return "signal";
    case Call::Sleep:
      return "sleep";
  }
  return "?";
}

}  // namespace

std::string text(const Trace& trace) {
  std::string lines;
  for (const auto& event : trace)
    lines += nameOf(event.call) + " " + std::to_string(event.given) + (event.isGroup ? " group\n" : "\n");
  return lines;
}

void World::restart() {
  trace_.clear();
  time_ = nanoseconds(0);
}

nanoseconds World::now() {
  note({.call = Call::Now});
  return exhausted() ? nanoseconds::max() / 2 : time_;
}

std::optional<HardStop::Seen> World::look(std::int32_t pid) {
  note({.call = Call::Look, .given = pid});
  if (exhausted()) return std::nullopt;
  const auto& first = setting_.first;
  HardStop::Seen seen{.pid = first.pid, .startMicros = first.startMicros, .group = first.pid};
  switch (static_cast<Sight>(choices_.choose(sights))) {
    case Sight::Leader:
      break;
    case Sight::Slow:
      time_ += setting_.poll * 3 / 2;
      break;
    case Sight::Moved:
      seen.pid = first.pid + 1;
      seen.group = first.pid - 1;
      break;
    case Sight::Zombie:
      seen.zombie = true;
      break;
    case Sight::Absent:
      return std::nullopt;
    case Sight::Younger:
      ++seen.startMicros;
      break;
    case Sight::Older:
      --seen.startMicros;
      break;
  }
  return seen;
}

bool World::cancelled() {
  note({.call = Call::AskCancelled});
  return !exhausted() && choices_.choose(2) == 1;
}

std::optional<std::string> World::spare() {
  note({.call = Call::AskSpare});
  if (exhausted() || choices_.choose(2) == 0) return std::nullopt;
  return reason;
}

void World::signal(std::int32_t target, bool isGroup) {
  note({.call = Call::Signal, .given = target, .isGroup = isGroup});
}

void World::sleep(nanoseconds duration) {
  note({.call = Call::Sleep, .given = duration.count()});
  time_ += duration + setting_.oversleep;
}

HardStop::Operations World::operations() {
  return {
      .grace = setting_.grace,
      .poll = setting_.poll,
      .reap = setting_.reap,
      .spareWait = setting_.spareWait,
      .ownGroup = setting_.ownGroup,
      .look = [this](std::int32_t pid) { return look(pid); },
      .spare = [this] { return spare(); },
      .cancelled = [this] { return cancelled(); },
      .signal = [this](std::int32_t target, bool isGroup) { signal(target, isGroup); },
      .sleep = [this](nanoseconds duration) { sleep(duration); },
      .now = [this] { return now(); },
  };
}

}  // namespace tamo::exhaustion
