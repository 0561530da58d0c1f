#pragma once

#include "platform/user.hpp"

struct passwd;

namespace tamo::platform {

/// What a look-up in the user database found; null stands for nothing.
[[nodiscard]] std::optional<PasswordEntry> passwordEntryFrom(const passwd* found);

/// The real user in the host's user database, asked afresh at each call. A look-up that fails is no entry.
class PosixUser final : public User {
 public:
  [[nodiscard]] std::uint32_t realUserID() const override;
  [[nodiscard]] std::optional<PasswordEntry> passwordEntry() const override;
};

}  // namespace tamo::platform
