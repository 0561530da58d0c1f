#include "values/paths.hpp"

#include <algorithm>
#include <vector>

namespace tamo::values {
namespace {

/// What lies above the root is the root.
void apply(std::vector<std::string_view>& kept, std::string_view component) {
  if (component.empty() || component == ".") return;
  if (component != "..") {
    kept.push_back(component);
  } else if (!kept.empty()) {
    kept.pop_back();
  }
}

}  // namespace

/// By the text alone. A Mac resolves links first where a ".." occurs; here the answer never depends on what
/// exists at the moment.
std::string standardisedPath(std::string_view path) {
  std::vector<std::string_view> kept;
  for (std::size_t start = 0; start <= path.size();) {
    const auto end = std::min(path.find('/', start), path.size());
    apply(kept, path.substr(start, end - start));
    start = end + 1;
  }
  std::string result;
  for (const auto component : kept)
    result.append("/").append(component);
  return result.empty() ? "/" : result;
}

/// With one "/" between the two, however many they bring: the directory may be the root.
std::string joinedPath(std::string_view directory, std::string_view relative) {
  const auto end = directory.find_last_not_of('/');
  const auto start = relative.find_first_not_of('/');
  std::string result(end == std::string_view::npos ? "" : directory.substr(0, end + 1));
  result += '/';
  if (start != std::string_view::npos) result += relative.substr(start);
  return result;
}

std::string_view parentPath(std::string_view path) {
  const auto slash = path.rfind('/');
  if (slash == std::string_view::npos || slash == 0) return "/";
  return path.substr(0, slash);
}

std::string_view lastComponent(std::string_view path) {
  const auto slash = path.rfind('/');
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

}  // namespace tamo::values
