#include "soak/clock_hand.hpp"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include "soak/chance.hpp"
#include "values/fatal.hpp"

namespace tamo::soak {

using std::chrono::nanoseconds;
using std::chrono::seconds;

struct ClockHand::Count {
  std::atomic<std::int64_t> settings = 0;
};

namespace {

nanoseconds now(clockid_t clock) {
  timespec time{};
  ::clock_gettime(clock, &time);
  return seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

bool setAhead(nanoseconds ahead) {
  const auto wall = now(CLOCK_BOOTTIME) + ahead;
  const auto whole = std::chrono::floor<seconds>(wall);
  const timespec time{.tv_sec = whole.count(), .tv_nsec = (wall - whole).count()};
  return ::clock_settime(CLOCK_REALTIME, &time) == 0;
}

/// Whether the maker has ended before the time is over.
bool ends(int life, std::chrono::milliseconds within) {
  pollfd polled{.fd = life, .events = POLLIN, .revents = 0};
  return ::poll(&polled, 1, static_cast<int>(within.count())) > 0;
}

}  // namespace

nanoseconds wallClockAhead() {
  return now(CLOCK_REALTIME) - now(CLOCK_BOOTTIME);
}

void ClockHand::turn(int life, std::uint64_t seed, Count& count) {
  ::setsid();
  // Whoever kills the soak by its name spares the hand.
  ::prctl(PR_SET_NAME, "clock-hand");
  sigset_t all;
  ::sigfillset(&all);
  ::sigprocmask(SIG_BLOCK, &all, nullptr);
  const auto right = wallClockAhead();
  Chance chance(seed);
  while (!ends(life, chance.milliseconds(20, 400)))
    if (setAhead(right + chance.milliseconds(-300'000, 300'000))) ++count.settings;
  ::_exit(setAhead(right) ? 0 : 1);
}

std::optional<ClockHand> ClockHand::start(std::uint64_t seed) {
  if (!setAhead(wallClockAhead())) return std::nullopt;
  std::array<int, 2> ends{};
  void* page = ::mmap(nullptr, sizeof(Count), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (page == MAP_FAILED || ::pipe2(ends.data(), O_CLOEXEC) != 0)
    values::fatal("there is no memory or no pipe for the clock's hand");
  platform::Descriptor ended(ends[0]);
  platform::Descriptor life(ends[1]);
  auto* count = ::new (page) Count;
  const auto pid = ::fork();
  if (pid < 0) values::fatal("there is no process for the clock's hand");
  if (pid == 0) {
    life.close();
    turn(ended.get(), seed, *count);
  }
  return ClockHand(pid, std::move(life), count);
}

ClockHand::ClockHand(pid_t pid, platform::Descriptor&& life, Count* count)
    : pid_(pid), life_(std::move(life)), count_(count) {}

ClockHand::ClockHand(ClockHand&& other) noexcept
    : pid_(std::exchange(other.pid_, 0)), life_(std::move(other.life_)), count_(other.count_) {}

ClockHand::~ClockHand() {
  if (pid_ == 0) return;
  life_.close();
  int status = 0;
  platform::uninterrupted([&] { return ::waitpid(pid_, &status, 0); });
  if (status != 0) std::fprintf(stderr, "the machine's clock could not be put right\n");
  ::munmap(count_, sizeof(Count));
}

std::int64_t ClockHand::settings() const {
  return count_->settings;
}

}  // namespace tamo::soak
