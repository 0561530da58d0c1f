#include "stage/core/core_program.hpp"

#include <algorithm>
#include <csignal>
#include <fstream>
#include <string>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "platform/posix/descriptor.hpp"
#include "platform/posix/posix_files.hpp"
#include "stage/common/program_log.hpp"
#include "stage/common/stage_presence.hpp"
#include "values/fatal.hpp"

namespace tamo::stage {
namespace {

using Clock = std::chrono::steady_clock;
using Term = CoreBehaviour::Term;

/// Set when SIGTERM came, which it does only while the Core waits.
volatile std::sig_atomic_t termination = 0;

void noteTermination(int /*signal*/) {
  termination = 1;
}

/// Keeps SIGTERM back but for the waits, for which it gives the signals to let through. One that came between the look
/// at the flag and a wait would be slept over; pselect lets it in within the wait alone.
sigset_t terminationsOnlyInWaits() {
  sigset_t term;
  sigset_t before;
  sigemptyset(&term);
  sigaddset(&term, SIGTERM);
  ::sigprocmask(SIG_BLOCK, &term, &before);
  sigdelset(&before, SIGTERM);
  struct sigaction action{};
  action.sa_handler = noteTermination;
  ::sigaction(SIGTERM, &action, nullptr);
  return before;
}

/// A helper does nothing but be there; it minds SIGTERM as the Core does.
[[noreturn]] void help(const CoreSurroundings& surroundings, const CoreBehaviour& behaviour, pid_t core) {
  if (behaviour.childrenLeave) ::setpgid(0, 0);
  // Handler and mask of the Core are the helper's as well, until it has set its own.
  const bool obeys = behaviour.term == Term::Obey;
  ::signal(SIGTERM, obeys ? SIG_DFL : SIG_IGN);
  sigset_t none;
  sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  surroundings.note("helper", {std::to_string(core)});
  const StagePresence presence(surroundings.presence);
  while (presence.isThere())
    ::sleep(1);
  ::_exit(0);
}

class Core {
 public:
  Core(const CoreSurroundings& surroundings, const CoreBehaviour& behaviour)
      : surroundings_(surroundings),
        behaviour_(behaviour),
        presence_(surroundings.presence),
        began_(Clock::now()),
        data_(surroundings.dataDirectory) {}

  /// The group comes first: whoever looks at the Core later must not see it change.
  int run() {
    if (!behaviour_.leadsGroup && ::setpgid(0, ::getpgid(::getppid())) != 0) say("could not join its parent");
    logLine(STDOUT_FILENO, opening() + "started in group " + std::to_string(::getpgrp()));
    surroundings_.note("core", {std::to_string(::getpgrp())});
    static_cast<void>(platform::posix::createDirectories(data_));
    for (int i = 0; i < behaviour_.children; ++i)
      addHelper();
    while (!exit_ && presence_.isThere())
      turn();
    for (const auto& path : socketPaths_)
      ::unlink(path.c_str());
    say("exits with " + std::to_string(exit_.value_or(0)));
    return exit_.value_or(0);
  }

 private:
  [[nodiscard]] static std::string opening() { return "core " + std::to_string(::getpid()) + ": "; }

  void say(const std::string& what) const {
    logLine(STDOUT_FILENO, opening() + what);
    surroundings_.note("says", {what});
  }

  void addHelper() {
    const auto core = ::getpid();
    const auto pid = ::fork();
    if (pid < 0) values::fatal("the Core could not fork");
    if (pid == 0 && behaviour_.childrenAreOrphans && ::fork() != 0) ::_exit(0);
    if (pid == 0) help(surroundings_, behaviour_, core);
    if (behaviour_.childrenAreOrphans) return orphaned(pid);
    // Both sides name the group, so that it is settled whoever runs first.
    if (behaviour_.childrenLeave) ::setpgid(pid, pid);
    say("has the helper " + std::to_string(pid));
  }

  /// The helper is the child of the child, which goes at once. It stays in the Core's group while launchd becomes its
  /// parent, so a kill of the group hits a process that is no child of the Core.
  void orphaned(pid_t between) const {
    platform::uninterrupted([&] { return ::waitpid(between, nullptr, 0); });
    say("has an orphan in its group");
  }

  void turn() {
    if (!up_ && Clock::now() >= began_ + behaviour_.startsSlowly) comeUp();
    wait();
    hangUpCallers();
    if (termination != 0) toldToEnd();
    endWhenDue();
  }

  /// Until a caller comes, SIGTERM, or whatever is due next.
  void wait() {
    fd_set callers;
    FD_ZERO(&callers);
    int highest = -1;
    for (const auto& socket : sockets_) {
      FD_SET(socket.get(), &callers);
      highest = std::max(highest, socket.get());
    }
    const auto limit = pause();
    const timespec time{.tv_sec = limit.count() / 1000, .tv_nsec = limit.count() % 1000 * 1'000'000};
    // A wait that SIGTERM ends is a turn like any other.
    ::pselect(highest + 1, &callers, nullptr, nullptr, &time, &inWaits_);
  }

  /// A Core that starts slowly is a process without sockets for so long, which is what a restart can meet.
  void comeUp() {
    up_ = true;
    if (behaviour_.coreSocket) listen("core.sock");
    if (behaviour_.talkSocket) listen("talk.sock");
    say("is up");
    if (!behaviour_.stopsItself) return;
    say("stops itself");
    // No program can hold this one back. What is left is a process whose sockets the kernel still accepts callers on,
    // and which answers nothing.
    ::raise(SIGSTOP);
  }

  void listen(const std::string& name) {
    const auto path = data_ + "/" + name;
    auto socket = surroundings_.listen(path);
    if (!socket) return say("could not listen on " + name);
    sockets_.push_back(std::move(socket));
    socketPaths_.push_back(path);
  }

  /// Whoever connects wants to know no more than that the Core answers. The listening sockets do not block, and tell
  /// so when there is nobody left.
  void hangUpCallers() {
    for (const auto& socket : sockets_)
      while (platform::Descriptor(::accept(socket.get(), nullptr, nullptr))) {
      }
  }

  /// One that obeys takes its time, and does not hear a second SIGTERM meanwhile. A reverting one leaves the
  /// marker that spares it.
  void toldToEnd() {
    termination = 0;
    if (behaviour_.term == Term::Ignore || exitAt_) return say("ignores SIGTERM");
    say("obeys SIGTERM");
    exitAt_ = Clock::now() + behaviour_.termDelay;
    if (behaviour_.term == Term::Revert) std::ofstream(marker()) << "pending\n";
  }

  void endWhenDue() {
    const auto now = Clock::now();
    if (exitAt_ && now >= *exitAt_) {
      // Before the exit, so that nobody sees the Core gone and its revert still pending.
      if (behaviour_.term == Term::Revert) ::unlink(marker().c_str());
      exit_ = 0;
    } else if (behaviour_.diesAfter && now >= began_ + *behaviour_.diesAfter) {
      exit_ = behaviour_.diesWith;
    }
  }

  [[nodiscard]] std::string marker() const { return data_ + "/core.db.revert.pending"; }

  /// A second at most, so that the stage's end is noticed.
  [[nodiscard]] std::chrono::milliseconds pause() const {
    auto next = Clock::now() + std::chrono::seconds(1);
    if (!up_) next = std::min(next, began_ + behaviour_.startsSlowly);
    if (exitAt_) next = std::min(next, *exitAt_);
    if (behaviour_.diesAfter) next = std::min(next, began_ + *behaviour_.diesAfter);
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now());
    return std::max(left, std::chrono::milliseconds(0));
  }

  const CoreSurroundings& surroundings_;
  const CoreBehaviour behaviour_;
  const StagePresence presence_;
  const Clock::time_point began_;
  const std::string data_;
  const sigset_t inWaits_ = terminationsOnlyInWaits();
  std::vector<platform::Descriptor> sockets_;
  std::vector<std::string> socketPaths_;
  bool up_ = false;
  std::optional<Clock::time_point> exitAt_;
  std::optional<int> exit_;
};

}  // namespace

int runCore(const CoreSurroundings& surroundings, const CoreBehaviour& behaviour) {
  return Core(surroundings, behaviour).run();
}

}  // namespace tamo::stage
