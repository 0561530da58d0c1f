#include "platform/stage/onlooker.hpp"

#include <cerrno>
#include <climits>
#include <csignal>
#include <ctime>
#include <poll.h>
#include <pthread.h>
#include <unistd.h>

#include "platform/posix/descriptor.hpp"

namespace tamo::stage {
namespace {

/// Keeps the signal of a broken pipe from this thread, and takes away the one that came of it. One that was under
/// way before is left to whom it was meant for.
class NoBrokenPipe {
 public:
  NoBrokenPipe() {
    ::sigemptyset(&signal_);
    ::sigaddset(&signal_, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &signal_, &before_);
    // A signal can only have been under way before where it was kept back then, too.
    wasPending_ = ::sigismember(&before_, SIGPIPE) == 1 && isPending();
  }
  NoBrokenPipe(const NoBrokenPipe&) = delete;
  NoBrokenPipe& operator=(const NoBrokenPipe&) = delete;
  ~NoBrokenPipe() {
    constexpr timespec atOnce{};
    if (broken_ && !wasPending_) ::sigtimedwait(&signal_, nullptr, &atOnce);
    ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }

  /// The pipe turned out to be broken, so the signal has come.
  void isBroken() { broken_ = true; }

 private:
  static bool isPending() {
    sigset_t pending;
    ::sigpending(&pending);
    return ::sigismember(&pending, SIGPIPE) == 1;
  }

  sigset_t signal_{};
  sigset_t before_{};
  bool wasPending_ = false;
  bool broken_ = false;
};

/// Whoever reads along may stop reading; the companion must not wait for that.
bool takesMore(int descriptor) {
  pollfd polled{.fd = descriptor, .events = POLLOUT, .revents = 0};
  return ::poll(&polled, 1, 0) == 1 && (polled.revents & POLLOUT) != 0;
}

}  // namespace

void showTo(int descriptor, std::string_view text) {
  NoBrokenPipe kept;
  // A pipe that takes anything takes a portion of this size without blocking.
  while (!text.empty() && takesMore(descriptor)) {
    const auto portion = text.substr(0, PIPE_BUF);
    const auto size =
        platform::uninterrupted([&] { return ::write(descriptor, portion.data(), portion.size()); });
    if (size < 0 && errno == EPIPE) kept.isBroken();
    if (size < 0) return;
    text.remove_prefix(static_cast<std::size_t>(size));
  }
}

}  // namespace tamo::stage
