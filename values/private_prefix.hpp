#pragma once

#include <functional>
#include <string>

/// The folder "/private" of a Mac, into which the system's own "/tmp", "/var" and "/etc" are links. A path of
/// an item there has two spellings, and the shorter one is taken. `path` is standardised.
namespace tamo::values {

/// Whether two paths lead to one existing item, links followed.
using SameItem = std::function<bool(const std::string& left, const std::string& right)>;

/// `path` without a leading "/private", when the shorter path names the same existing item. A path into a
/// system folder keeps it, whatever the shorter one leads to: a system folder that was linked away must not
/// read as the folder itself. Any thread, as far as `sameItem` goes.
[[nodiscard]] std::string withoutPrivatePrefix(std::string path, const SameItem& sameItem);

/// `path` without a leading "/private", without a look at the disk: so only in the folders "tmp", "var" and
/// "etc", to which every Mac has its links. Anything else that begins so may be another place than the
/// shorter path, and keeps it. Any thread.
[[nodiscard]] std::string withoutPrivatePrefix(std::string path);

}  // namespace tamo::values
