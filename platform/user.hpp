#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tamo::platform {

/// An entry of the user database. An entry without a home is not the same as no entry.
struct PasswordEntry {
  std::optional<std::string> home;
};

/// The real user of this process. Any thread.
class User {
 public:
  virtual ~User() = default;
  [[nodiscard]] virtual std::uint32_t realUserID() const = 0;
  /// The entry of the real user; absent when the database has none.
  [[nodiscard]] virtual std::optional<PasswordEntry> passwordEntry() const = 0;
};

}  // namespace tamo::platform
