#include "soak/stop_rounds.hpp"

#include <algorithm>
#include <array>
#include <csignal>
#include <fstream>
#include <poll.h>
#include <sstream>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

#include "platform/posix/posix_files.hpp"
#include "soak/clock_hand.hpp"
#include "stage/common/stage_census.hpp"

namespace tamo::soak {
namespace {

using std::chrono::milliseconds;

/// What a companion may take at most, on a machine that has more to do: 0.4 s, the stop, and the tools.
constexpr milliseconds longestStop(40'000);

#ifdef TAMO_SOAK_WITHOUT_CLOCK
constexpr bool clockJumps = false;
#else
constexpr bool clockJumps = true;
#endif

std::string lastLine(const std::vector<std::string>& lines, const std::string& opening) {
  std::string found;
  for (const auto& line : lines)
    if (line.starts_with(opening)) found = line;
  return found;
}

/// "exited" of "default hardstop pid {public:12}: {public:exited}".
std::string outcomeIn(const std::string& line) {
  const std::string opening = "}: {public:";
  const auto start = line.find(opening);
  return start == std::string::npos
             ? "none"
             : line.substr(start + opening.size(), line.size() - start - opening.size() - 1);
}

}  // namespace

Held::Held(pid_t pid) : process_(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0))) {}

bool Held::ended() const {
  pollfd polled{.fd = process_.get(), .events = POLLIN, .revents = 0};
  return !process_ || ::poll(&polled, 1, 0) > 0;
}

std::string wrongInSignals(const std::string& outcome, pid_t core, const std::vector<Sent>& sent) {
  const bool group = outcome.starts_with("killedGroup");
  const bool process = outcome.starts_with("killedProcess");
  const std::size_t expected = group || process ? 1 : 0;
  if (sent.size() != expected) return std::to_string(sent.size()) + " signals were sent for " + outcome;
  if (expected == 0) return "";
  const auto& one = sent.front();
  const bool right = one.signal == SIGKILL && one.target == (group ? -core : core);
  return right ? "" : "signal " + std::to_string(one.signal) + " went to " + std::to_string(one.target);
}

Witness::Program StopRounds::companion(pid_t group) {
  const auto& root = stage_.root();
  clockBefore_ = wallClockAhead();
  Witness::Program program{.path = root.host(stage::companionProgram(stage::copyPath(root, "installed"))),
                           .arguments = {"--core-action", "restart"},
                           .environment = {"TAMO_STAGE=" + root.directory(), "PATH=/usr/bin:/bin"},
                           .group = group};
  if (!clockJumps || chance_.between(0, 3) != 0) return program;
  tally_.count("restarts with a wall clock that jumps an hour at each reading");
  program.environment.push_back("LD_PRELOAD=" TAMO_BINARY_DIR "/bin/libsoak-jumping-clock.so");
  program.environment.push_back("SOAK_CLOCK=" + root.control("clock-readings"));
  return program;
}

/// launchd waits before it starts a Core that died by itself, so the harness asks for it.
pid_t StopRounds::freshCore(const std::string& words) {
  stage_.set("core", words);
  for (int attempt = 0; attempt < 50; ++attempt) {
    const auto old = stage_.corePidNow();
    if (old == 0) break;
    ::kill(old, SIGKILL);
    std::this_thread::sleep_for(milliseconds(5));
  }
  stage_.launchctl({"kickstart", stage_.target()});
  const auto core = stage_.corePid();
  std::this_thread::sleep_for(milliseconds(60));
  std::ofstream(stage_.root().control("log"), std::ios::trunc).flush();
  return core;
}

void StopRounds::endHelpers(pid_t core) {
  for (const auto& process : stage::processesOfStage(stage_.root().directory()))
    if (process.pid != core && process.command.ends_with("tamo-core-agent")) ::kill(process.pid, SIGKILL);
}

void StopRounds::countReadings() {
  const auto path = stage_.root().control("clock-readings");
  std::istringstream lines(platform::posix::readWhole(path).value_or(""));
  for (std::int64_t readings = 0; lines >> readings;)
    tally_.count("readings of the jumping wall clock", readings);
  ::unlink(path.c_str());
}

/// The end of the companion, its log and its signals against what is right. Gives the outcome.
std::optional<std::string> StopRounds::finish(Witness& companion, const StopExpected& expected) {
  const auto ended = companion.finish(longestStop);
  tally_.count("companions run for a restart");
  if (std::chrono::abs(wallClockAhead() - clockBefore_) > milliseconds(100))
    tally_.count("restarts during which the machine's clock was set");
  countReadings();
  if (!ended) {
    tally_.wrong(expected.round + ": the companion hung");
    return std::nullopt;
  }
  tally_.greatest("longest restart, ms", ended->after.count());
  const auto lines = stage_.lines();
  const auto outcome = outcomeIn(lastLine(lines, "default hardstop"));
  const auto name = outcome.substr(0, outcome.find('('));
  tally_.count("outcome " + name);
  if (std::ranges::find(expected.outcomes, name) == expected.outcomes.end())
    tally_.wrong(expected.round + ": the outcome was " + outcome);
  if (ended->status != 0)
    tally_.wrong(expected.round + ": the companion ended with " + std::to_string(ended->status));
  if (!lastLine(lines, "default {public:restart}")
           .contains("status {public:1} ok {public:Optional(true)}{public: kickstart 0}"))
    tally_.wrong(expected.round + ": " + (lines.empty() ? "no line" : lines.back()));
  if (const auto what = wrongInSignals(outcome, expected.core, companion.sent()); !what.empty())
    tally_.wrong(expected.round + ": " + what);
  tally_.count("signals that companions sent", static_cast<std::int64_t>(companion.sent().size()));
  return outcome;
}

}  // namespace tamo::soak
