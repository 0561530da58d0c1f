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

AppCopy appCopy(std::string_view path, std::string_view home, const platform::FileReader& files) {
  const auto outer = outerApp(path);
  return {.appPath = outer,
          .resolvedPath = files.resolvedPath(outer),
          .bundleID = platform::bundleIdentifier(files, outer),
          .home = std::string(home)};
}

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

ClampedPath clampedPath(std::string_view path, const platform::FileReader& files) {
  const auto standardised = standardisedPath(path);
  const auto parent = files.resolvedPath(std::string(values::parentPath(standardised)));
  return {.path = std::string(path),
          .standardised = standardised,
          .viaParent = joinedPath(parent, values::lastComponent(standardised))};
}

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
