#include "platform/resolved_path.hpp"

#include "values/paths.hpp"
#include "values/private_prefix.hpp"

namespace tamo::platform {

/// The links first, then the text: what a ".." leads out of is known only when no link is left. The prefix
/// comes last, because it takes a look at what is there.
std::string resolvedPath(const std::string& path, const WithoutLinks& withoutLinks) {
  const auto sameItem = [&withoutLinks](const std::string& left, const std::string& right) {
    const auto item = withoutLinks(left);
    return item && item == withoutLinks(right);
  };
  return values::withoutPrivatePrefix(values::standardisedPath(withoutLinks(path).value_or(path)), sameItem);
}

}  // namespace tamo::platform
