#pragma once

#include "platform/clock.hpp"
#include "platform/stage/stage_root.hpp"
#include "platform/user_files.hpp"

namespace tamo::stage {

/// The name under which an item goes to the Trash when its own name is taken: the time of day, and from the
/// second such item of that second on a number, before the ending: "Tamo 14.30.12.app", "Tamo 14.30.12
/// 2.app". `attempt` counts from 1; `timeOfDay` is "14.30.12".
[[nodiscard]] std::string nameInTrash(const std::string& name, const std::string& timeOfDay, int attempt);

/// What the user of a stage may do with items by hand. The Trash is ".Trash" in the home, made when it is
/// missing; what it is given is renamed into it, and never replaces what is there.
///
/// Known differences from a Mac: only the volume that holds the home has a Trash, an item of another one
/// stays where it is; nobody asks for a password where a Finder would; nothing keeps an application from
/// being moved by another one; the Trash doesn't know where its items came from.
class StageUserFiles final : public platform::UserFiles {
 public:
  /// `clock` must outlive it.
  StageUserFiles(const StageRoot& root, const platform::Clock& clock) : root_(root), clock_(clock) {}

  [[nodiscard]] bool isWritable(const std::string& path) const override;
  [[nodiscard]] bool moveToTrash(const std::string& path) override;

 private:
  const StageRoot root_;
  const platform::Clock& clock_;
};

}  // namespace tamo::stage
