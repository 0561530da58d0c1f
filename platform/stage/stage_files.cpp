#include "platform/stage/stage_files.hpp"

#include "platform/posix/posix_files.hpp"
#include "platform/resolved_path.hpp"
#include "values/paths.hpp"

namespace tamo::stage {
namespace {

namespace posix = platform::posix;

}  // namespace

/// Links are followed, so one that leads to nothing, or off the stage, is not there.
bool StageFiles::exists(const std::string& path) const {
  return root_.existing(path).has_value();
}

std::optional<std::string> StageFiles::readWhole(const std::string& path) const {
  return root_.readWhole(path);
}

std::string StageFiles::resolvedPath(const std::string& path) const {
  // The kernel answers with a host path, which the product must never see.
  const auto withoutLinks = [this](const std::string& from) {
    const auto found = root_.existing(from);
    return found ? root_.onStage(*found) : std::nullopt;
  };
  return platform::resolvedPath(path, withoutLinks);
}

/// The entry itself and not what it leads to: a link in its place is replaced, as on a Mac, and never written through.
bool StageFiles::writeAtomically(const std::string& path, std::string_view bytes) {
  const auto place = root_.entry(path);
  return place && posix::writeAtomically(*place, bytes);
}

bool StageFiles::createDirectories(const std::string& path) {
  // One directory at a time, because each may be reached through a link that only the stage can follow.
  const auto directory = values::standardisedPath(path);
  if (const auto found = root_.existing(directory)) return posix::createDirectory(*found);
  if (directory == "/") return false;
  if (!createDirectories(std::string(values::parentPath(directory)))) return false;
  const auto place = root_.entry(directory);
  return place && posix::createDirectory(*place);
}

/// Of a link the link goes, as on a Mac; what it leads to stays.
bool StageFiles::remove(const std::string& path) {
  const auto place = root_.entry(path);
  return place && posix::remove(*place);
}

/// The entry as it stands, so that a link there is met and refused.
std::unique_ptr<platform::OutputFile> StageFiles::openForWriting(const std::string& path) {
  const auto place = root_.entry(path);
  return place ? posix::openForWriting(*place) : nullptr;
}

/// With the "/" at its end that a Mac's has.
std::optional<std::string> StageFiles::temporaryDirectory() const {
  auto directory = root_.setting("temporary-directory", "/private/var/folders/st/tamo/T/");
  if (directory == "none") return std::nullopt;
  return directory.ends_with('/') ? directory : directory + '/';
}

}  // namespace tamo::stage
