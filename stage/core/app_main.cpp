#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <string>
#include <unistd.h>

#include "platform/posix/descriptor.hpp"
#include "platform/stage/journal.hpp"
#include "platform/stage/privileges.hpp"
#include "platform/stage/stage_root.hpp"
#include "stage/common/program_log.hpp"
#include "stage/common/stage_presence.hpp"

/// Stands in for the Tamo application itself: it does nothing but run, noted in the control room's "app.log",
/// until it is told to end or its stage disappears.
int main(int /*count*/, char** argv) {
  tamo::stage::renouncePrivileges();
  const auto root = tamo::stage::StageRoot::fromEnvironment();
  const tamo::stage::StagePresence presence(root.directory());
  const auto path = root.control("app.log");
  const tamo::platform::Descriptor log(::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
  const tamo::stage::Journal journal(root);
  const auto say = [&](const std::string& what) {
    tamo::stage::logLine(log.get(), "app " + std::to_string(::getpid()) + ": " + what);
  };
  // SIGTERM is held back and fetched by a wait: that tells who sent it, and cuts off no line in its middle.
  sigset_t signals;
  ::sigemptyset(&signals);
  ::sigaddset(&signals, SIGTERM);
  ::sigprocmask(SIG_BLOCK, &signals, nullptr);
  say("started as " + std::string(argv[0]));
  journal.note("app", {argv[0]});
  // No wait is longer, so that the stage's end is noticed.
  const timespec second{.tv_sec = 1, .tv_nsec = 0};
  siginfo_t told{};
  while (presence.isThere() && ::sigtimedwait(&signals, &told, &second) != SIGTERM) {
  }
  if (told.si_signo == SIGTERM) journal.note("told", {std::to_string(SIGTERM), std::to_string(told.si_pid)});
  say("ends");
  journal.note("leaves", {"0"});
  return 0;
}
