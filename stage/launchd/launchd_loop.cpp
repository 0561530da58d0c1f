#include "stage/launchd/launchd_loop.hpp"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <optional>
#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include "platform/stage/journal.hpp"
#include "platform/stage/stream_sockets.hpp"
#include "stage/common/program_log.hpp"
#include "stage/common/stage_presence.hpp"
#include "stage/common/words.hpp"
#include "stage/launchd/launchd.hpp"
#include "stage/launchd/launchd_clients.hpp"
#include "stage/launchd/launchd_processes.hpp"

namespace tamo::stage {
namespace {

using Clock = std::chrono::steady_clock;

/// Signals as a descriptor that becomes readable. Read in the loop's own turn, for a handler could come between any
/// two steps of a job.
platform::Descriptor signalsAsDescriptor() {
  sigset_t signals;
  ::sigemptyset(&signals);
  for (const int signal : {SIGCHLD, SIGTERM, SIGINT})
    ::sigaddset(&signals, signal);
  ::sigprocmask(SIG_BLOCK, &signals, nullptr);
  return platform::Descriptor(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
}

/// True when one of them asks for the end. A child's death only wakes the loop.
bool endAsked(const platform::Descriptor& signals) {
  bool asked = false;
  signalfd_siginfo info{};
  while (::read(signals.get(), &info, sizeof info) == static_cast<ssize_t>(sizeof info))
    asked = asked || info.ssi_signo != SIGCHLD;
  return asked;
}

class Loop {
 public:
  Loop(const StageRoot& root, platform::Descriptor listening)
      : presence_(root.directory()),
        processes_(root),
        launchd_(root, processes_),
        clients_(std::move(listening), [this, journal = Journal(root)](const auto& words, const auto& reply) {
          logLine(STDERR_FILENO, "asked: " + joinedWords(words));
          journal.note("asked", words);
          // An errand is a process and no job, so the table of jobs has nothing to do with it.
          const bool errand = words.size() == 2 && words.front() == "administrator";
          if (errand) return processes_.errands().run(words.back(), reply);
          launchd_.ask(words, Clock::now(), reply);
        }) {}

  /// Everything is ended before a shutdown is answered, because who asked for it removes the stage next.
  void run() {
    launchd_.services().resume(Clock::now());
    while (turn()) {
    }
    LaunchdProcesses::endAll();
    if (const auto& reply = launchd_.shutdown()) (*reply)({});
    clients_.finish();
  }

 private:
  /// False when it is time to end. Deaths come first, then what is due, then questions: a process that ended in time
  /// is not killed for its timeout, and who asks is told how things stand now.
  bool turn() {
    std::vector<pollfd> polled = {{.fd = signals_.get(), .events = POLLIN, .revents = 0}};
    clients_.addTo(polled);
    ::poll(polled.data(), polled.size(), static_cast<int>(pause().count()));
    const bool asked = endAsked(signals_);
    processes_.reap(launchd_.jobs(), Clock::now());
    launchd_.tick(Clock::now());
    clients_.serve(polled);
    return !asked && !launchd_.shutdown() && presence_.isThere();
  }

  /// A second at most, so that the stage's end is noticed.
  [[nodiscard]] std::chrono::milliseconds pause() const {
    const std::chrono::milliseconds longest(1000);
    const auto next = launchd_.nextDeadline();
    if (!next) return longest;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*next - Clock::now());
    return std::clamp(left, std::chrono::milliseconds(0), longest);
  }

  /// The first member: signals are held back before there is a child whose end could be missed.
  platform::Descriptor signals_ = signalsAsDescriptor();
  StagePresence presence_;
  LaunchdProcesses processes_;
  Launchd launchd_;
  LaunchdClients clients_;
};

}  // namespace

/// A socket that answers has a launchd behind it. One that does not was left by a launchd that was killed, and is
/// replaced.
int runLaunchd(const StageRoot& root) {
  const auto path = root.control("launchd.sock");
  if (connectedTo(path)) {
    logLine(STDERR_FILENO, "another launchd runs this stage");
    return 1;
  }
  auto listening = listeningAt(path);
  if (!listening) {
    logLine(STDERR_FILENO, "the socket " + path + " cannot be made");
    return 1;
  }
  logLine(STDERR_FILENO, "launchd begins as pid " + std::to_string(::getpid()));
  Journal(root).note("launchd");
  const StagePresence presence(root.directory());
  Loop(root, std::move(listening)).run();
  logLine(STDERR_FILENO, "launchd ends");
  // Another stage may have been laid at the same place; its socket is none of ours.
  if (presence.isThere()) ::unlink(path.c_str());
  return 0;
}

}  // namespace tamo::stage
