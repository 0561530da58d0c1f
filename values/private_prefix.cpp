#include "values/private_prefix.hpp"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace tamo::values {
namespace {

constexpr std::string_view prefix = "/private";

/// What macOS never shortens a path to, the folders of the system and of its users.
constexpr std::array<std::string_view, 11> systemFolders{"/Applications", "/Library", "/System", "/Users",
                                                         "/Volumes",      "/bin",     "/cores",  "/dev",
                                                         "/opt",          "/sbin",    "/usr"};

/// The root's own links into /private, the same on every Mac.
constexpr std::array<std::string_view, 3> linkedFolders{"/tmp", "/var", "/etc"};

/// By whole names: "/usr" is not around "/usrlocal".
bool isWithin(std::string_view path, std::string_view folder) {
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

bool isWithinOneOf(std::string_view path, std::span<const std::string_view> folders) {
  return std::ranges::any_of(folders, [path](std::string_view folder) { return isWithin(path, folder); });
}

}  // namespace

std::string withoutPrivatePrefix(std::string path, const SameItem& sameItem) {
  if (!path.starts_with("/private/")) return path;
  const auto shorter = path.substr(prefix.size());
  if (isWithinOneOf(shorter, systemFolders)) return path;
  return sameItem(path, shorter) ? shorter : path;
}

std::string withoutPrivatePrefix(std::string path) {
  if (!path.starts_with("/private/")) return path;
  const auto shorter = path.substr(prefix.size());
  return isWithinOneOf(shorter, linkedFolders) ? shorter : path;
}

}  // namespace tamo::values
