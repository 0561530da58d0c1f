#include "stage/launchd/service_target.hpp"

#include <algorithm>
#include <array>

namespace tamo::stage {
namespace {

std::string_view takeComponent(std::string_view& rest) {
  const auto end = std::min(rest.find('/'), rest.size());
  const auto component = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return component;
}

/// Kept as a text: launchctl repeats the number as it was given.
bool isNumber(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

bool ServiceTarget::isOfUser(std::uint32_t userID) const {
  return kind == "gui" && number == std::to_string(userID);
}

/// As launchd names a domain in its errors, which is not how it was asked for.
std::string ServiceTarget::domainText() const {
  return number ? "user " + kind + ": " + *number : kind;
}

std::optional<ServiceTarget> serviceTarget(std::string_view text) {
  // Only a user's graphical domain is played. The others are understood so that they can be refused as a real launchd
  // refuses them.
  static constexpr std::array<std::string_view, 4> numbered = {"gui", "user", "login", "pid"};
  ServiceTarget target;
  target.kind = takeComponent(text);
  if (std::ranges::find(numbered, target.kind) != numbered.end()) {
    const auto number = takeComponent(text);
    if (!isNumber(number)) return std::nullopt;
    target.number = number;
  } else if (target.kind != "system") {
    return std::nullopt;
  }
  // A label may hold a "/"; launchd takes whatever is left.
  target.label = text;
  return target;
}

}  // namespace tamo::stage
