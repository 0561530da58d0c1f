#include "platform/stage/stage_files.hpp"

#include <algorithm>
#include <array>

#include "platform/paths.hpp"
#include "platform/posix/posix_files.hpp"

namespace tamo::stage {
namespace {

namespace posix = platform::posix;

/// A path into one of these keeps its "/private", whatever it leads to: a system folder that was linked away
/// must not read as the folder itself.
constexpr std::array<std::string_view, 11> systemFolders{"/Applications", "/Library", "/System", "/Users",
                                                         "/Volumes",      "/bin",     "/cores",  "/dev",
                                                         "/opt",          "/sbin",    "/usr"};

bool isBelow(std::string_view path, std::string_view folder) {
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

}  // namespace

bool StageFiles::exists(const std::string& path) const {
  return root_.existing(path).has_value();
}

std::optional<std::string> StageFiles::readWhole(const std::string& path) const {
  const auto found = root_.existing(path);
  return found ? posix::readWhole(*found) : std::nullopt;
}

std::string StageFiles::resolvedPath(const std::string& path) const {
  const auto found = root_.existing(path);
  const auto resolved = found ? root_.onStage(*found) : std::nullopt;
  return withoutPrivate(platform::standardisedPath(resolved.value_or(path)));
}

bool StageFiles::writeAtomically(const std::string& path, std::string_view bytes) {
  const auto place = root_.entry(path);
  return place && posix::writeAtomically(*place, bytes);
}

bool StageFiles::createDirectories(const std::string& path) {
  // One directory at a time, because each may be reached through a link that only the stage can follow.
  const auto directory = platform::standardisedPath(path);
  if (const auto found = root_.existing(directory)) return posix::createDirectory(*found);
  if (directory == "/") return false;
  if (!createDirectories(std::string(platform::parentPath(directory)))) return false;
  const auto place = root_.entry(directory);
  return place && posix::createDirectory(*place);
}

bool StageFiles::remove(const std::string& path) {
  const auto place = root_.entry(path);
  return place && posix::remove(*place);
}

std::unique_ptr<platform::OutputFile> StageFiles::openForWriting(const std::string& path) {
  const auto found = root_.existing(path);
  return found ? posix::openForWriting(*found) : nullptr;
}

std::optional<std::string> StageFiles::temporaryDirectory() const {
  auto directory = root_.setting("temporary-directory", "/private/var/folders/st/tamo/T/");
  if (directory == "none") return std::nullopt;
  return directory.ends_with('/') ? directory : directory + '/';
}

std::string StageFiles::withoutPrivate(std::string path) const {
  constexpr std::string_view prefix = "/private";
  if (!path.starts_with("/private/")) return path;
  const auto shorter = path.substr(prefix.size());
  const auto into = [&shorter](std::string_view folder) { return isBelow(shorter, folder); };
  if (std::any_of(systemFolders.begin(), systemFolders.end(), into)) return path;
  const auto item = root_.existing(path);
  return item && item == root_.existing(shorter) ? shorter : path;
}

}  // namespace tamo::stage
