#include "platform/stage/stage_user.hpp"

namespace tamo::stage {

/// A user who is not in the database and one whose entry has no home are different answers, and each can be ordered.
std::optional<platform::PasswordEntry> StageUser::passwordEntry() const {
  if (root_.setting("user") == "absent") return std::nullopt;
  const auto home = root_.setting("home");
  if (home == "none") return platform::PasswordEntry{};
  return platform::PasswordEntry{home.value_or(StageRoot::usualHome)};
}

}  // namespace tamo::stage
