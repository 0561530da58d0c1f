#include "app/request_intake.hpp"

#include <algorithm>
#include <array>

#include "move/app_move.hpp"
#include "values/text.hpp"

namespace tamo::RequestIntake {
namespace {

/// A URL may come from any web page, so it is held to the known names. The command line is not: an unknown
/// name there is reported as an error.
constexpr std::array<std::string_view, 7> acceptedActions{
    "register", "unregister", "reseat", "restart", "sync", "status", AppMove::operation,
};

}  // namespace

std::optional<std::string> actionOfArguments(const std::vector<std::string>& arguments) {
  const auto found = std::find(arguments.begin(), arguments.end(), "--core-action");
  if (found == arguments.end() || found + 1 == arguments.end()) return std::nullopt;
  return values::repairedUtf8(*(found + 1));
}

std::optional<std::string> actionOfUrl(std::string_view url, std::string_view scheme) {
  const auto colon = url.find(':');
  if (colon == std::string_view::npos || url.substr(0, colon) != scheme) return std::nullopt;
  const auto name = values::trimmed(url.substr(colon + 1), '/');
  const bool accepted =
      std::find(acceptedActions.begin(), acceptedActions.end(), name) != acceptedActions.end();
  return accepted ? std::optional(std::string(name)) : std::nullopt;
}

}  // namespace tamo::RequestIntake
