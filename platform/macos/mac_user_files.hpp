#pragma once

#include "platform/user_files.hpp"

namespace tamo::macos {

/// What the user may do with items, as the system's own file manager does it. An item of another volume goes
/// to that volume's Trash.
class MacUserFiles final : public platform::UserFiles {
 public:
  [[nodiscard]] bool isWritable(const std::string& path) const override;
  [[nodiscard]] bool moveToTrash(const std::string& path) override;
};

}  // namespace tamo::macos
