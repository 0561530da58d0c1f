#include "app/request_intake.hpp"
#include "fuzz/insist.hpp"
#include "fuzz/target.hpp"
#include "fuzz/utf8_description.hpp"

/// What a command line asks for: any texts, divided by zero bytes.
namespace tamo::fuzz {
namespace {

/// Seen from the end: each switch that comes earlier overrules those behind it.
std::optional<std::string> describedAction(const std::vector<std::string>& arguments) {
  std::optional<std::string> action;
  for (auto at = arguments.size(); at-- > 0;) {
    if (arguments[at] != "--core-action") continue;
    action = at + 1 == arguments.size() ? std::nullopt : std::optional(describedRepair(arguments[at + 1]));
  }
  return action;
}

}  // namespace

void readInput(std::string_view bytes) {
  const auto arguments = dividedByZeroBytes(bytes);
  insist(RequestIntake::actionOfArguments(arguments) == describedAction(arguments),
         "the action is what follows the first switch");
  insist(!RequestIntake::actionOfArguments({}), "no arguments ask for nothing");
}

}  // namespace tamo::fuzz
