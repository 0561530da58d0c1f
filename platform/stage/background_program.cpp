#include "platform/stage/background_program.hpp"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/posix/argument_vector.hpp"
#include "platform/posix/descriptor.hpp"

namespace tamo::stage {
namespace {

/// Everything that the new process needs, made ready before the fork.
struct Ready {
  const char* program;
  char* const* arguments;
  char* const* environment;
  int input;
  int output;
  /// Closed by a successful exec; takes one byte when that fails.
  int failure;
};

[[noreturn]] void become(const Ready& ready) {
  ::setsid();
  // A second fork: the program's parent is gone at once, and it leads no session that could get a terminal.
  const auto pid = ::fork();
  if (pid != 0) ::_exit(pid < 0 ? 1 : 0);
  // A mask outlives an exec: what the starter holds back, the program would never be told.
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  ::dup2(ready.input, STDIN_FILENO);
  ::dup2(ready.output, STDOUT_FILENO);
  ::dup2(ready.output, STDERR_FILENO);
  // Marked and not closed, because the pipe that tells of a failed exec is needed until then.
  ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
  if (::chdir("/") == 0) ::execve(ready.program, ready.arguments, ready.environment);
  static_cast<void>(::write(ready.failure, "x", 1));
  ::_exit(127);
}

/// Waits until the other end is closed, by an exec or by a process that ends.
bool closedUnused(const platform::Descriptor& end) {
  char byte = 0;
  return platform::uninterrupted([&] { return ::read(end.get(), &byte, 1); }) == 0;
}

}  // namespace

/// Between a fork and an exec only what a signal handler may call can be called, for another thread may have
/// held a lock: so everything is made ready before.
bool startInBackground(const BackgroundProgram& background) {
  const platform::Descriptor input(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  const platform::Descriptor output(
      ::open(background.log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
  if (!input || !output || ::access(background.program.c_str(), X_OK) != 0) return false;
  std::array<int, 2> ends = {-1, -1};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return false;
  const platform::Descriptor failed(ends[0]);
  platform::Descriptor failure(ends[1]);
  auto texts = background.environment;
  const auto environment = platform::vectorOf(texts);
  auto program = background.program;
  const std::array<char*, 2> arguments = {program.data(), nullptr};
  const Ready ready = {.program = program.c_str(),
                       .arguments = arguments.data(),
                       .environment = environment.data(),
                       .input = input.get(),
                       .output = output.get(),
                       .failure = failure.get()};
  const auto pid = ::fork();
  if (pid == 0) become(ready);
  // Or the reading below would wait for this very process.
  failure.close();
  int status = 0;
  // The process in between ends at once, and is reaped here so that it leaves its starter no zombie.
  if (pid < 0 || platform::uninterrupted([&] { return ::waitpid(pid, &status, 0); }) != pid) return false;
  return status == 0 && closedUnused(failed);
}

}  // namespace tamo::stage
