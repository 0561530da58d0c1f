#pragma once

#include <string>

namespace tamo::platform {

/// What the user may do with items by hand. One thread.
class UserFiles {
 public:
  virtual ~UserFiles() = default;

  /// Whether the real user may write to the item, links followed; false for a missing one and on a read-only
  /// volume. The administrator may write nearly everywhere.
  [[nodiscard]] virtual bool isWritable(const std::string& path) const = 0;

  /// Moves the item to the user's Trash, under another name when its own is taken there. All or nothing:
  /// false when it stays where it is. A symbolic link is moved itself.
  [[nodiscard]] virtual bool moveToTrash(const std::string& path) = 0;
};

}  // namespace tamo::platform
