#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "exhaustion/hard_stop_world.hpp"
#include "hardstop/stop_outcome.hpp"

/// The hard stop a second time: not as a procedure, but as a table of states. In each state one thing is done,
/// and what comes of it leads to the next state. A play of the table and a run of the procedure in the same
/// surroundings must agree in every call and in the outcome.
namespace tamo::exhaustion {

enum class State {
  GraceBegin,
  GraceClock,
  GraceLook,
  GraceQuestion,
  GracePause,
  DecisionLook,
  DecisionQuestion,
  DecisionSpare,
  SpareBegin,
  SpareClock,
  SpareLook,
  SparePause,
  SpareLast,
  Kill,
  ReapBegin,
  ReapClock,
  ReapLook,
  ReapPause,
  ReapLast,
  // Where it ends.
  Exited,
  Cancelled,
  SparedGone,
  SparedAlive,
  KilledGone,
  KilledAlive,
};
inline constexpr std::size_t stateCount = static_cast<std::size_t>(State::KilledAlive) + 1;

/// What comes of what is done in a state. Alive, Zombie, Absent and Replaced are what a look can find.
enum class Observation { Done, Early, Late, Alive, Zombie, Absent, Replaced, No, Yes };

struct Row {
  State state;
  Observation observation;
  State next;
  bool operator==(const Row&) const = default;
};
using Table = std::vector<Row>;

/// The description.
[[nodiscard]] const Table& hardStopTable();

/// Whom the kill is for, row by row: the group only when all three hold.
struct TargetRow {
  bool leadsItsGroup;
  bool groupAboveOne;
  bool groupOfAnother;
  bool killsGroup;
};
[[nodiscard]] const std::array<TargetRow, 8>& targetTable();
[[nodiscard]] bool tableKillsGroup(const HardStop::Seen& last, std::int32_t ownGroup);

/// A play of a table from its beginning to its end. Absent outcome: the table led nowhere, or round and round.
struct Play {
  std::optional<HardStop::Outcome> outcome = std::nullopt;
  /// The indices of the rows that were taken.
  std::vector<std::size_t> rows = {};
};
[[nodiscard]] Play play(const Table& table, World& world);

}  // namespace tamo::exhaustion
