#include "process_cost.hpp"

#include <chrono>
#include <cstdio>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

namespace tamo::bench {
namespace {

/// The CPU time of a process that has ended but is not yet reaped: its own, without that of its children.
double ownCpuMilliseconds(pid_t pid) {
  clockid_t clock{};
  timespec spent{};
  if (::clock_getcpuclockid(pid, &clock) != 0 || ::clock_gettime(clock, &spent) != 0) return -1;
  return static_cast<double>(spent.tv_sec) * 1e3 + static_cast<double>(spent.tv_nsec) / 1e6;
}

}  // namespace

Cost costOf(const std::function<void()>& work) {
  const auto started = std::chrono::steady_clock::now();
  const pid_t pid = ::fork();
  if (pid == 0) {
    work();
    ::_exit(0);
  }
  siginfo_t ended{};
  ::waitid(P_PID, static_cast<id_t>(pid), &ended, WEXITED | WNOWAIT);
  const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - started;
  const double cpu = ownCpuMilliseconds(pid);
  rusage usage{};
  int status = 0;
  ::wait4(pid, &status, 0, &usage);
  if (status != 0) std::fprintf(stderr, "a measured process ended with %d\n", status);
  return {cpu, wall.count(), static_cast<double>(usage.ru_maxrss) / 1024};
}

}  // namespace tamo::bench
