#include "platform/private_prefix.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace tamo::platform {
namespace {

constexpr std::string_view prefix = "/private";

constexpr std::array<std::string_view, 11> systemFolders{"/Applications", "/Library", "/System", "/Users",
                                                         "/Volumes",      "/bin",     "/cores",  "/dev",
                                                         "/opt",          "/sbin",    "/usr"};

bool isWithin(std::string_view path, std::string_view folder) {
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

}  // namespace

std::string withoutPrivatePrefix(std::string path, const SameItem& sameItem) {
  if (!path.starts_with("/private/")) return path;
  const auto shorter = path.substr(prefix.size());
  const auto leadsInto = [&shorter](std::string_view folder) { return isWithin(shorter, folder); };
  if (std::any_of(systemFolders.begin(), systemFolders.end(), leadsInto)) return path;
  return sameItem(path, shorter) ? shorter : path;
}

}  // namespace tamo::platform
