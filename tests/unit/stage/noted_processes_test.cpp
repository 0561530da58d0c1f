#include "platform/stage/noted_processes.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/fake_kernel_processes.hpp"
#include "fakes/fake_lock_files.hpp"
#include "fakes/fake_threads.hpp"
#include "noting_test.hpp"

/// What a companion asks for is done as before, and noted.
namespace tamo::stage {
namespace {

using ::testing::ElementsAre;

class NotedProcessesTest : public NotingTest {};

TEST_F(NotedProcessesTest, ALookTellsWhetherThereIsAProcessAndWhetherItIsDead) {
  fakes::FakeKernelProcesses kernel(ledger, clock);
  kernel.processes[5] = {.startSeconds = 1, .group = 5};
  kernel.processes[6] = {.startSeconds = 1, .group = 6, .zombie = true};
  const NotedKernelProcesses noting(kernel, journal);
  EXPECT_EQ(noting.info(5)->group, 5);
  EXPECT_TRUE(noting.info(6)->zombie);
  EXPECT_FALSE(noting.info(7).has_value());
  EXPECT_THAT(noted(), ElementsAre("looks 5 alive", "looks 6 dead", "looks 7 none"));
}

TEST_F(NotedProcessesTest, ASignalIsNotedBeforeItIsSentWithItsTarget) {
  fakes::FakeKernelProcesses kernel(ledger, clock);
  std::vector<std::string> before;
  kernel.onKill = [&](std::int32_t) { before = noted(); };
  NotedKernelProcesses noting(kernel, journal);
  noting.kill(5);
  noting.killGroup(6);
  EXPECT_THAT(before, ElementsAre("signals 9 process 5"));
  EXPECT_THAT(noted(), ElementsAre("signals 9 process 5", "signals 9 group 6"));
  EXPECT_THAT(ledger.texts(), ElementsAre("kernel: kill 5", "kernel: kill group 6"));
}

TEST_F(NotedProcessesTest, ALockIsNotedWhenItIsTriedAndLetGo) {
  fakes::FakeLockFiles locks(ledger, clock);
  NotedLockFiles noting(locks, journal);
  locks.heldUntil = std::chrono::hours(1);
  EXPECT_FALSE(noting.tryLock(noting.open("/lock")));
  locks.heldUntil = std::chrono::hours(0);
  EXPECT_TRUE(noting.tryLock(7));
  noting.unlock(7);
  noting.close(7);
  EXPECT_THAT(noted(), ElementsAre("lock busy", "lock gained", "unlocks"));
  EXPECT_THAT(ledger.texts(),
              ElementsAre("lock: open /lock", "lock: try", "lock: try", "lock: unlock 7", "lock: close 7"));
}

TEST_F(NotedProcessesTest, AThreadsWorkIsNotedAtItsBeginAndItsEnd) {
  fakes::FakeThreads threads(ledger, clock);
  std::vector<std::string> meanwhile;
  EXPECT_TRUE(NotedThreads(threads, journal).detach([&] { meanwhile = noted(); }));
  EXPECT_THAT(noted(), ElementsAre());
  threads.runAll();
  EXPECT_THAT(meanwhile, ElementsAre("watches"));
  EXPECT_THAT(noted(), ElementsAre("watches", "watched"));
  threads.available = false;
  EXPECT_FALSE(NotedThreads(threads, journal).detach([] {}));
}

}  // namespace
}  // namespace tamo::stage
