#include "platform/posix/posix_processes.hpp"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include "platform/posix/byte_stream.hpp"
#include "platform/posix/descriptor.hpp"
#include "platform/posix/posix_spawn.hpp"
#include "values/fatal.hpp"

namespace tamo::platform {
namespace {

/// Of a child that somebody else has waited for.
constexpr std::int32_t unknownStatus = -1;

struct Pipe {
  Descriptor reading;
  Descriptor writing;
};

/// Both ends lie above the standard streams, so that connecting a tool's streams cannot overwrite one before
/// its turn, even when this process was started with a stream closed.
std::optional<Pipe> openPipe() {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) return std::nullopt;
  const Descriptor reading(ends[0]);
  const Descriptor writing(ends[1]);
  Pipe moved{Descriptor(::fcntl(reading.get(), F_DUPFD_CLOEXEC, 3)),
             Descriptor(::fcntl(writing.get(), F_DUPFD_CLOEXEC, 3))};
  if (!moved.reading || !moved.writing) return std::nullopt;
  return moved;
}

/// The number of a signal as it is: a Mac's own class for tools tells it so, where a shell would add 128.
std::int32_t statusFrom(int waited) {
  return WIFSIGNALED(waited) ? WTERMSIG(waited) : WEXITSTATUS(waited);
}

class PosixTool final : public Tool {
 public:
  PosixTool(Leftovers& leftovers, pid_t child, Descriptor errors)
      : leftovers_(leftovers), child_(child), errors_(std::move(errors)) {}
  ~PosixTool() override {
    if (!status_) leftovers_.add(child_);
  }

  [[nodiscard]] bool running() override {
    if (!status_) look(WNOHANG);
    return !status_;
  }
  [[nodiscard]] std::int32_t wait() override {
    if (!status_) look(0);
    return status_.value_or(unknownStatus);
  }
  // Before the reaping the pid belongs to this child, if only as a zombie; after it, to anybody.
  void terminate() override {
    if (!status_) ::kill(child_, SIGTERM);
  }
  [[nodiscard]] std::string readErrors(std::size_t limit) override {
    if (!errors_) values::fatal("standard error was not captured, or is read twice");
    const auto reading = std::exchange(errors_, Descriptor());
    return readToEnd(reading.get(), limit).value_or("");
  }

 private:
  void look(int options) {
    int waited = 0;
    const auto found = uninterrupted([&] { return ::waitpid(child_, &waited, options); });
    // Whoever else reaped it has its status, and from now on its pid may be anybody's.
    if (found < 0) status_ = unknownStatus;
    if (found == child_) status_ = statusFrom(waited);
  }

  Leftovers& leftovers_;
  pid_t child_;
  Descriptor errors_;
  std::optional<std::int32_t> status_;
};

}  // namespace

void Leftovers::reap() {
  // A child that cannot be waited for at all is none of ours any longer; only 0 means that it still runs.
  std::erase_if(children_, [](pid_t child) { return ::waitpid(child, nullptr, WNOHANG) != 0; });
}

PosixProcesses::PosixProcesses() {
  std::signal(SIGCHLD, SIG_DFL);
}

std::unique_ptr<Tool> PosixProcesses::start(const ToolLaunch& launch) {
  return start(launch, launch.path);
}

/// Each start is an occasion to reap those that nobody waited for.
std::unique_ptr<Tool> PosixProcesses::start(const ToolLaunch& launch, const std::string& executable,
                                            const std::function<void(pid_t)>& started) {
  leftovers_.reap();
  std::optional<Pipe> errors;
  if (launch.capturesErrors) {
    errors = openPipe();
    if (!errors) return nullptr;
  }
  const auto child = spawn(launch, executable, errors ? errors->writing.get() : -1);
  if (!child) return nullptr;
  if (started) started(*child);
  return std::make_unique<PosixTool>(leftovers_, *child, errors ? std::move(errors->reading) : Descriptor());
}

}  // namespace tamo::platform
