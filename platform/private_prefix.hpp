#pragma once

#include <functional>
#include <string>

namespace tamo::platform {

/// Whether two paths lead to one existing item, links followed.
using SameItem = std::function<bool(const std::string& left, const std::string& right)>;

/// `path` without a leading "/private", when the shorter path names the same existing item: the system's own
/// "/tmp", "/var" and "/etc" are links into that folder. A path into a system folder keeps it, whatever the
/// shorter one leads to: a system folder that was linked away must not read as the folder itself. `path` is
/// standardised. Any thread, as far as `sameItem` goes.
[[nodiscard]] std::string withoutPrivatePrefix(std::string path, const SameItem& sameItem);

}  // namespace tamo::platform
