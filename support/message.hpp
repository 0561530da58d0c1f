#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

/// What a line of the companion says, taken out of its text again. Pure. The lines themselves stand in
/// platform/log_format.hpp; a test holds that each of them is read here.
namespace tamo::support {

/// The error of an outcome.
struct ErrorSaid {
  std::string domain{};
  /// Absent where the error had none.
  std::optional<std::int64_t> code{};
};

/// "restart -> status 1 ok Optional(true) kickstart 0"
struct OutcomeSaid {
  std::string action{};
  std::int64_t status = 0;
  std::optional<bool> ok{};
  std::optional<std::int64_t> kickstart{};
  /// Why the agent was reseated; the one reason that exists is "definition".
  std::optional<std::string> reseated{};
  std::optional<ErrorSaid> error{};
  /// The error's description: empty where the line has none, absent where the log hides it.
  std::optional<std::string> description{};
};

/// "restart refused: WHY"
struct RefusedSaid {
  std::string action{};
  std::string why{};
  /// The copy that was refused, where the text names it.
  std::optional<std::string> app{};
};

/// "receipt failed"
struct ReceiptFailedSaid {};

/// What launchd holds or the bundle brings: the arguments, or "unknown", and the exit timeout, or "-".
struct DefinitionSide {
  std::string arguments{};
  std::string exitTimeout{};
  bool operator==(const DefinitionSide&) const = default;
};

/// "definition: loaded A exit 20 · bundled B exit 20 · changed false"
struct DefinitionSaid {
  DefinitionSide loaded{};
  DefinitionSide bundled{};
  bool changed = false;
};

/// A definition line that the system cut for its length, as it does at about a kilobyte.
struct DefinitionCutSaid {};

/// "hardstop pid 777: killedGroup(777, gone: true)"
struct HardStopSaid {
  enum class End { Exited, Cancelled, Spared, KilledGroup, KilledProcess };
  std::int64_t pid = 0;
  End end = End::Exited;
  /// Of a Core that was spared.
  std::string reason{};
  /// Of a kill: the process or the group that was hit.
  std::int64_t target = 0;
  /// Whether it was gone at the end; of those that exited it always is.
  bool gone = true;
};

/// "move refused: this Tamo doesn't need moving"
struct MoveRefusedSaid {};

/// "move-to-applications -> moved"
struct MoveResultSaid {
  std::string code{};
};

/// "fatal: WHY", at fault level: a Mac's companion before it stops itself.
struct FatalSaid {
  std::string why{};
};

using Message = std::variant<OutcomeSaid, RefusedSaid, ReceiptFailedSaid, DefinitionSaid, DefinitionCutSaid,
                             HardStopSaid, MoveRefusedSaid, MoveResultSaid, FatalSaid>;

/// What a private argument is shown as.
inline constexpr std::string_view hiddenText = "<private>";

/// Absent for a text that is none of the companion's lines.
[[nodiscard]] std::optional<Message> messageIn(std::string_view text);

}  // namespace tamo::support
