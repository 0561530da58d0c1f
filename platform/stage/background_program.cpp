#include "platform/stage/background_program.hpp"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

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
};

[[noreturn]] void become(const Ready& ready) {
  ::setsid();
  // A second fork: the program's parent is gone at once, and it leads no session that could get a terminal.
  const auto pid = ::fork();
  if (pid != 0) ::_exit(pid < 0 ? 1 : 0);
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  ::dup2(ready.input, STDIN_FILENO);
  ::dup2(ready.output, STDOUT_FILENO);
  ::dup2(ready.output, STDERR_FILENO);
  ::close_range(STDERR_FILENO + 1, ~0U, 0);
  if (::chdir("/") == 0) ::execve(ready.program, ready.arguments, ready.environment);
  ::_exit(127);
}

}  // namespace

bool startInBackground(const BackgroundProgram& background) {
  const platform::Descriptor input(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  const platform::Descriptor output(
      ::open(background.log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
  if (!input || !output || ::access(background.program.c_str(), X_OK) != 0) return false;
  auto texts = background.environment;
  std::vector<char*> environment;
  for (auto& text : texts)
    environment.push_back(text.data());
  environment.push_back(nullptr);
  auto program = background.program;
  const std::array<char*, 2> arguments = {program.data(), nullptr};
  const Ready ready = {.program = program.c_str(),
                       .arguments = arguments.data(),
                       .environment = environment.data(),
                       .input = input.get(),
                       .output = output.get()};
  const auto pid = ::fork();
  if (pid == 0) become(ready);
  int status = 0;
  return pid > 0 && platform::uninterrupted([&] { return ::waitpid(pid, &status, 0); }) == pid && status == 0;
}

}  // namespace tamo::stage
