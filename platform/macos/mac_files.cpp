#include "platform/macos/mac_files.hpp"

#include "platform/posix/posix_files.hpp"
#include "platform/posix/temporary_directory.hpp"
#include "platform/resolved_path.hpp"
#include "values/paths.hpp"

namespace tamo::macos {
namespace {

namespace posix = platform::posix;

}  // namespace

bool MacFiles::exists(const std::string& path) const {
  return posix::exists(path);
}

std::optional<std::string> MacFiles::readWhole(const std::string& path) const {
  return posix::readWhole(path);
}

std::string MacFiles::resolvedPath(const std::string& path) const {
  return platform::resolvedPath(path, &posix::withoutLinks);
}

bool MacFiles::writeAtomically(const std::string& path, std::string_view bytes) {
  return posix::writeAtomically(path, bytes);
}

/// A ".." goes by the text, as in every other path, and not by where a link leads.
bool MacFiles::createDirectories(const std::string& path) {
  return posix::createDirectories(values::standardisedPath(path));
}

bool MacFiles::remove(const std::string& path) {
  return posix::remove(path);
}

std::unique_ptr<platform::OutputFile> MacFiles::openForWriting(const std::string& path) {
  return posix::openForWriting(path);
}

std::optional<std::string> MacFiles::temporaryDirectory() const {
  return posix::temporaryDirectory();
}

}  // namespace tamo::macos
