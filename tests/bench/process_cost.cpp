#include "process_cost.hpp"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <thread>
#include <time.h>
#include <unistd.h>

#include "platform/posix/argument_vector.hpp"

namespace tamo::bench {
namespace {

/// A figure of a program that did not do its work would be none.
[[noreturn]] void giveUp(const std::string& why) {
  std::fprintf(stderr, "%s\n", why.c_str());
  std::exit(1);
}

/// Without a copy of this process's memory in between, whose making would count as the program's.
pid_t started(std::vector<std::string> words) {
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  ::posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
  pid_t pid = -1;
  const int failure = ::posix_spawn(&pid, words.front().c_str(), &actions, nullptr,
                                    platform::vectorOf(words).data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) giveUp(words.front() + " does not start");
  return pid;
}

/// The CPU time of a process that has ended but is not yet reaped: its own, without that of its children.
double ownCpuMilliseconds(pid_t pid) {
  clockid_t clock{};
  timespec spent{};
  if (::clock_getcpuclockid(pid, &clock) != 0 || ::clock_gettime(clock, &spent) != 0)
    giveUp("the CPU time of an ended process cannot be had");
  return static_cast<double>(spent.tv_sec) * 1e3 + static_cast<double>(spent.tv_nsec) / 1e6;
}

double peakMegabytes(pid_t pid) {
  std::ifstream status("/proc/" + std::to_string(pid) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return std::strtod(line.c_str() + 6, nullptr) / 1024;
  }
  giveUp("the peak of a process cannot be had");
}

}  // namespace

Cost costOf(const std::vector<std::string>& words) {
  const auto begun = std::chrono::steady_clock::now();
  const pid_t pid = started(words);
  siginfo_t ended{};
  ::waitid(P_PID, static_cast<id_t>(pid), &ended, WEXITED | WNOWAIT);
  const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - begun;
  const double cpu = ownCpuMilliseconds(pid);
  int status = 0;
  ::waitpid(pid, &status, 0);
  if (status != 0) giveUp(words.front() + " ended with " + std::to_string(status));
  return {.cpuMilliseconds = cpu, .wallMilliseconds = wall.count()};
}

/// The program is asked for when it sleeps already: every one of them begins with a sleep of 0.4 s.
double peakMegabytesOf(const std::vector<std::string>& words) {
  const pid_t pid = started(words);
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  if (::ptrace(PTRACE_SEIZE, pid, nullptr, PTRACE_O_TRACEEXIT) != 0) giveUp("no process may be held");
  double peak = 0;
  int status = 0;
  while (::waitpid(pid, &status, 0) == pid && WIFSTOPPED(status)) {
    const bool ends = status >> 8 == (SIGTRAP | (PTRACE_EVENT_EXIT << 8));
    if (ends) peak = peakMegabytes(pid);
    // A signal that came meanwhile is handed on; an ending has none.
    const long signal = status >> 16 != 0 ? 0 : WSTOPSIG(status);
    ::ptrace(PTRACE_CONT, pid, nullptr, signal);
  }
  if (peak <= 0 || status != 0) giveUp(words.front() + " could not be held at its end");
  return peak;
}

double median(std::vector<double> values) {
  std::ranges::sort(values);
  const auto half = values.size() / 2;
  return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2;
}

}  // namespace tamo::bench
