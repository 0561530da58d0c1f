#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "acceptance/bystander.hpp"
#include "acceptance/child.hpp"
#include "acceptance/identity.hpp"
#include "acceptance/lock_holder.hpp"
#include "acceptance/place.hpp"

namespace tamo::acceptance {
namespace {

Program shell(const std::string& script) {
  return {.words = {"/bin/sh", "-c", script}};
}

TEST(ChildTest, AProgramIsRunToItsEndWithBothOutputs) {
  const auto run = runProgram(shell("echo out; echo err >&2; exit 3"));
  EXPECT_EQ(run.status, 3);
  EXPECT_EQ(run.text, "out\nerr\n");
}

TEST(ChildTest, OneThatASignalEndsIsToldApart) {
  EXPECT_EQ(runProgram(shell("kill -9 $$")).status, 128 + SIGKILL);
}

TEST(ChildTest, OneThatDoesNotEndIsKilledWithAllThatItStarted) {
  const auto run = runProgram(shell("echo begun; sleep 60 & wait"), std::chrono::seconds(1));
  EXPECT_EQ(run.status, -1);
  EXPECT_EQ(run.text, "begun\n");
}

TEST(ChildTest, NoFileIsThereWhileAProgramRuns) {
  // In a directory of this test's own: others run programs as well.
  const auto own = ::testing::TempDir() + "outputs-" + std::to_string(::getpid());
  std::filesystem::create_directory(own);
  const auto before = std::filesystem::temp_directory_path();
  ::setenv("TMPDIR", own.c_str(), 1);
  const auto run = runProgram(shell("ls \"$TMPDIR\"; echo listed"));
  ::setenv("TMPDIR", before.c_str(), 1);
  std::filesystem::remove_all(own);
  EXPECT_EQ(run.text, "listed\n");
}

TEST(ChildTest, OneThatIsNotThereIsAFault) {
  EXPECT_THROW(startProgram({.words = {"/nowhere/program"}}), PlaceError);
}

TEST(ChildTest, TheEnvironmentIsTheGivenOne) {
  auto program = shell("echo \"$GIVEN-$HOME\"");
  program.environment = std::vector<std::string>{"GIVEN=yes"};
  EXPECT_EQ(runProgram(program).text, "yes-\n");
}

TEST(ChildTest, AnEndIsSeenOnce) {
  const auto pid = startProgram(shell("read nothing; exit 4"));
  auto end = endOf(pid);
  for (int look = 0; look < 500 && !end; ++look) {
    ::usleep(10'000);
    end = endOf(pid);
  }
  EXPECT_EQ(end, 4);
  EXPECT_EQ(endOf(pid), -1);
}

TEST(LockHolderTest, ItHoldsTheLockAloneAndLetsItGo) {
  const auto file = ::testing::TempDir() + "lock-" + std::to_string(::getpid());
  LockHolder holder(file);
  EXPECT_THROW(LockHolder{file}, PlaceError);
  holder.release();
  EXPECT_NO_THROW(LockHolder{file});
  ::unlink(file.c_str());
}

TEST(LockHolderTest, AFolderThatIsNotThereIsAFault) {
  EXPECT_THROW(LockHolder("/nowhere/lock"), PlaceError);
}

/// The pid of a bystander: the oldest child of this process, for the tool that looks is one as well.
pid_t oldestChild() {
  const auto run =
      runProgram(shell("ps -o pid= --ppid " + std::to_string(::getpid()) + " | sort -n | head -n 1"));
  return std::atoi(run.text.c_str());
}

TEST(BystanderTest, ASignalIsNotedAndNothingElse) {
  const Bystander bystander;
  EXPECT_EQ(bystander.signalled(), "");
  const auto pid = oldestChild();
  ASSERT_GT(pid, 1);
  ::kill(pid, SIGTERM);
  for (int look = 0; look < 500 && bystander.signalled().empty(); ++look)
    ::usleep(10'000);
  EXPECT_EQ(bystander.signalled(), "TERM\n");
}

TEST(BystanderTest, OneThatWasKilledIsGone) {
  const Bystander bystander;
  const auto pid = oldestChild();
  ASSERT_GT(pid, 1);
  ::kill(pid, SIGKILL);
  for (int look = 0; look < 500 && bystander.signalled().empty(); ++look)
    ::usleep(10'000);
  EXPECT_EQ(bystander.signalled(), "gone");
}

/// Somebody who starts a bystander and is cut off; gives the bystander's pid.
pid_t bystanderOfOneThatWasKilled() {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) return 0;
  const auto starter = ::fork();
  if (starter == 0) {
    const Bystander bystander;
    const auto pid = oldestChild();
    static_cast<void>(::write(ends[1], &pid, sizeof pid));
    ::raise(SIGKILL);
  }
  pid_t pid = 0;
  const auto count = ::read(ends[0], &pid, sizeof pid);
  ::waitpid(starter, nullptr, 0);
  ::close(ends[0]);
  ::close(ends[1]);
  return count == sizeof pid ? pid : 0;
}

TEST(BystanderTest, ItEndsWithWhoeverStartedIt) {
  const auto pid = bystanderOfOneThatWasKilled();
  ASSERT_GT(pid, 1);
  for (int look = 0; look < 500 && ::kill(pid, 0) == 0; ++look)
    ::usleep(10'000);
  EXPECT_NE(::kill(pid, 0), 0);
}

TEST(IdentityTest, WhoeverRunsThisHasANameAHomeAndAHost) {
  const auto identity = identityOfThisProcess();
  EXPECT_FALSE(identity.userName.empty());
  EXPECT_FALSE(identity.home.empty());
  ASSERT_EQ(identity.hostNames.size(), 1U);
}

}  // namespace
}  // namespace tamo::acceptance
