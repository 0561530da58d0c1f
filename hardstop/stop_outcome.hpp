#pragma once

#include <cstdint>
#include <string>
#include <variant>

/// What a hard stop came to, as a value and as the text that people read in the log and the receipt.
namespace tamo::HardStop {

/// Alive after the grace period, but left alone for a reason. No signal was sent.
struct Spared {
  std::string reason;
  /// Whether it had exited by itself when the spare wait ended.
  bool gone = false;
  bool operator==(const Spared&) const = default;
};

/// The kill went to the process's whole group.
struct KilledGroup {
  std::int32_t group = 0;
  /// Whether the process had vanished when the reap wait ended.
  bool gone = false;
  bool operator==(const KilledGroup&) const = default;
};

/// The kill went to the process alone.
struct KilledProcess {
  std::int32_t pid = 0;
  /// Whether the process had vanished when the reap wait ended.
  bool gone = false;
  bool operator==(const KilledProcess&) const = default;
};

/// Gone before it had to be decided whether to kill or to spare.
struct Exited {
  bool operator==(const Exited&) const = default;
};

/// Called off while the process was alive, before that decision. No signal was sent.
struct Cancelled {
  bool operator==(const Cancelled&) const = default;
};

using Outcome = std::variant<Spared, KilledGroup, KilledProcess, Exited, Cancelled>;

/// `exited`, `cancelled`, `spared("REASON", gone: true)`, `killedGroup(4242, gone: false)` and so on. The
/// reason stands as it is; nothing in it is escaped.
[[nodiscard]] std::string text(const Outcome& outcome);

}  // namespace tamo::HardStop
