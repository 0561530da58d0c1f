#include "guard/live_data_guard.hpp"

#include <array>

#include "platform/bundle_info.hpp"
#include "values/fatal.hpp"
#include "values/paths.hpp"
#include "values/unicode.hpp"

namespace tamo::LiveDataGuard {
namespace {

using values::joinedPath;
using values::standardisedPath;

/// What `path` has behind the directory `root`, from the "/" on; empty when it is that directory, absent when
/// it leads elsewhere. `root` is in lower case. Only a whole name is compared with a whole name, so nothing
/// rests on how many bytes or characters a name has in another spelling.
std::optional<std::string_view> behind(const std::string& root, std::string_view path) {
  for (auto front = path; front != "/"; front = values::parentPath(front))
    if (values::canonicallyEqual(values::lowercased(front), root)) return path.substr(front.size());
  return std::nullopt;
}

}  // namespace

/// The environment is not asked: whoever starts a copy sets it as he likes.
std::string realHome(const platform::User& user) {
  const auto entry = user.passwordEntry();
  if (!entry) return std::string(unknownHome);
  if (!entry->home) values::fatal("the user database has an entry without a home");
  return *entry->home;
}

std::string stagedApp(std::string_view home) {
  return standardisedPath(joinedPath(home, stagedRel));
}

std::string outerApp(std::string_view of) {
  const auto path = standardisedPath(of);
  return path.substr(0, path.rfind(helperRel));
}

/// The identifier is read from the file, as everywhere: the system's own answer may be of a bundle that stood
/// here before.
AppCopy appCopy(std::string_view path, std::string_view home, const platform::FileReader& files) {
  const auto outer = outerApp(path);
  return {.appPath = outer,
          .resolvedPath = files.resolvedPath(outer),
          .bundleID = platform::bundleIdentifier(files, outer),
          .home = std::string(home)};
}

/// A path that changes when its links are resolved names the installed place without being it.
bool mayOpenLive(const AppCopy& copy) {
  using values::canonicallyEqual;
  if (!copy.bundleID) return false;
  if (!canonicallyEqual(*copy.bundleID, releaseBundleID)) return false;
  const auto path = standardisedPath(copy.appPath);
  if (!canonicallyEqual(path, standardisedPath(copy.resolvedPath))) return false;
  return canonicallyEqual(path, installedApp) || canonicallyEqual(path, stagedApp(copy.home));
}

bool mayOpenLive(std::string_view path, std::string_view home, const platform::FileReader& files) {
  return mayOpenLive(appCopy(path, home, files));
}

std::string dataHome(const Access& access) {
  return access.live ? access.real : std::string(isolatedHome);
}

/// Through the parent as well, because a link there leads into the live data under another name.
ClampedPath clampedPath(std::string_view path, const platform::FileReader& files) {
  const auto standardised = standardisedPath(path);
  const auto parent = files.resolvedPath(std::string(values::parentPath(standardised)));
  return {.path = std::string(path),
          .standardised = standardised,
          .viaParent = joinedPath(parent, values::lastComponent(standardised))};
}

/// In lower case, as the usual file system of a Mac compares. What is handed on keeps the spelling that it
/// came with.
std::string clamp(const ClampedPath& path, const Access& access) {
  if (access.live) return path.path;
  const auto root = values::lowercased(standardisedPath(joinedPath(access.real, dataRel)));
  for (const auto* candidate : std::array{&path.standardised, &path.viaParent})
    if (const auto rest = behind(root, *candidate)) return std::string(isolatedData).append(*rest);
  return path.path;
}

std::string clamp(std::string_view path, const Access& access, const platform::FileReader& files) {
  if (access.live) return std::string(path);
  return clamp(clampedPath(path, files), access);
}

std::string refusal(std::string_view app) {
  return std::string("tamo.test_copy_refused_live_data app=")
      .append(app)
      .append(" (only /Applications/Tamo.app opens the founder's data and Core)");
}

}  // namespace tamo::LiveDataGuard
