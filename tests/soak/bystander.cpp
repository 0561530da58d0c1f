#include "soak/bystander.hpp"

#include <atomic>
#include <csignal>
#include <linux/sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include "platform/posix/descriptor.hpp"
#include "values/fatal.hpp"

namespace tamo::soak {

struct Bystander::Notes {
  std::atomic<int> signals = 0;
  std::atomic<int> last = 0;
  std::atomic<int> sender = 0;
  std::atomic<bool> ready = false;
};

namespace {

/// A fork whose child gets the pid that is asked for, or none.
pid_t forkAs(std::optional<pid_t> pid) {
  clone_args arguments{};
  arguments.exit_signal = SIGCHLD;
  if (pid) {
    arguments.set_tid = reinterpret_cast<std::uint64_t>(&*pid);
    arguments.set_tid_size = 1;
  }
  return static_cast<pid_t>(::syscall(SYS_clone3, &arguments, sizeof arguments));
}

siginfo_t look(pid_t pid) {
  siginfo_t info{};
  ::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WSTOPPED | WNOHANG | WNOWAIT);
  return info;
}

}  // namespace

void Bystander::live(const Wish& wish, Notes& notes, pid_t parent) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(0);
  ::prctl(PR_SET_NAME, "tamo-core-agent");
  if (wish.group) ::setpgid(0, *wish.group);
  sigset_t all;
  ::sigfillset(&all);
  ::sigprocmask(SIG_BLOCK, &all, nullptr);
  notes.ready = true;
  for (;;) {
    siginfo_t info{};
    const int signal = ::sigwaitinfo(&all, &info);
    if (signal < 0) continue;
    notes.last = signal;
    notes.sender = info.si_pid;
    ++notes.signals;
  }
}

std::optional<Bystander> Bystander::start(const Wish& wish) {
  void* page = ::mmap(nullptr, sizeof(Notes), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (page == MAP_FAILED) values::fatal("there is no memory for a bystander");
  auto* notes = ::new (page) Notes;
  const auto parent = ::getpid();
  const auto pid = forkAs(wish.pid);
  if (pid == 0) live(wish, *notes, parent);
  if (pid < 0) {
    ::munmap(page, sizeof(Notes));
    return std::nullopt;
  }
  // Both sides name the group, so that it is settled whoever runs first.
  if (wish.group) ::setpgid(pid, *wish.group);
  Bystander made(pid, notes);
  while (!notes->ready && !made.over())
    ::usleep(100);
  return made;
}

Bystander::Bystander(Bystander&& other) noexcept
    : pid_(std::exchange(other.pid_, 0)), notes_(std::exchange(other.notes_, nullptr)) {}

Bystander::~Bystander() {
  if (pid_ > 0) {
    kill();
    reap();
  }
  if (notes_ != nullptr) ::munmap(notes_, sizeof(Notes));
}

std::string Bystander::harm() const {
  if (pid_ <= 0) return "was reaped";
  const auto info = look(pid_);
  const auto state = info.si_pid == 0 ? std::string() : " state " + std::to_string(info.si_status);
  if (info.si_code == CLD_STOPPED) return "was stopped," + state;
  if (info.si_pid != 0) return "was killed," + state;
  if (notes_->signals == 0) return "";
  return "got " + std::to_string(notes_->signals) + " signals, the last " + std::to_string(notes_->last) +
         " from " + std::to_string(notes_->sender);
}

void Bystander::kill() {
  if (pid_ > 0) ::kill(pid_, SIGKILL);
}

void Bystander::reap() {
  if (pid_ > 0) platform::uninterrupted([this] { return ::waitpid(pid_, nullptr, 0); });
  pid_ = 0;
}

bool Bystander::over() const {
  if (pid_ <= 0) return true;
  const auto info = look(pid_);
  return info.si_pid != 0 && info.si_code != CLD_STOPPED;
}

}  // namespace tamo::soak
