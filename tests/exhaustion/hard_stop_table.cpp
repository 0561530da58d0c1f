#include "exhaustion/hard_stop_table.hpp"

#include <algorithm>

namespace tamo::exhaustion {
namespace {

/// What is done in a state.
enum class Deed {
  BeginGrace,
  BeginSpare,
  BeginReap,
  ReadClock,
  Look,
  LookForTarget,
  AskCancelled,
  AskSpare,
  Kill,
  Pause,
  End,
};

Deed deedOf(State state) {
  switch (state) {
    case State::GraceBegin:
      return Deed::BeginGrace;
    case State::SpareBegin:
      return Deed::BeginSpare;
    case State::ReapBegin:
      return Deed::BeginReap;
    case State::GraceClock:
    case State::SpareClock:
    case State::ReapClock:
      return Deed::ReadClock;
    case State::GraceLook:
    case State::SpareLook:
    case State::SpareLast:
    case State::ReapLook:
    case State::ReapLast:
      return Deed::Look;
    case State::DecisionLook:
      return Deed::LookForTarget;
    case State::GraceQuestion:
    case State::DecisionQuestion:
      return Deed::AskCancelled;
    case State::DecisionSpare:
      return Deed::AskSpare;
    case State::Kill:
      return Deed::Kill;
    case State::GracePause:
    case State::SparePause:
    case State::ReapPause:
      return Deed::Pause;
    default:
      return Deed::End;
  }
}

/// What a play keeps from state to state.
class Player {
 public:
  explicit Player(World& world) : world_(world) {}

  Observation act(Deed deed) {
    const auto& setting = world_.setting();
    switch (deed) {
      case Deed::BeginGrace:
        return begin(setting.grace);
      case Deed::BeginSpare:
        return begin(setting.spareWait);
      case Deed::BeginReap:
        return begin(setting.reap);
      case Deed::ReadClock:
        return world_.now() < deadline_ ? Observation::Early : Observation::Late;
      case Deed::Look:
        return observed(world_.look(setting.first.pid));
      case Deed::LookForTarget:
        target_ = world_.look(setting.first.pid);
        return observed(target_);
      case Deed::AskCancelled:
        return answered(world_.cancelled());
      case Deed::AskSpare:
        reason_ = world_.spare();
        return answered(reason_.has_value());
      case Deed::Kill:
        return kill();
      case Deed::Pause:
        world_.sleep(setting.poll);
        return Observation::Done;
      case Deed::End:
        break;
    }
    return Observation::Done;
  }

  [[nodiscard]] std::optional<HardStop::Outcome> outcome(State state) const {
    switch (state) {
      case State::Exited:
        return HardStop::Exited();
      case State::Cancelled:
        return HardStop::Cancelled();
      case State::SparedGone:
      case State::SparedAlive:
        return HardStop::Spared{.reason = reason_.value_or("none"), .gone = state == State::SparedGone};
      case State::KilledGone:
      case State::KilledAlive:
        return killed(state == State::KilledGone);
      default:
        return std::nullopt;
    }
  }

 private:
  static Observation answered(bool yes) { return yes ? Observation::Yes : Observation::No; }

  Observation begin(nanoseconds wait) {
    deadline_ = world_.now() + wait;
    return Observation::Done;
  }

  [[nodiscard]] Observation observed(const std::optional<HardStop::Seen>& seen) const {
    if (!seen) return Observation::Absent;
    if (seen->zombie) return Observation::Zombie;
    const bool same = seen->startMicros == world_.setting().first.startMicros;
    return same ? Observation::Alive : Observation::Replaced;
  }

  [[nodiscard]] bool killsGroup() const {
    return target_ && tableKillsGroup(*target_, world_.setting().ownGroup);
  }

  Observation kill() {
    if (!target_) return Observation::Absent;
    world_.signal(killsGroup() ? target_->group : target_->pid, killsGroup());
    return Observation::Done;
  }

  [[nodiscard]] std::optional<HardStop::Outcome> killed(bool gone) const {
    if (!target_) return std::nullopt;
    if (killsGroup()) return HardStop::KilledGroup{.group = target_->group, .gone = gone};
    return HardStop::KilledProcess{.pid = target_->pid, .gone = gone};
  }

  World& world_;
  nanoseconds deadline_{0};
  std::optional<HardStop::Seen> target_;
  std::optional<std::string> reason_;
};

}  // namespace

const Table& hardStopTable() {
  using enum State;
  using enum Observation;
  static const Table table{
      {GraceBegin, Done, GraceClock},
      {GraceClock, Early, GraceLook},
      {GraceClock, Late, DecisionLook},
      {GraceLook, Alive, GraceQuestion},
      {GraceLook, Zombie, Exited},
      {GraceLook, Absent, Exited},
      {GraceLook, Replaced, Exited},
      {GraceQuestion, No, GracePause},
      {GraceQuestion, Yes, Cancelled},
      {GracePause, Done, GraceClock},
      {DecisionLook, Alive, DecisionQuestion},
      {DecisionLook, Zombie, Exited},
      {DecisionLook, Absent, Exited},
      {DecisionLook, Replaced, Exited},
      {DecisionQuestion, No, DecisionSpare},
      {DecisionQuestion, Yes, Cancelled},
      {DecisionSpare, No, Kill},
      {DecisionSpare, Yes, SpareBegin},
      {SpareBegin, Done, SpareClock},
      {SpareClock, Early, SpareLook},
      {SpareClock, Late, SpareLast},
      {SpareLook, Alive, SparePause},
      {SpareLook, Zombie, SpareLast},
      {SpareLook, Absent, SpareLast},
      {SpareLook, Replaced, SpareLast},
      {SparePause, Done, SpareClock},
      {SpareLast, Alive, SparedAlive},
      {SpareLast, Zombie, SparedGone},
      {SpareLast, Absent, SparedGone},
      {SpareLast, Replaced, SparedGone},
      {Kill, Done, ReapBegin},
      {ReapBegin, Done, ReapClock},
      {ReapClock, Early, ReapLook},
      {ReapClock, Late, ReapLast},
      {ReapLook, Alive, ReapPause},
      {ReapLook, Zombie, ReapLast},
      {ReapLook, Absent, ReapLast},
      {ReapLook, Replaced, ReapLast},
      {ReapPause, Done, ReapClock},
      {ReapLast, Alive, KilledAlive},
      {ReapLast, Zombie, KilledGone},
      {ReapLast, Absent, KilledGone},
      {ReapLast, Replaced, KilledGone},
  };
  return table;
}

const std::array<TargetRow, 8>& targetTable() {
  static constexpr std::array<TargetRow, 8> table{{
      {.leadsItsGroup = false, .groupAboveOne = false, .groupOfAnother = false, .killsGroup = false},
      {.leadsItsGroup = false, .groupAboveOne = false, .groupOfAnother = true, .killsGroup = false},
      {.leadsItsGroup = false, .groupAboveOne = true, .groupOfAnother = false, .killsGroup = false},
      {.leadsItsGroup = false, .groupAboveOne = true, .groupOfAnother = true, .killsGroup = false},
      {.leadsItsGroup = true, .groupAboveOne = false, .groupOfAnother = false, .killsGroup = false},
      {.leadsItsGroup = true, .groupAboveOne = false, .groupOfAnother = true, .killsGroup = false},
      {.leadsItsGroup = true, .groupAboveOne = true, .groupOfAnother = false, .killsGroup = false},
      {.leadsItsGroup = true, .groupAboveOne = true, .groupOfAnother = true, .killsGroup = true},
  }};
  return table;
}

bool tableKillsGroup(const HardStop::Seen& last, std::int32_t ownGroup) {
  const auto applies = [&](const TargetRow& row) {
    return row.leadsItsGroup == (last.group == last.pid) && row.groupAboveOne == (last.group >= 2) &&
           row.groupOfAnother == (last.group != ownGroup);
  };
  return std::find_if(targetTable().begin(), targetTable().end(), applies)->killsGroup;
}

Play play(const Table& table, World& world) {
  Play played;
  Player player(world);
  auto state = State::GraceBegin;
  while (deedOf(state) != Deed::End && !world.exhausted()) {
    const auto observation = player.act(deedOf(state));
    const auto row = std::find_if(table.begin(), table.end(), [&](const Row& one) {
      return one.state == state && one.observation == observation;
    });
    if (row == table.end()) return played;
    played.rows.push_back(static_cast<std::size_t>(row - table.begin()));
    state = row->next;
  }
  played.outcome = player.outcome(state);
  return played;
}

}  // namespace tamo::exhaustion
