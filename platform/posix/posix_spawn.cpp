#include "platform/posix/posix_spawn.hpp"

#include <algorithm>
#include <array>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>
#include <vector>

#include "platform/posix/argument_vector.hpp"
#include "platform/posix/host_differences.hpp"

namespace tamo::platform {
namespace {

/// What becomes of the standard streams. Each call says whether it found the memory it needs.
class FileActions {
 public:
  FileActions() { made_ = ::posix_spawn_file_actions_init(&actions_) == 0; }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  ~FileActions() {
    if (made_) ::posix_spawn_file_actions_destroy(&actions_);
  }

  /// `source` -1 stands for the null device.
  [[nodiscard]] bool connect(int stream, int source) {
    if (!made_) return false;
    if (source >= 0) return ::posix_spawn_file_actions_adddup2(&actions_, source, stream) == 0;
    return ::posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", O_WRONLY, 0) == 0;
  }
  /// After the streams.
  [[nodiscard]] bool keepNothingElse() { return inheritOnlyStreams(actions_); }
  [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
  bool made_ = false;
};

/// A process group of its own, and signals as a fresh program expects them.
class Attributes {
 public:
  Attributes() { made_ = ::posix_spawnattr_init(&attributes_) == 0; }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  ~Attributes() {
    if (made_) ::posix_spawnattr_destroy(&attributes_);
  }

  [[nodiscard]] bool setUp() {
    sigset_t none;
    sigset_t all;
    // Unqualified, because they are macros on a Mac.
    sigemptyset(&none);
    sigfillset(&all);
    const auto flags = static_cast<short>(POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK |
                                          POSIX_SPAWN_SETSIGDEF | inheritanceFlag());
    if (!made_) return false;
    const std::array failures = {::posix_spawnattr_setsigmask(&attributes_, &none),
                                 ::posix_spawnattr_setsigdefault(&attributes_, &all),
                                 ::posix_spawnattr_setpgroup(&attributes_, 0),
                                 ::posix_spawnattr_setflags(&attributes_, flags)};
    return std::ranges::all_of(failures, [](int failure) { return failure == 0; });
  }
  [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_{};
  bool made_ = false;
};

}  // namespace

/// The executable is started as it is named, without a search along the path.
std::optional<pid_t> spawn(const ToolLaunch& launch, const std::string& executable, int errors) {
  FileActions actions;
  // Standard output first: its source may be this process's standard error.
  const bool connected = actions.connect(STDOUT_FILENO, launch.standardOutput) &&
                         actions.connect(STDERR_FILENO, errors) && actions.keepNothingElse();
  Attributes attributes;
  if (!connected || !attributes.setUp()) return std::nullopt;
  std::vector<std::string> words{launch.path};
  words.insert(words.end(), launch.arguments.begin(), launch.arguments.end());
  pid_t child = -1;
  const int failure = ::posix_spawn(&child, executable.c_str(), actions.get(), attributes.get(),
                                    vectorOf(words).data(), ownEnvironment());
  if (failure != 0) return std::nullopt;
  return child;
}

}  // namespace tamo::platform
