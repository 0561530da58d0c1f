#include "stage.hpp"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sstream>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "platform/posix/argument_vector.hpp"
#include "platform/posix/descriptor.hpp"
#include "platform/posix/posix_files.hpp"
#include "platform/stage/stage_kernel_processes.hpp"
#include "platform/stage/stream_sockets.hpp"
#include "stage/control/stage_layout.hpp"

namespace tamo::scenario {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

const std::string programs = TAMO_BINARY_DIR "/bin";

std::string freshDirectory() {
  std::string name = "/tmp/tamo-scenario-XXXXXX";
  if (::mkdtemp(name.data()) == nullptr) ADD_FAILURE() << "no directory for a stage";
  return name;
}

/// A program on the stage with the environment that a stage's programs have, and nothing else of ours.
pid_t spawn(const stage::StageRoot& root, const std::string& program,
            const std::vector<std::string>& arguments, const std::string& open, int output) {
  std::vector<std::string> words{program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<std::string> environment{"TAMO_STAGE=" + root.directory(), "TAMO_STAGE_OPEN=" + open,
                                       "PATH=/usr/bin:/bin"};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
  pid_t pid = 0;
  const int failure = ::posix_spawn(&pid, program.c_str(), &actions, nullptr,
                                    platform::vectorOf(words).data(), platform::vectorOf(environment).data());
  posix_spawn_file_actions_destroy(&actions);
  EXPECT_EQ(failure, 0) << program;
  return pid;
}

/// Longer than anything that a program of a stage waits for, which is a minute for the lock.
constexpr int longestRun = 90'000;

/// A child is known by its descriptor until it is reaped, so nobody else's end is taken for its.
int statusOf(pid_t pid) {
  const platform::Descriptor process(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
  pollfd ended{.fd = process.get(), .events = POLLIN, .revents = 0};
  const int found = platform::uninterrupted([&] { return ::poll(&ended, 1, longestRun); });
  if (found != 1) {
    ADD_FAILURE() << "process " << pid << " does not end";
    ::kill(pid, SIGKILL);
  }
  int status = 0;
  if (::waitpid(pid, &status, 0) != pid) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : WTERMSIG(status);
}

std::vector<std::string> columns(const std::string& line) {
  std::vector<std::string> found;
  std::istringstream rest(line);
  for (std::string column; std::getline(rest, column, '\t');)
    found.push_back(column);
  return found;
}

}  // namespace

Stage::Stage() : Stage(Options()) {}

Stage::Stage(const Options& options)
    : root_(stage::layStage({.directory = freshDirectory(), .programs = programs, .bare = true})) {
  stage::placeCopy(root_, programs, {.companion = options.companion});
  set("core", options.core);
  if (!options.registered) return;
  act("register");
  EXPECT_NE(corePid(), 0) << "the Core of a registered agent runs";
  std::ofstream(root_.control("log"), std::ios::trunc).flush();
}

Stage::~Stage() {
  stage::strikeStage(root_.directory());
}

std::string Stage::target() const {
  return "gui/" + std::to_string(root_.userID()) + "/" + label;
}

Started Stage::start(const std::vector<std::string>& arguments, const std::string& copy,
                     const std::string& open) const {
  const auto program = root_.host(stage::companionProgram(stage::copyPath(root_, copy)));
  const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  const auto at = steady_clock::now();
  const pid_t pid = spawn(root_, program, arguments, open, null);
  ::close(null);
  return {pid, at};
}

Started Stage::startWith(int output, const std::vector<std::string>& arguments,
                         const std::string& copy) const {
  const auto program = root_.host(stage::companionProgram(stage::copyPath(root_, copy)));
  const auto at = steady_clock::now();
  return {spawn(root_, program, arguments, "", output), at};
}

Ended Stage::finish(const Started& companion) {
  const int status = statusOf(companion.pid);
  const auto after = std::chrono::duration_cast<milliseconds>(steady_clock::now() - companion.at);
  return {companion.pid, status, after};
}

void Stage::send(const Started& companion, const std::string& urls) const {
  const auto path = root_.control("companions/" + std::to_string(companion.pid) + ".sock");
  for (int attempt = 0; attempt < 200; ++attempt) {
    if (const auto connection = stage::connectedTo(path)) {
      EXPECT_EQ(::write(connection.get(), urls.data(), urls.size()), static_cast<ssize_t>(urls.size()));
      return;
    }
    std::this_thread::sleep_for(milliseconds(1));
  }
  ADD_FAILURE() << "the companion took no URL";
}

std::string Stage::launchctl(const std::vector<std::string>& arguments) const {
  const auto output = root_.control("launchctl-output-of-a-test");
  const int file = ::open(output.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  statusOf(spawn(root_, root_.host("/bin/launchctl"), arguments, "", file));
  ::close(file);
  return platform::posix::readWhole(output).value_or("");
}

pid_t Stage::corePidNow() const {
  // By the line alone, so that no test sees its Core with the eyes of what it tests.
  constexpr std::string_view line = "\n\tpid = ";
  const auto print = launchctl({"print", target()});
  const auto found = print.find(line);
  return found == std::string::npos ? 0 : std::atoi(print.c_str() + found + line.size());
}

pid_t Stage::corePid() const {
  for (int attempt = 0; attempt < 100; ++attempt) {
    if (const auto pid = corePidNow(); pid != 0) return pid;
    std::this_thread::sleep_for(milliseconds(20));
  }
  return 0;
}

std::optional<std::string> Stage::file(const std::string& stagePath) const {
  const auto path = root_.existing(stagePath);
  return path ? platform::posix::readWhole(*path) : std::nullopt;
}

std::string Stage::dataDirectory() const {
  return root_.home() + "/Library/Application Support/Tamo/";
}

std::vector<std::string> Stage::lines() const {
  std::vector<std::string> found;
  std::ifstream log(root_.control("log"));
  for (std::string line; std::getline(log, line);) {
    const auto parts = columns(line);
    if (parts.size() == 7) found.push_back(parts[2] + " " + parts[6]);
  }
  return found;
}

bool eventually(const std::function<bool()>& isTrue) {
  const auto limit = steady_clock::now() + std::chrono::seconds(30);
  while (!isTrue()) {
    if (steady_clock::now() >= limit) return false;
    std::this_thread::sleep_for(milliseconds(5));
  }
  return true;
}

std::string hardStopLine(pid_t pid, const std::string& outcome) {
  return "default hardstop pid {public:" + std::to_string(pid) + "}: {public:" + outcome + "}";
}

bool runs(pid_t pid) {
  const auto info = stage::StageKernelProcesses().info(pid);
  return info && !info->zombie;
}

}  // namespace tamo::scenario
