#include "acceptance/child.hpp"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <limits>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "acceptance/place.hpp"
#include "platform/posix/argument_vector.hpp"
#include "platform/posix/byte_stream.hpp"
#include "platform/posix/descriptor.hpp"
#include "platform/posix/host_differences.hpp"

namespace tamo::acceptance {
namespace {

/// Its own group, and nothing blocked or ignored that this process has blocked or ignored.
void setAttributes(posix_spawnattr_t& attributes) {
  sigset_t none;
  sigset_t all;
  sigemptyset(&none);
  sigfillset(&all);
  ::posix_spawnattr_init(&attributes);
  ::posix_spawnattr_setflags(&attributes, static_cast<short>(POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK |
                                                             POSIX_SPAWN_SETSIGDEF));
  ::posix_spawnattr_setpgroup(&attributes, 0);
  ::posix_spawnattr_setsigmask(&attributes, &none);
  ::posix_spawnattr_setsigdefault(&attributes, &all);
}

int statusOf(int status) {
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

std::unique_lock<std::mutex> whileNothingStarts() {
  static std::mutex starting;
  return std::unique_lock(starting);
}

pid_t startProgram(const Program& program) {
  auto words = program.words;
  auto variables = program.environment.value_or(std::vector<std::string>());
  const auto argv = platform::vectorOf(words);
  const auto given = platform::vectorOf(variables);
  char* const* environment = program.environment ? given.data() : platform::ownEnvironment();
  const platform::Descriptor null(::open("/dev/null", O_RDWR | O_CLOEXEC));
  const int output = program.output < 0 ? null.get() : program.output;
  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, null.get(), STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
  setAttributes(attributes);
  pid_t pid = 0;
  const auto alone = whileNothingStarts();
  const int failure = ::posix_spawn(&pid, argv.front(), &actions, &attributes, argv.data(), environment);
  ::posix_spawn_file_actions_destroy(&actions);
  ::posix_spawnattr_destroy(&attributes);
  if (failure != 0) throw PlaceError("cannot start " + program.words.front());
  return pid;
}

std::optional<int> endOf(pid_t pid) {
  int status = 0;
  const auto answer = platform::uninterrupted([&] { return ::waitpid(pid, &status, WNOHANG); });
  if (answer == 0) return std::nullopt;
  return answer == pid ? statusOf(status) : -1;
}

Run runProgram(const Program& program, std::chrono::seconds limit) {
  auto name = (std::filesystem::temp_directory_path() / "tamo-output-XXXXXX").string();
  const platform::Descriptor file(::mkstemp(name.data()));
  if (!file) throw PlaceError("no file for the output of " + program.words.front());
  ::fcntl(file.get(), F_SETFD, FD_CLOEXEC);
  // Nothing is left of it, whatever becomes of this process.
  ::unlink(name.c_str());
  auto given = program;
  given.output = file.get();
  const auto pid = startProgram(given);
  const auto end = std::chrono::steady_clock::now() + limit;
  auto status = endOf(pid);
  while (!status && std::chrono::steady_clock::now() < end) {
    ::usleep(2'000);
    status = endOf(pid);
  }
  if (!status) {
    ::kill(-pid, SIGKILL);
    platform::uninterrupted([&] { return ::waitpid(pid, nullptr, 0); });
  }
  ::lseek(file.get(), 0, SEEK_SET);
  const auto text = platform::readToEnd(file.get(), std::numeric_limits<std::size_t>::max());
  return {.status = status.value_or(-1), .text = text.value_or("")};
}

}  // namespace tamo::acceptance
