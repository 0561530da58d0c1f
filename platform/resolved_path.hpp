#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tamo::platform {

/// The path of the existing item that a path leads to, the links of every component followed; absent when it
/// leads to none.
using WithoutLinks = std::function<std::optional<std::string>(const std::string& path)>;

/// What FileReader::resolvedPath promises, for the adapters: each follows links in its own way, the rest is
/// the same. Any thread, as far as `withoutLinks` goes.
[[nodiscard]] std::string resolvedPath(const std::string& path, const WithoutLinks& withoutLinks);

}  // namespace tamo::platform
