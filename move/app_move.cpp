#include "move/app_move.hpp"

#include <algorithm>
#include <array>

#include "platform/bundle_info.hpp"
#include "values/json_text.hpp"
#include "values/paths.hpp"
#include "values/private_prefix.hpp"
#include "values/text.hpp"
#include "values/unicode.hpp"

namespace tamo::AppMove {
namespace {

struct Wording {
  std::string_view code;
  std::string_view words;
};

/// The codes "no_helper" and "timeout" are not produced here; readers of the result know them.
constexpr std::array wordings{
    Wording{Code::cancelled,
            "The move was cancelled, so Tamo is still in Downloads. Show it in Finder and drag it into "
            "Applications."},
    Wording{Code::notWritable,
            "macOS didn’t let Tamo write to your Applications folder. Show it in Finder and drag it into "
            "Applications."},
    Wording{Code::copyFailed,
            "Tamo couldn’t copy itself into Applications. Show it in Finder and drag it into Applications."},
    Wording{"no_helper",
            "macOS didn’t let Tamo move itself from this temporary copy. Show it in Finder and drag it into "
            "Applications."},
    Wording{"timeout",
            "Tamo didn’t hear back while moving. Show it in Finder and drag it into Applications."},
};
constexpr std::string_view otherwise =
    "Tamo couldn’t move itself. Show it in Finder and drag it into Applications.";

/// The system runs a copy with the mark of a download from a read-only place of its own, which has this name
/// in its path.
bool isTranslocated(std::string_view path) {
  return path.contains("/AppTranslocation/");
}

std::string spelling(std::string_view path) {
  return values::withoutPrivatePrefix(values::standardisedPath(path));
}

/// A name with accents has two spellings, and so has a path below /private; the places that paths come from do
/// not agree on one.
bool samePath(std::string_view left, std::string_view right) {
  return values::canonicallyEqual(spelling(left), spelling(right));
}

}  // namespace

bool needed(const LiveDataGuard::AppCopy& copy) {
  if (!copy.bundleID) return false;
  if (*copy.bundleID != LiveDataGuard::releaseBundleID) return false;
  return !LiveDataGuard::mayOpenLive(copy);
}

bool needed(std::string_view path, std::string_view home, const platform::FileReader& files) {
  return needed(LiveDataGuard::appCopy(path, home, files));
}

/// Where one of the builds cannot be read, the installed copy may be the newer one; it is opened rather than
/// thrown away.
Plan plan(const Builds& builds) {
  if (!builds.installedExists) return Plan::copy;
  if (!builds.source || !builds.installed) return Plan::openInstalled;
  return *builds.installed < *builds.source ? Plan::replace : Plan::openInstalled;
}

std::optional<std::int64_t> buildNumber(std::string_view version) {
  const auto pieces = values::trimmed(version, '.');
  return values::decimalInt64(pieces.substr(0, pieces.find('.')));
}

std::optional<std::int64_t> build(const platform::FileReader& files, const std::string& appPath) {
  const auto version = platform::bundleText(files, appPath, "CFBundleVersion");
  if (!version) return std::nullopt;
  return buildNumber(*version);
}

Result resultOf(std::string_view code) {
  return {.ok = code == Code::moved || code == Code::opened, .code = std::string(code)};
}

/// Written by hand, because the order of the members is a part of the form.
std::string encoded(const Result& result) {
  const std::string ok = result.ok ? "true" : "false";
  return R"({"ok":)" + ok + R"(,"code":)" + values::jsonString(result.code) + "}";
}

/// In the container of the application that moves: in its sandbox it can read nothing else.
std::string resultURL(std::string_view home, std::string_view bundleID) {
  const auto container =
      std::string("Library/Containers/").append(bundleID).append("/Data/Library/Application Support/Tamo");
  return values::joinedPath(values::joinedPath(home, container), resultName);
}

std::string_view words(std::string_view code) {
  const auto* found = std::find_if(wordings.begin(), wordings.end(),
                                   [code](const Wording& wording) { return wording.code == code; });
  return found == wordings.end() ? otherwise : found->words;
}

std::optional<std::string> originalURL(const std::string& of, const platform::Bundles& bundles) {
  if (!isTranslocated(of)) return std::nullopt;
  return bundles.originalLocation(of);
}

/// A translocated copy lies in a place that is not the user's to clear; if its original is not known, none is
/// cleared. What lies at the destination is the copy that was just made.
std::optional<std::string> oldCopy(std::string_view here, const std::optional<std::string>& original) {
  if (!original && isTranslocated(here)) return std::nullopt;
  auto old = original ? *original : std::string(here);
  if (samePath(old, destination)) return std::nullopt;
  return old;
}

/// By identifier and place, for other copies of the same application may run beside this one and stay.
bool isCopy(const RunningCopy& copy, const platform::RunningApplication& application) {
  if (!application.bundleIdentifier || !application.bundlePath) return false;
  return values::canonicallyEqual(*application.bundleIdentifier, copy.bundleID) &&
         samePath(*application.bundlePath, copy.path);
}

}  // namespace tamo::AppMove
