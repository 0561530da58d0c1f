#include "soak/witness.hpp"

#include <array>
#include <csignal>
#include <cstddef>
#include <fcntl.h>
#include <fstream>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/posix/argument_vector.hpp"
#include "values/fatal.hpp"

namespace tamo::soak {
namespace {

using std::chrono::milliseconds;

/// The listener has this number in the child, which is where the parent fetches it from.
constexpr int listenerNumber = 100;

sock_filter held(int call, unsigned char distance) {
  return BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), distance, 0);
}

int listenToSignals() {
  sock_filter filter[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      held(SYS_kill, 5),
      held(SYS_tkill, 4),
      held(SYS_tgkill, 3),
      held(SYS_pidfd_send_signal, 2),
      held(SYS_rt_sigqueueinfo, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF),
  };
  const sock_fprog program{.len = std::size(filter), .filter = filter};
  return static_cast<int>(
      ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &program));
}

/// `ready` tells that the listener is there; `go` that it was fetched.
[[noreturn]] void become(const Witness::Program& program, int ready, int go) {
  ::setpgid(0, program.group);
  ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
  const int listener = listenToSignals();
  if (listener < 0 || ::dup3(listener, listenerNumber, O_CLOEXEC) < 0) ::_exit(126);
  ::close(listener);
  char byte = 0;
  static_cast<void>(!::write(ready, "x", 1));
  static_cast<void>(!::read(go, &byte, 1));
  const int null = ::open("/dev/null", O_RDWR);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    ::dup2(null, stream);
  ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
  std::vector<std::string> words{program.path};
  words.insert(words.end(), program.arguments.begin(), program.arguments.end());
  auto environment = program.environment;
  if (::chdir("/") == 0)
    ::execve(program.path.c_str(), platform::vectorOf(words).data(), platform::vectorOf(environment).data());
  ::_exit(127);
}

/// The kernel names the thread that sends.
pid_t processOf(pid_t thread) {
  std::ifstream status("/proc/" + std::to_string(thread) + "/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with("Tgid:")) return static_cast<pid_t>(std::stol(line.substr(5)));
  return thread;
}

/// The calls differ in where they keep the pid and the signal.
Sent sentBy(const seccomp_notif& notice) {
  const auto argument = [&notice](int index) { return static_cast<int>(notice.data.args[index]); };
  Sent sent{.by = processOf(static_cast<pid_t>(notice.pid)), .target = argument(0), .signal = argument(1)};
  if (notice.data.nr == SYS_tgkill) sent.signal = argument(2);
  if (notice.data.nr == SYS_pidfd_send_signal) sent.target = 0;
  return sent;
}

}  // namespace

Witness::Witness(Program program) : program_(std::move(program)) {
  std::array<int, 2> ready{};
  std::array<int, 2> go{};
  if (::pipe2(ready.data(), O_CLOEXEC) != 0 || ::pipe2(go.data(), O_CLOEXEC) != 0)
    values::fatal("a witness needs pipes");
  const platform::Descriptor readyReading(ready[0]);
  platform::Descriptor readyWriting(ready[1]);
  platform::Descriptor goReading(go[0]);
  const platform::Descriptor goWriting(go[1]);
  begun_ = Clock::now();
  pid_ = ::fork();
  if (pid_ == 0) become(program_, ready[1], go[0]);
  ::setpgid(pid_, program_.group);
  readyWriting.close();
  char byte = 0;
  const auto got = platform::uninterrupted([&] { return ::read(readyReading.get(), &byte, 1); });
  process_ = platform::Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid_, 0)));
  listener_ =
      platform::Descriptor(static_cast<int>(::syscall(SYS_pidfd_getfd, process_.get(), listenerNumber, 0)));
  if (got != 1 || !listener_) values::fatal("the kernel gives no listener");
  static_cast<void>(!::write(goWriting.get(), "x", 1));
}

Witness::~Witness() {
  if (pid_ <= 0) return;
  ::kill(pid_, SIGKILL);
  platform::uninterrupted([this] { return ::waitpid(pid_, nullptr, 0); });
}

bool Witness::serveUntil(Clock::time_point time) {
  for (;;) {
    const auto left = std::chrono::ceil<milliseconds>(time - Clock::now()).count();
    std::array<pollfd, 2> polled = {{{.fd = process_.get(), .events = POLLIN, .revents = 0},
                                     {.fd = listener_.get(), .events = POLLIN, .revents = 0}}};
    const int found = ::poll(polled.data(), polled.size(), left > 0 ? static_cast<int>(left) : 0);
    if (found > 0 && (polled[1].revents & POLLIN) != 0) {
      look();
    } else if (found > 0 && polled[0].revents != 0) {
      return true;
    } else if (left <= 0) {
      return false;
    }
  }
}

void Witness::look() {
  seccomp_notif notice{};
  // A sender that was killed in the meantime has sent nothing.
  if (::ioctl(listener_.get(), SECCOMP_IOCTL_NOTIF_RECV, &notice) != 0) return;
  sent_.push_back(sentBy(notice));
  if (program_.atSending) program_.atSending(sent_.back());
  seccomp_notif_resp answer{};
  answer.id = notice.id;
  answer.flags = SECCOMP_USER_NOTIF_FLAG_CONTINUE;
  static_cast<void>(::ioctl(listener_.get(), SECCOMP_IOCTL_NOTIF_SEND, &answer));
}

std::optional<Witness::Ended> Witness::finish(milliseconds bound) {
  const bool inTime = serveUntil(begun_ + bound);
  if (!inTime) ::kill(pid_, SIGKILL);
  int status = 0;
  rusage used{};
  platform::uninterrupted([&] { return ::wait4(pid_, &status, 0, &used); });
  pid_ = 0;
  if (!inTime) return std::nullopt;
  return Ended{.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
               .after = std::chrono::duration_cast<milliseconds>(Clock::now() - begun_),
               .kilobytes = used.ru_maxrss};
}

}  // namespace tamo::soak
