#include "launch/launchctl.hpp"

#include <chrono>
#include <utility>

#include "platform/deadline.hpp"
#include "values/paths.hpp"
#include "values/text.hpp"

namespace tamo {
namespace {

constexpr const char* launchctlPath = "/bin/launchctl";
/// A launchctl that hangs counts as one that failed after this time: the action, which holds the job lock,
/// goes on.
constexpr std::chrono::seconds launchctlDeadline(5);
constexpr std::chrono::microseconds launchctlPoll(50'000);
/// No exit status is negative.
constexpr std::int32_t notFinished = -1;
/// Stands for the null device.
constexpr int discarded = -1;

/// Removes a file at the end of a scope, however that is left. A failure to remove it is ignored: the next
/// print replaces the file.
class RemovedAtEnd {
 public:
  RemovedAtEnd(platform::Files& files, std::string path) : files_(files), path_(std::move(path)) {}
  RemovedAtEnd(const RemovedAtEnd&) = delete;
  RemovedAtEnd& operator=(const RemovedAtEnd&) = delete;
  ~RemovedAtEnd() { files_.remove(path_); }

 private:
  platform::Files& files_;
  std::string path_;
};

/// Waits for a tool until the deadline. The clock is the monotonic one: the wall clock can be set meanwhile,
/// which would end the wait at once or stretch it without limit.
void waitInSteps(platform::Tool& tool, platform::Clock& clock) {
  const auto deadline = platform::deadlineAfter(clock.monotonicNow(), launchctlDeadline);
  while (tool.running() && clock.monotonicNow() < deadline)
    clock.sleep(launchctlPoll);
}

/// One byte that is no UTF-8 spoils the whole text: what a reader made of the rest would be a guess.
std::optional<std::string> utf8Text(const platform::Files& files, const std::string& path) {
  auto bytes = files.readWhole(path);
  if (!bytes || !values::isUtf8(*bytes)) return std::nullopt;
  return bytes;
}

}  // namespace

/// The agent lives in the domain of its user's graphical session.
std::string Launchctl::jobTarget() const {
  return "gui/" + std::to_string(needs_.user.realUserID()) + "/" + needs_.label;
}

std::int32_t Launchctl::launchctl(const std::vector<std::string>& arguments, int output) {
  const auto tool = needs_.processes.start(
      {.path = launchctlPath, .arguments = arguments, .standardOutput = output, .capturesErrors = false});
  if (!tool) return notFinished;
  waitInSteps(*tool, needs_.clock);
  if (tool->running()) {
    // Not waited for: a launchctl that hangs may ignore the request, too.
    tool->terminate();
    return notFinished;
  }
  return tool->wait();
}

/// launchctl prints into a file. From a pipe somebody would have to read while it runs, and one that hangs
/// would hold the pipe open.
std::optional<PrintResult> Launchctl::printJob() {
  const auto directory = needs_.files.temporaryDirectory();
  if (!directory) return std::nullopt;
  const auto name = "tamo-core-print-" + std::to_string(needs_.kernelProcesses.ownPid()) + ".txt";
  const auto path = values::joinedPath(*directory, name);
  const RemovedAtEnd removed(needs_.files, path);
  // A whole new file under the name, so that a link planted there is never written through.
  if (!needs_.files.writeAtomically(path, "")) return std::nullopt;
  auto file = needs_.files.openForWriting(path);
  if (!file) return std::nullopt;
  const auto code = launchctl({"print", jobTarget()}, file->descriptor());
  file.reset();
  return PrintResult{.code = code, .text = utf8Text(needs_.files, path)};
}

bool Launchctl::jobRunning() {
  return tamo::jobRunning(printJob());
}

/// With -k launchd ends a running job first and starts it again; without it a running job is left alone.
std::int32_t Launchctl::kickstart(Kickstart how) {
  std::vector<std::string> arguments{"kickstart"};
  if (how.kill) arguments.emplace_back("-k");
  arguments.push_back(jobTarget());
  return launchctl(arguments, discarded);
}

}  // namespace tamo
