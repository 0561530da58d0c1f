#pragma once

#include <chrono>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

/// How the stage's Core behaves, as the setting "core" orders it: words with blanks between, in any order.
///
///   term=obey              exits on SIGTERM (the default)
///   term=ignore            goes on
///   term=late:MS           exits that many milliseconds after the first SIGTERM
///   term=revert:MS         the same, and keeps the marker of a pending revert in the data directory meanwhile
///   children=N[:leave|:orphan]   forks N helpers into its group, or out into groups of their own, or into its
///                          group as orphans: what forked them is gone, and launchd is their parent
///   group=own|parent       leads its group, or joins its parent's
///   stops-itself           stops (SIGSTOP) once it is up
///   dies-after:MS[:CODE]   exits by itself, with 1 or the code
///   sockets=both|core|talk|none   the sockets it listens on
///   starts-slowly:MS       makes its sockets that late
///
/// Pure.
namespace tamo::stage {

struct CoreBehaviour {
  enum class Term { Obey, Ignore, Late, Revert };

  Term term = Term::Obey;
  /// From the first SIGTERM to the exit; for Late and Revert.
  std::chrono::milliseconds termDelay{0};
  int children = 0;
  bool childrenLeave = false;
  bool childrenAreOrphans = false;
  bool leadsGroup = true;
  bool stopsItself = false;
  std::optional<std::chrono::milliseconds> diesAfter;
  int diesWith = 1;
  bool coreSocket = true;
  bool talkSocket = true;
  std::chrono::milliseconds startsSlowly{0};
};

/// An unexpected text names the first word that orders nothing.
[[nodiscard]] std::expected<CoreBehaviour, std::string> coreBehaviour(std::string_view words);

}  // namespace tamo::stage
