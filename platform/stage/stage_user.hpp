#pragma once

#include "platform/stage/stage_root.hpp"
#include "platform/user.hpp"

namespace tamo::stage {

/// The stage's user, made of settings: "user-id" (501 unless set), "home" ("/Users/tamo" unless set; "none"
/// is an entry without a home) and "user" ("absent" is a user without an entry).
///
/// Known difference from a Mac: the id is the stage's, not that of the process on the host.
class StageUser final : public platform::User {
 public:
  explicit StageUser(const StageRoot& root) : root_(root) {}

  [[nodiscard]] std::uint32_t realUserID() const override { return root_.userID(); }
  [[nodiscard]] std::optional<platform::PasswordEntry> passwordEntry() const override;

 private:
  const StageRoot root_;
};

}  // namespace tamo::stage
