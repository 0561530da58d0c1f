#include "platform/macos/mac_files.hpp"

#import <Foundation/Foundation.h>
#include <sys/stat.h>

#include "platform/macos/foundation_values.hpp"
#include "platform/paths.hpp"
#include "platform/posix/posix_files.hpp"
#include "platform/private_prefix.hpp"

namespace tamo::macos {
namespace {

namespace posix = platform::posix;

bool isSameItem(const std::string& left, const std::string& right) {
  struct stat one {};
  struct stat other {};
  return ::stat(left.c_str(), &one) == 0 && ::stat(right.c_str(), &other) == 0 &&
         one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

/// An existing path with its links resolved, or as it was when the system cannot.
std::string withoutLinks(const std::string& path) {
  @autoreleasepool {
    return pathOf(fileURL(path).URLByResolvingSymlinksInPath).value_or(path);
  }
}

}  // namespace

bool MacFiles::exists(const std::string& path) const {
  return posix::exists(path);
}

std::optional<std::string> MacFiles::readWhole(const std::string& path) const {
  return posix::readWhole(path);
}

std::string MacFiles::resolvedPath(const std::string& path) const {
  // Of a path that leads nowhere, some systems would resolve the part that exists.
  const auto resolved = posix::exists(path) ? withoutLinks(path) : path;
  return platform::withoutPrivatePrefix(platform::standardisedPath(resolved), &isSameItem);
}

bool MacFiles::writeAtomically(const std::string& path, std::string_view bytes) {
  return posix::writeAtomically(path, bytes);
}

bool MacFiles::createDirectories(const std::string& path) {
  return posix::createDirectories(platform::standardisedPath(path));
}

bool MacFiles::remove(const std::string& path) {
  return posix::remove(path);
}

std::unique_ptr<platform::OutputFile> MacFiles::openForWriting(const std::string& path) {
  return posix::openForWriting(path);
}

std::optional<std::string> MacFiles::temporaryDirectory() const {
  @autoreleasepool {
    auto directory = textOf(NSTemporaryDirectory());
    if (!directory || directory->empty()) return std::nullopt;
    return directory->ends_with('/') ? *directory : *directory + '/';
  }
}

}  // namespace tamo::macos
