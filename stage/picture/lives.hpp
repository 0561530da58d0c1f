#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "stage/picture/journal_reading.hpp"

/// Which processes there were on a stage, by its journal: when each began and ended, and how. Pure.
namespace tamo::stage {

enum class Role { Companion, Tool, Core, Helper, Launchd, Administrator, Application };

struct Life {
  Role role = Role::Tool;
  std::int32_t pid = 0;
  /// What it is, in a word or two: "Core", "launchctl print".
  std::string name{};
  std::int64_t from = 0;
  /// Absent while it lives, or when nobody noted its end.
  std::optional<std::int64_t> until{};
  /// When it was last heard of.
  std::int64_t seen = 0;
  /// A tool's starter, a helper's Core; 0 when nobody noted it.
  std::int32_t parent = 0;
  /// The process group of a Core and of its helpers; 0 when nobody noted it.
  std::int32_t group = 0;
  /// "exit 3" or "signal 9"; empty for an end with 0, and for one that nobody noted.
  std::string ending{};
  /// It lives no more and its end was noted by nobody: `until` is when it was last heard of.
  bool lost = false;

  /// Begun before and not known to have ended by then.
  [[nodiscard]] bool isAt(std::int64_t moment) const {
    return from <= moment && (!until || *until >= moment);
  }
};

/// Every process that the moments, which are in order, tell of, by its begin. A pid that is used again is another life.
[[nodiscard]] std::vector<Life> livesIn(const std::vector<Moment>& moments);

/// Those that live at a moment and are among the targets of a signal: the moment's word is "signals".
[[nodiscard]] std::vector<std::size_t> targetsOf(const Moment& signal, const std::vector<Life>& lives);

/// What a tool is called whose program and arguments stand among the texts from a place on. launchctl is called by its
/// verb as well; what others are given are paths and scripts.
[[nodiscard]] std::string toolName(const Moment& moment, std::size_t place);

/// The last life of a pid that had begun by the moment; absent when there was none.
[[nodiscard]] std::optional<std::size_t> lifeOf(std::int32_t pid, std::int64_t moment,
                                                const std::vector<Life>& lives);

}  // namespace tamo::stage
