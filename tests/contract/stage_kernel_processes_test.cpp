#include "platform/stage/stage_kernel_processes.hpp"

#include <ctime>
#include <gtest/gtest.h>
#include <set>
#include <thread>

#include "contract/child.hpp"

namespace tamo::stage {
namespace {

using contract::Child;

std::string statLine(const std::string& name, const std::string& state = "S") {
  return "17 (" + name + ") " + state +
         " 1 4242 17 0 -1 4194560 100 0 0 0 1 2 0 0 20 0 1 0 987654321 8192 64 18446744073709551615\n";
}

TEST(ProcStatTest, AnyNameIsReadOver) {
  for (const auto* name : {"sh", "", "a b", ")", ") Z 1 2", "(((", "x) R 1 2 3", "new\nline"}) {
    const auto stat = procStat(statLine(name));
    ASSERT_TRUE(stat) << name;
    EXPECT_EQ(stat->state, 'S') << name;
    EXPECT_EQ(stat->group, 4242) << name;
    EXPECT_EQ(stat->startTicks, 987654321U) << name;
  }
}

TEST(ProcStatTest, TheStateIsTheFirstFieldAfterTheName) {
  EXPECT_EQ(procStat(statLine("sh", "Z"))->state, 'Z');
  EXPECT_EQ(procStat(statLine("sh", "X"))->state, 'X');
}

TEST(ProcStatTest, OtherTextsGiveNothing) {
  const auto whole = statLine("sh");
  for (const auto& text :
       {std::string(), std::string("17 sh S 1"), std::string("17 (sh)"), std::string("17 (sh) S 1 x"),
        std::string("17 (sh) S 1 12x 17"), whole.substr(0, whole.find("987654321"))}) {
    EXPECT_FALSE(procStat(text)) << text;
  }
}

class StageKernelProcessesTest : public ::testing::Test {
 protected:
  StageKernelProcesses kernel;
};

TEST_F(StageKernelProcessesTest, AThreadIsNoProcess) {
  std::int32_t threadId = 0;
  std::optional<platform::ProcessInfo> seen;
  std::thread([&] {
    threadId = ::gettid();
    seen = kernel.info(threadId);
  }).join();
  EXPECT_NE(threadId, ::getpid());
  EXPECT_FALSE(seen);
}

TEST_F(StageKernelProcessesTest, TheStartCountsFromTheMachinesStart) {
  timespec now{};
  ::clock_gettime(CLOCK_BOOTTIME, &now);
  const Child child(contract::sleepUntilKilled);
  const auto seen = kernel.info(child.pid());
  ASSERT_TRUE(seen);
  EXPECT_GE(seen->startSeconds + 1, static_cast<std::uint64_t>(now.tv_sec));
  EXPECT_LE(seen->startSeconds, static_cast<std::uint64_t>(now.tv_sec) + 60);
}

TEST_F(StageKernelProcessesTest, ProcessesOfOneTickDiffer) {
  std::set<std::pair<std::uint64_t, std::uint64_t>> starts;
  constexpr int count = 20;
  for (int number = 0; number < count; ++number) {
    const Child child([] {});
    const auto seen = kernel.info(child.pid());
    ASSERT_TRUE(seen);
    starts.emplace(seen->startSeconds, seen->startMicroseconds);
  }
  EXPECT_EQ(starts.size(), count);
}

TEST_F(StageKernelProcessesTest, AReusedPidHasAnotherStart) {
  Child first([] {});
  const auto pid = first.pid();
  const auto before = kernel.info(pid);
  first.reap();
  const auto second = contract::childWithPid(pid);
  if (second == nullptr) GTEST_SKIP() << "the pid could not be had again";
  const auto after = kernel.info(pid);
  ASSERT_TRUE(before && after);
  EXPECT_NE(std::pair(before->startSeconds, before->startMicroseconds),
            std::pair(after->startSeconds, after->startMicroseconds));
}

}  // namespace
}  // namespace tamo::stage
