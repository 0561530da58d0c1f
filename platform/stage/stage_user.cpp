#include "platform/stage/stage_user.hpp"

namespace tamo::stage {

std::optional<platform::PasswordEntry> StageUser::passwordEntry() const {
  if (root_.setting("user") == "absent") return std::nullopt;
  if (root_.setting("home") == "none") return platform::PasswordEntry{};
  return platform::PasswordEntry{root_.home()};
}

}  // namespace tamo::stage
