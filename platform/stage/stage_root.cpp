#include "platform/stage/stage_root.hpp"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

#include "platform/posix/posix_files.hpp"
#include "values/fatal.hpp"
#include "values/paths.hpp"
#include "values/text.hpp"

namespace tamo::stage {
namespace {

using platform::Descriptor;
using values::fatal;

Descriptor openedDirectory(const std::string& directory) {
  Descriptor opened(::open(directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!opened && errno == ENOTDIR && platform::posix::exists(directory))
    fatal("the stage at " + directory + " is no directory");
  if (!opened) fatal("no stage at " + directory);
  return opened;
}

/// The kernel gives up with EAGAIN when a rename elsewhere might have let a ".." out of the root while it
/// looked; another try settles it.
Descriptor openedInRoot(int root, const std::string& path, std::uint64_t flags) {
  struct open_how how{};
  how.flags = flags | O_CLOEXEC;
  how.resolve = RESOLVE_IN_ROOT;
  for (;;) {
    const auto number = ::syscall(SYS_openat2, root, path.c_str(), &how, sizeof how);
    if (number >= 0) return Descriptor(static_cast<int>(number));
    if (errno == ENOSYS) fatal("a stage needs openat2");
    if (errno != EAGAIN && errno != EINTR) return {};
  }
}

std::optional<std::string> pathOf(const Descriptor& opened) {
  const auto link = "/proc/self/fd/" + std::to_string(opened.get());
  std::array<char, PATH_MAX> path;
  const auto size = ::readlink(link.c_str(), path.data(), path.size());
  if (size <= 0) return std::nullopt;
  return std::string(path.data(), static_cast<std::size_t>(size));
}

}  // namespace

StageRoot StageRoot::fromEnvironment() {
  const char* directory = std::getenv("TAMO_STAGE");
  if (directory == nullptr || *directory == '\0') fatal("no stage: TAMO_STAGE is not set");
  return StageRoot(directory);
}

StageRoot::StageRoot(const std::string& directory) : StageRoot(openedDirectory(directory)) {}

StageRoot::StageRoot(Descriptor opened)
    : opened_(std::make_shared<const Descriptor>(std::move(opened))),
      directory_(pathOf(*opened_).value_or("")) {
  if (directory_.empty()) fatal("a stage's path cannot be had");
}

std::string StageRoot::host(std::string_view stagePath) const {
  const auto path = values::standardisedPath(stagePath);
  return path == "/" ? directory_ : directory_ + path;
}

std::optional<std::string> StageRoot::onStage(std::string_view hostPath) const {
  const auto path = values::standardisedPath(hostPath);
  if (path == directory_) return "/";
  if (!path.starts_with(directory_ + "/")) return std::nullopt;
  return path.substr(directory_.size());
}

/// The kernel follows the links, with the stage as its root, and tells through the descriptor where they led.
/// A path put together by hand could be led out of the stage by a link that is changed meanwhile. The directory of a
/// stage that has vanished is still open here, but lies nowhere any more.
std::optional<std::string> StageRoot::resolved(std::string_view path, std::uint64_t flags) const {
  const auto opened = openedInRoot(opened_->get(), std::string(path), flags | O_PATH);
  auto found = opened ? pathOf(opened) : std::nullopt;
  return found && onStage(*found) ? std::move(found) : std::nullopt;
}

std::optional<std::string> StageRoot::existing(std::string_view stagePath) const {
  return resolved(stagePath, 0);
}

std::optional<std::string> StageRoot::readWhole(std::string_view stagePath) const {
  return platform::posix::readWhole(
      openedInRoot(opened_->get(), std::string(stagePath), O_RDONLY | O_NONBLOCK));
}

/// Only the folder is resolved: the last name may be a link that is meant itself, or nothing yet.
std::optional<std::string> StageRoot::entry(std::string_view stagePath) const {
  const auto end = stagePath.find_last_not_of('/');
  if (end == std::string_view::npos) return std::nullopt;
  const auto path = stagePath.substr(0, end + 1);
  const auto name = values::lastComponent(path);
  if (name == "." || name == "..") return std::nullopt;
  const auto folder = resolved(values::parentPath(path), O_DIRECTORY);
  if (!folder) return std::nullopt;
  return values::joinedPath(*folder, name);
}

std::string StageRoot::control(std::string_view name) const {
  return values::joinedPath(directory_ + "/.stage", name);
}

/// One line break at the end is no part of it, so that a shell's echo writes a setting as well as set() does.
std::optional<std::string> StageRoot::setting(std::string_view name) const {
  auto text = platform::posix::readWhole(values::joinedPath(control("settings"), name));
  if (text && text->ends_with('\n')) text->pop_back();
  return text;
}

std::string StageRoot::setting(std::string_view name, std::string_view otherwise) const {
  return setting(name).value_or(std::string(otherwise));
}

void StageRoot::set(std::string_view name, std::optional<std::string_view> value) const {
  const auto settings = control("settings");
  const auto path = values::joinedPath(settings, name);
  if (!value) {
    // Clearing what is not set is no mistake.
    static_cast<void>(platform::posix::remove(path));
    return;
  }
  const bool written = platform::posix::createDirectories(settings) &&
                       platform::posix::writeAtomically(path, std::string(*value) + "\n");
  if (!written) fatal("the setting " + std::string(name) + " cannot be written");
}

/// The first user of a Mac has this number, whoever plays him here.
std::uint32_t StageRoot::userID() const {
  const auto number = values::decimalInt32(setting("user-id", "501"));
  if (!number || *number < 0) fatal("the setting user-id is no user id");
  return static_cast<std::uint32_t>(*number);
}

/// A user without a home is one whose entry in the user database names none. The folder is there all the same, and the
/// stage's own programs need it.
std::string StageRoot::home() const {
  const auto home = setting("home", "none");
  return home == "none" ? usualHome : home;
}

}  // namespace tamo::stage
