#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include "fakes/fake_platform.hpp"
#include "hardstop/hard_stopping.hpp"

/// The hard stop with its watcher on a real thread, for the thread sanitizer. The fakes are not made for two
/// threads; what both threads touch is played by the small classes here, and time is a counter.
namespace tamo {
namespace {

using namespace std::chrono_literals;
using platform::Task;

/// Threads that are joined after all, so that a test can wait for the watcher.
class JoinedThreads final : public platform::Threads {
 public:
  JoinedThreads() = default;
  JoinedThreads(const JoinedThreads&) = delete;
  JoinedThreads& operator=(const JoinedThreads&) = delete;
  ~JoinedThreads() override { join(); }

  [[nodiscard]] bool detach(std::function<void()> work) override {
    threads_.emplace_back(std::move(work));
    return true;
  }
  void join() {
    for (auto& thread : threads_)
      thread.join();
    threads_.clear();
  }

 private:
  std::vector<std::thread> threads_;
};

/// A Core, process 4242, that is alive for so many looks.
class CountedLooks final : public platform::KernelProcesses {
 public:
  explicit CountedLooks(int alive) : alive_(alive) {}

  [[nodiscard]] std::optional<platform::ProcessInfo> info(std::int32_t pid) const override {
    if (pid != 4242 || alive_.fetch_sub(1) <= 0) return std::nullopt;
    return platform::ProcessInfo{.startSeconds = 10, .startMicroseconds = 0, .group = 4242, .zombie = false};
  }
  [[nodiscard]] std::int32_t ownPid() const override { return 900; }
  [[nodiscard]] std::int32_t ownGroup() const override { return 900; }
  void kill(std::int32_t /*pid*/) override { ++kills; }
  void killGroup(std::int32_t /*group*/) override { ++kills; }

  std::atomic<int> kills = 0;

 private:
  mutable std::atomic<int> alive_;
};

/// Every sleep lets the other thread go on, and passes for a microsecond: a grace period is two million of
/// them at most, and no real time is waited for.
class YieldingClock final : public platform::Clock {
 public:
  [[nodiscard]] std::chrono::system_clock::time_point wallNow() const override { return {}; }
  [[nodiscard]] platform::Instant monotonicNow() const override { return now_.load(); }
  void sleep(std::chrono::nanoseconds /*duration*/) override {
    now_ = now_.load() + 1us;
    std::this_thread::yield();
  }

 private:
  std::atomic<std::chrono::nanoseconds> now_{0ns};
};

Task<std::int32_t> giving(std::int32_t status) {
  co_return status;
}

class HardStoppingThreadsTest : public ::testing::Test {
 protected:
  fakes::FakePlatform fake;
  YieldingClock clock;
  std::unique_ptr<platform::Logger> log = fake.logSystem.logger("subsystem", "lifecycle");
  JoinedThreads threads;
  std::optional<std::string> noted;
  std::thread::id resumedOn;

  /// A hard stop around an operation that gives `status`, with a status of 0 for asked.
  std::int32_t stopped(platform::KernelProcesses& processes, std::int32_t status) {
    HardStopping hardStops({
        .kernelProcesses = processes,
        .threads = threads,
        .files = fake.files,
        .bundles = fake.bundles,
        .clock = clock,
        .mainQueue = fake.mainQueue,
        .log = *log,
        .printedJob = [] { return "job = {\n\tpid = 4242\n}\n"; },
        .dataDirectory = [] { return "/data/"; },
    });
    const std::function<Task<std::int32_t>()> operation = [status] { return giving(status); };
    const std::function<bool(const std::int32_t&)> zero = [this](const std::int32_t& given) {
      resumedOn = std::this_thread::get_id();
      return given == 0;
    };
    auto task = hardStops.hardStopping<std::int32_t>(operation, zero);
    task.start();
    threads.join();
    EXPECT_FALSE(task.done());
    fake.mainQueue.runPosted();
    if (!task.done()) return -1;
    noted = hardStops.hardStop();
    return task.take();
  }
};

TEST_F(HardStoppingThreadsTest, AWatcherOnItsOwnThreadSeesTheCoreExit) {
  CountedLooks processes(1);
  EXPECT_EQ(stopped(processes, 0), 0);
  EXPECT_EQ(noted, "exited");
  EXPECT_EQ(resumedOn, std::this_thread::get_id());
  EXPECT_EQ(processes.kills, 0);
}

TEST_F(HardStoppingThreadsTest, AWatcherOnItsOwnThreadIsCalledOff) {
  CountedLooks processes(1'000'000'000);
  EXPECT_EQ(stopped(processes, 5), 5);
  EXPECT_EQ(noted, "cancelled stopFailed");
  EXPECT_EQ(processes.kills, 0);
}

}  // namespace
}  // namespace tamo
