#include "stage/core/core_behaviour.hpp"

#include "stage/common/words.hpp"
#include "values/text.hpp"

namespace tamo::stage {
namespace {

using std::chrono::milliseconds;

std::optional<int> countIn(std::string_view text) {
  const auto number = values::decimalInt32(text);
  return number && *number >= 0 ? number : std::nullopt;
}

std::optional<milliseconds> timeIn(std::string_view text) {
  const auto count = countIn(text);
  return count ? std::optional(milliseconds(*count)) : std::nullopt;
}

/// Without a time "late" and "revert" would mean nothing that a test could wait for.
bool readTerm(CoreBehaviour& behaviour, std::string_view value) {
  using enum CoreBehaviour::Term;
  const auto parts = split(value, ':');
  if (parts.size() == 1) {
    behaviour.term = value == "ignore" ? Ignore : Obey;
    return value == "ignore" || value == "obey";
  }
  const auto delay = timeIn(parts[1]);
  if (parts.size() != 2 || !delay || (parts[0] != "late" && parts[0] != "revert")) return false;
  behaviour.term = parts[0] == "late" ? Late : Revert;
  behaviour.termDelay = *delay;
  return true;
}

bool readChildren(CoreBehaviour& behaviour, std::string_view value) {
  const auto parts = split(value, ':');
  const auto count = countIn(parts[0]);
  behaviour.children = count.value_or(0);
  behaviour.childrenLeave = parts.size() == 2 && parts[1] == "leave";
  behaviour.childrenAreOrphans = parts.size() == 2 && parts[1] == "orphan";
  const bool plain = parts.size() == 1;
  // Enough for any rehearsal, and no slip of the finger fills the machine.
  return count && *count <= 64 && (plain || behaviour.childrenLeave || behaviour.childrenAreOrphans);
}

/// launchd has every job lead a group, so a Core that shall lead none has to leave it by itself.
bool readGroup(CoreBehaviour& behaviour, std::string_view value) {
  behaviour.leadsGroup = value == "own";
  return value == "own" || value == "parent";
}

/// One that answers is enough for the Core to count as up, so each can be taken away by itself.
bool readSockets(CoreBehaviour& behaviour, std::string_view value) {
  behaviour.coreSocket = value == "both" || value == "core";
  behaviour.talkSocket = value == "both" || value == "talk";
  return behaviour.coreSocket || behaviour.talkSocket || value == "none";
}

/// 1 is what a program that fails exits with.
bool readDeath(CoreBehaviour& behaviour, std::string_view value) {
  const auto parts = split(value, ':');
  const auto code = parts.size() == 2 ? countIn(parts[1]) : std::optional(1);
  behaviour.diesAfter = timeIn(parts[0]);
  behaviour.diesWith = code.value_or(1);
  // An exit status has no room for more.
  return parts.size() <= 2 && behaviour.diesAfter && code && *code <= 255;
}

bool readSlowness(CoreBehaviour& behaviour, std::string_view value) {
  const auto time = timeIn(value);
  behaviour.startsSlowly = time.value_or(milliseconds(0));
  return time.has_value();
}

bool readWord(CoreBehaviour& behaviour, std::string_view word) {
  struct Word {
    std::string_view opening;
    bool (*read)(CoreBehaviour&, std::string_view);
  };
  static constexpr Word words[] = {{"term=", readTerm},        {"children=", readChildren},
                                   {"group=", readGroup},      {"sockets=", readSockets},
                                   {"dies-after:", readDeath}, {"starts-slowly:", readSlowness}};
  if (word == "stops-itself") {
    behaviour.stopsItself = true;
    return true;
  }
  for (const auto& known : words)
    if (word.starts_with(known.opening)) return known.read(behaviour, word.substr(known.opening.size()));
  return false;
}

}  // namespace

/// The first word that means nothing is given back, so that whoever ordered it is told which one it was.
std::expected<CoreBehaviour, std::string> coreBehaviour(std::string_view words) {
  CoreBehaviour behaviour;
  for (const auto word : split(words, ' '))
    if (!word.empty() && !readWord(behaviour, word)) return std::unexpected(std::string(word));
  return behaviour;
}

}  // namespace tamo::stage
