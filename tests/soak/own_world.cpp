#include "soak/own_world.hpp"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/posix/byte_stream.hpp"
#include "platform/posix/descriptor.hpp"

namespace tamo::soak {
namespace {

constexpr int skipped = 77;

bool writeLine(const char* path, const std::string& line) {
  const platform::Descriptor file(::open(path, O_WRONLY | O_CLOEXEC));
  return file && platform::writeAll(file.get(), line);
}

bool leaveTheMachine() {
  const auto user = std::to_string(::geteuid());
  const auto group = std::to_string(::getegid());
  if (::geteuid() == 0) return ::unshare(CLONE_NEWPID | CLONE_NEWNS) == 0;
  if (::unshare(CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNS) != 0) return false;
  return writeLine("/proc/self/setgroups", "deny") && writeLine("/proc/self/uid_map", "0 " + user + " 1\n") &&
         writeLine("/proc/self/gid_map", "0 " + group + " 1\n");
}

bool mountOwnProc() {
  return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         ::mount("proc", "/proc", "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC, nullptr) == 0;
}

int statusOf(int waited) {
  return WIFEXITED(waited) ? WEXITSTATUS(waited) : 128 + WTERMSIG(waited);
}

/// The namespace's first process has one duty: to reap what is orphaned.
int beFirst(const std::function<int()>& work) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (!mountOwnProc()) {
    std::fprintf(stderr, "no /proc of its own: %s\n", std::strerror(errno));
    return skipped;
  }
  const auto worker = ::fork();
  // A group from outside would have no number here.
  if (worker == 0) ::setpgid(0, 0);
  if (worker == 0) std::exit(work());
  for (;;) {
    int status = 0;
    if (const auto ended = ::waitpid(-1, &status, 0); ended == worker || (ended < 0 && errno == ECHILD))
      return statusOf(status);
  }
}

int ended(pid_t child) {
  int status = 0;
  platform::uninterrupted([&] { return ::waitpid(child, &status, 0); });
  return statusOf(status);
}

int leave(const std::function<int()>& work) {
  if (!leaveTheMachine()) {
    std::fprintf(stderr, "no pid namespace: %s\n", std::strerror(errno));
    return skipped;
  }
  const auto first = ::fork();
  if (first == 0) ::_exit(beFirst(work));
  return ended(first);
}

}  // namespace

/// In a child, because whoever has left can start nothing more once the namespace has ended.
int inOwnWorld(const std::function<int()>& work) {
  const auto child = ::fork();
  if (child == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::_exit(leave(work));
  }
  return ended(child);
}

}  // namespace tamo::soak
