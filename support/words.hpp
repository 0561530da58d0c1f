#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "support/story.hpp"

/// What the parts of a story have in common. Pure.
namespace tamo::support {

/// What is said of a story: what it means, what to do, and where the page has more. Empty texts say nothing.
struct Advice {
  std::string_view heading{};
  std::string meaning{};
  std::string next{};
};

void add(Story& story, const Advice& advice);

/// "0 (not registered)".
[[nodiscard]] std::string statusInWords(std::int64_t status);

/// What the action is there for, as what was asked: "restart the Core". For an action that the companion doesn't know,
/// nothing.
[[nodiscard]] std::string_view purposeOf(std::string_view action);

}  // namespace tamo::support
