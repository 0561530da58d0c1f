#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "acceptance/command_line.hpp"
#include "acceptance/player.hpp"
#include "acceptance/redaction.hpp"

namespace tamo::acceptance {

/// What a program that plays a set brings: its place.
struct Venue {
  PlaceFacts facts;
  std::function<Lay(const Check&)> lay;
  Offer offer;
  std::vector<Secret> secrets;
  /// The checks that cannot be played here; absent where that is not known. Any other that is not played is a fault then.
  std::optional<std::vector<std::string_view>> unplayable{};
};

/// Plays what is ordered, shows the summary and writes the report. The exit status: 0 when every check that was played
/// held and at least one was, 1 when one did not, or was not played although it can be, 2 for names that nobody has, 3 when the report
/// could not be written.
[[nodiscard]] int playSession(const Orders& orders, const Venue& venue);

}  // namespace tamo::acceptance
