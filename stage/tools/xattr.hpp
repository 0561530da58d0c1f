#pragma once

#include <string>
#include <vector>

#include "platform/stage/stage_root.hpp"

/// The stage's xattr: lists extended attributes, or deletes one, of items or of everything below them. The
/// attributes of a Mac are kept under the machine's names for those that users may set:
/// "com.apple.quarantine" is "user.com.apple.quarantine" on the disk.
///
/// Known differences from a Mac: a link has no attributes and is passed over; values are neither shown nor
/// written.
namespace tamo::stage {

/// The attribute's name on this machine's disk.
[[nodiscard]] std::string attributeOnDisk(const std::string& name);

/// What the arguments ask for.
struct XattrUse {
  /// The attribute to delete; absent lists.
  std::optional<std::string> deleted{};
  bool recursive = false;
  /// Stage paths, at least one.
  std::vector<std::string> paths{};
};

/// "[-r] PATH…" or "-d [-r] NAME PATH…", with the letters in one word or two; absent for anything else.
[[nodiscard]] std::optional<XattrUse> xattrUse(const std::vector<std::string>& arguments);

/// Has the fault that is ordered for xattr, verbs as for ditto; then lists or deletes. Gives the exit status:
/// 64 for a wrong use, 1 when something failed, after the rest was done. That an item doesn't have the
/// attribute to delete is an error only when it was not met on the way down.
[[nodiscard]] int runXattr(const StageRoot& root, const std::vector<std::string>& arguments);

}  // namespace tamo::stage
