#include "platform/resolved_path.hpp"

#include "values/paths.hpp"
#include "values/private_prefix.hpp"

namespace tamo::platform {

std::string resolvedPath(const std::string& path, const WithoutLinks& withoutLinks) {
  const auto sameItem = [&withoutLinks](const std::string& left, const std::string& right) {
    const auto item = withoutLinks(left);
    return item && item == withoutLinks(right);
  };
  return values::withoutPrivatePrefix(values::standardisedPath(withoutLinks(path).value_or(path)), sameItem);
}

}  // namespace tamo::platform
