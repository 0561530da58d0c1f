#include "platform/posix/temporary_directory.hpp"

#include <cstdlib>
#include <unistd.h>
#include <vector>

#include "platform/posix/host_differences.hpp"

namespace tamo::platform::posix {
namespace {

/// Asked only where the system knows none, which on a Mac it does: there the environment does not decide. A
/// relative path would mean another folder for each process.
std::optional<std::string> directoryOfTheEnvironment() {
  const char* directory = std::getenv("TMPDIR");
  if (directory == nullptr || *directory != '/') return std::nullopt;
  return directory;
}

}  // namespace

std::optional<std::string> configuredText(int name) {
  std::vector<char> text;
  auto size = ::confstr(name, nullptr, 0);
  // Again, should it have grown meanwhile.
  while (size > text.size()) {
    text.resize(size);
    size = ::confstr(name, text.data(), text.size());
  }
  // The closing zero is counted, and 0 is a failure.
  if (size <= 1) return std::nullopt;
  return text.data();
}

std::string temporaryDirectory() {
  auto directory = configuredText(temporaryDirectoryName());
  if (!directory) directory = directoryOfTheEnvironment();
  if (!directory) return "/tmp/";
  return directory->ends_with('/') ? *directory : *directory + '/';
}

}  // namespace tamo::platform::posix
