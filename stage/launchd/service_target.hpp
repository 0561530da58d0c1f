#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The names by which launchctl calls a domain ("gui/501") and a job in it ("gui/501/LABEL"). Pure.
namespace tamo::stage {

struct ServiceTarget {
  /// "gui", "user", "login", "pid" or "system".
  std::string kind;
  /// Absent for "system", which has none.
  std::optional<std::string> number;
  /// Empty when the text names a domain alone.
  std::string label;

  /// Whether it lies in the domain of the user with this id.
  [[nodiscard]] bool isOfUser(std::uint32_t userID) const;

  /// The domain as launchctl's error texts name it: "user gui: 501", or "system".
  [[nodiscard]] std::string domainText() const;
};

/// Absent for a text that names no domain.
[[nodiscard]] std::optional<ServiceTarget> serviceTarget(std::string_view text);

}  // namespace tamo::stage
