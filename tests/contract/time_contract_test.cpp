#include <csignal>
#include <future>
#include <sys/time.h>
#include <thread>

#include "contract/backend.hpp"

namespace tamo::contract {
namespace {

using namespace std::chrono_literals;

class ClockContract : public Contract {
 protected:
  [[nodiscard]] std::chrono::nanoseconds timeFor(std::chrono::nanoseconds sleep) {
    const auto start = clock.monotonicNow();
    clock.sleep(sleep);
    return clock.monotonicNow() - start;
  }

  platform::Clock& clock = platform.clock;
};

TEST_P(ClockContract, TheMonotonicClockNeverGoesBack) {
  auto before = clock.monotonicNow();
  for (int look = 0; look < 1000; ++look) {
    const auto now = clock.monotonicNow();
    EXPECT_GE(now, before);
    before = now;
  }
}

TEST_P(ClockContract, ASleepLastsAtLeastItsTime) {
  const auto slept = timeFor(20ms);
  EXPECT_GE(slept, 20ms);
  EXPECT_LT(slept, 5s);
}

TEST_P(ClockContract, NothingIsSleptForNoTime) {
  EXPECT_LT(timeFor(0ns), 1s);
  EXPECT_LT(timeFor(-24h), 1s);
}

volatile std::sig_atomic_t alarms = 0;

TEST_P(ClockContract, ASignalDoesNotShortenASleep) {
  alarms = 0;
  struct sigaction counting{};
  struct sigaction before{};
  counting.sa_handler = [](int) { alarms = alarms + 1; };
  ::sigaction(SIGALRM, &counting, &before);
  const itimerval every5ms{.it_interval = {0, 5000}, .it_value = {0, 5000}};
  ::setitimer(ITIMER_REAL, &every5ms, nullptr);
  const auto slept = timeFor(30ms);
  const itimerval never{};
  ::setitimer(ITIMER_REAL, &never, nullptr);
  ::sigaction(SIGALRM, &before, nullptr);
  EXPECT_GE(slept, 30ms);
  EXPECT_GT(alarms, 0);
}

/// Not std::time: on Linux it reads a clock that lags by up to a tick of the kernel.
TEST_P(ClockContract, TheWallClockIsTheHosts) {
  const auto before = std::chrono::system_clock::now();
  const auto wall = clock.wallNow();
  EXPECT_GE(wall, before);
  EXPECT_LE(wall, std::chrono::system_clock::now());
}

TAMO_CONTRACT(ClockContract);

class ThreadsContract : public Contract {};

TEST_P(ThreadsContract, WorkRunsOnAThreadOfItsOwn) {
  std::promise<std::thread::id> ran;
  ASSERT_TRUE(platform.threads.detach([&ran] { ran.set_value(std::this_thread::get_id()); }));
  EXPECT_NE(ran.get_future().get(), std::this_thread::get_id());
}

TEST_P(ThreadsContract, TheCallerDoesNotWaitForTheWork) {
  std::promise<void> allowed;
  std::promise<void> ran;
  ASSERT_TRUE(platform.threads.detach([&] {
    allowed.get_future().wait();
    ran.set_value();
  }));
  allowed.set_value();
  EXPECT_EQ(ran.get_future().wait_for(5s), std::future_status::ready);
}

TEST_P(ThreadsContract, SeveralRunAtOnce) {
  std::promise<void> first;
  std::promise<void> second;
  ASSERT_TRUE(platform.threads.detach([&] {
    first.get_future().wait();
    second.set_value();
  }));
  ASSERT_TRUE(platform.threads.detach([&] { first.set_value(); }));
  EXPECT_EQ(second.get_future().wait_for(5s), std::future_status::ready);
}

TAMO_CONTRACT(ThreadsContract);

}  // namespace
}  // namespace tamo::contract
