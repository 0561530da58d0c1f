#include "support/message.hpp"

#include <algorithm>
#include <cstddef>

#include "move/app_move.hpp"
#include "values/text.hpp"

namespace tamo::support {
namespace {

using values::decimalInt64;

bool take(std::string_view& rest, std::string_view wanted) {
  if (!rest.starts_with(wanted)) return false;
  rest.remove_prefix(wanted.size());
  return true;
}

bool takeEnd(std::string_view& rest, std::string_view wanted) {
  if (!rest.ends_with(wanted)) return false;
  rest.remove_suffix(wanted.size());
  return true;
}

/// What stands up to `end`, or all of it.
std::string_view takeUpTo(std::string_view& rest, std::string_view ends) {
  const auto found = rest.substr(0, rest.find_first_of(ends));
  rest.remove_prefix(found.size());
  return found;
}

/// Digits, with a sign where there is one.
std::optional<std::int64_t> takeNumber(std::string_view& rest) {
  const std::size_t sign = rest.starts_with('-') ? 1 : 0;
  const auto size = std::min(rest.find_first_not_of("0123456789", sign), rest.size());
  const auto value = decimalInt64(rest.substr(0, size));
  if (value) rest.remove_prefix(size);
  return value;
}

/// "Optional(true)", "Optional(false)" or "nil".
bool takeOk(std::string_view& rest, std::optional<bool>& ok) {
  if (take(rest, "Optional(true)")) {
    ok = true;
  } else if (take(rest, "Optional(false)")) {
    ok = false;
  } else {
    return take(rest, "nil");
  }
  return true;
}

/// " error DOMAIN CODE"; the code may be missing, the blank in front of it is there all the same.
bool takeError(std::string_view& rest, OutcomeSaid& said) {
  if (!take(rest, " error ")) return true;
  said.error.emplace().domain = takeUpTo(rest, " ");
  const bool whole = take(rest, " ");
  said.error->code = takeNumber(rest);
  return whole;
}

bool takeKickstart(std::string_view& rest, OutcomeSaid& said) {
  if (!take(rest, " kickstart ")) return true;
  said.kickstart = takeNumber(rest);
  return said.kickstart.has_value();
}

/// The reason ends at the blank in front of an error or at the hidden description, which follows without one.
void takeReseated(std::string_view& rest, OutcomeSaid& said) {
  if (take(rest, " reseated ")) said.reseated = takeUpTo(rest, " <");
}

/// The last argument is private: a log shows its place even where it is empty. What it says begins with a blank.
bool takeDescription(std::string_view rest, OutcomeSaid& said) {
  if (rest == hiddenText) return true;
  said.description = rest.substr(rest.starts_with(' ') ? 1 : 0);
  return rest.empty() || (rest.starts_with(' ') && said.error);
}

/// What stands behind the arrow.
bool takeOutcome(std::string_view rest, OutcomeSaid& said) {
  const auto status = take(rest, "status ") ? takeNumber(rest) : std::nullopt;
  if (!status || !take(rest, " ok ") || !takeOk(rest, said.ok)) return false;
  said.status = *status;
  if (!takeKickstart(rest, said)) return false;
  takeReseated(rest, said);
  return takeError(rest, said) && takeDescription(rest, said);
}

/// An action may be any text that somebody passed by the switch, an arrow in it included.
std::optional<Message> outcome(std::string_view text) {
  constexpr std::string_view arrow = " -> ";
  for (auto at = text.find(arrow); at != std::string_view::npos; at = text.find(arrow, at + 1)) {
    OutcomeSaid said{.action = std::string(text.substr(0, at))};
    if (takeOutcome(text.substr(at + arrow.size()), said)) return said;
  }
  return std::nullopt;
}

/// The words behind the path are looked for from the end: a folder may be named like them.
std::optional<std::string> refusedApp(std::string_view why) {
  if (!take(why, "tamo.test_copy_refused_live_data app=")) return std::nullopt;
  const auto end = why.rfind(" (only ");
  return std::string(why.substr(0, end));
}

std::optional<Message> refused(std::string_view text) {
  constexpr std::string_view said = " refused: ";
  const auto at = text.find(said);
  if (at == std::string_view::npos) return std::nullopt;
  const auto why = text.substr(at + said.size());
  return RefusedSaid{
      .action = std::string(text.substr(0, at)), .why = std::string(why), .app = refusedApp(why)};
}

/// "ARGUMENTS exit TIMEOUT". Arguments are any text; the timeout is a number or "-".
std::optional<DefinitionSide> side(std::string_view text) {
  constexpr std::string_view exit = " exit ";
  const auto at = text.rfind(exit);
  if (at == std::string_view::npos) return std::nullopt;
  const auto timeout = text.substr(at + exit.size());
  if (timeout != "-" && !decimalInt64(timeout)) return std::nullopt;
  return DefinitionSide{.arguments = std::string(text.substr(0, at)), .exitTimeout = std::string(timeout)};
}

std::optional<bool> takeChanged(std::string_view& rest) {
  if (takeEnd(rest, " · changed true")) return true;
  if (takeEnd(rest, " · changed false")) return false;
  return std::nullopt;
}

/// Arguments that hold what stands between the two sides themselves are cut at the first place that makes sense. A line
/// that begins so and has no end was cut: the system does so at about a kilobyte, and this one has all arguments in it
/// twice.
std::optional<Message> definition(std::string_view rest) {
  if (!take(rest, "definition: ")) return std::nullopt;
  if (!take(rest, "loaded ")) return std::nullopt;
  constexpr std::string_view between = " · bundled ";
  const auto changed = takeChanged(rest);
  for (auto at = rest.find(between); changed && at != std::string_view::npos;
       at = rest.find(between, at + 1)) {
    const auto loaded = side(rest.substr(0, at));
    const auto bundled = side(rest.substr(at + between.size()));
    if (loaded && bundled) return DefinitionSaid{*loaded, *bundled, *changed};
  }
  return DefinitionCutSaid();
}

std::optional<bool> takeGone(std::string_view& rest) {
  if (takeEnd(rest, ", gone: true)")) return true;
  if (takeEnd(rest, ", gone: false)")) return false;
  return std::nullopt;
}

bool takeTarget(std::string_view rest, HardStopSaid& said) {
  const auto target = decimalInt64(rest);
  said.target = target.value_or(0);
  return target.has_value();
}

/// "NAME(PAYLOAD, gone: true)". Read from both its ends, because the reason in the middle may hold quotes and brackets
/// of its own.
bool takeEndWithPayload(std::string_view rest, HardStopSaid& said) {
  using End = HardStopSaid::End;
  const auto gone = takeGone(rest);
  said.gone = gone.value_or(false);
  if (!gone) return false;
  if (take(rest, "spared(\"") && takeEnd(rest, "\"")) {
    said.end = End::Spared;
    said.reason = rest;
    return true;
  }
  const bool group = take(rest, "killedGroup(");
  said.end = group ? End::KilledGroup : End::KilledProcess;
  return (group || take(rest, "killedProcess(")) && takeTarget(rest, said);
}

std::optional<Message> hardStop(std::string_view rest) {
  if (!take(rest, "hardstop pid ")) return std::nullopt;
  const auto pid = takeNumber(rest);
  if (!pid || !take(rest, ": ")) return std::nullopt;
  HardStopSaid said{.pid = *pid};
  if (rest == "exited") return said;
  if (rest == "cancelled")
    return HardStopSaid{.pid = *pid, .end = HardStopSaid::End::Cancelled, .gone = false};
  return takeEndWithPayload(rest, said) ? std::optional<Message>(said) : std::nullopt;
}

/// A code is a single word. With more behind the arrow the line is the outcome of an action that somebody named like a
/// move.
std::optional<Message> moveResult(std::string_view rest) {
  if (!take(rest, AppMove::operation) || !take(rest, " -> ")) return std::nullopt;
  const bool word =
      !rest.empty() && rest.find_first_not_of("abcdefghijklmnopqrstuvwxyz_") == std::string_view::npos;
  return word ? std::optional<Message>(MoveResultSaid{.code = std::string(rest)}) : std::nullopt;
}

std::optional<Message> fixed(std::string_view text) {
  if (text == "receipt failed") return ReceiptFailedSaid();
  if (text == "move refused: this Tamo doesn't need moving") return MoveRefusedSaid();
  if (take(text, "fatal: ")) return FatalSaid{.why = std::string(text)};
  return std::nullopt;
}

}  // namespace

std::optional<Message> messageIn(std::string_view text) {
  // Those that an action's name could look like come first; a refusal is the least particular of all.
  for (const auto reading : {fixed, definition, hardStop, moveResult, outcome, refused})
    if (auto said = reading(text)) return said;
  return std::nullopt;
}

}  // namespace tamo::support
