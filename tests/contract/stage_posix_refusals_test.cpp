#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include "contract/refused_call.hpp"
#include "contract/temporary_stage.hpp"
#include "platform/posix/byte_stream.hpp"
#include "platform/posix/descriptor.hpp"
#include "platform/posix/posix_clock.hpp"
#include "platform/posix/posix_files.hpp"
#include "platform/posix/posix_local_sockets.hpp"
#include "platform/posix/posix_processes.hpp"
#include "platform/posix/posix_threads.hpp"
#include "platform/posix/posix_user.hpp"

/// What the POSIX pieces make of a kernel that says no: an absent answer, and nothing left half done.
namespace tamo::platform {
namespace {

using contract::hostBytes;
using contract::Refused;
using contract::refused;

class PosixRefusalsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (refused({SYS_getppid, EPERM}, [] { return ::getppid() == -1; }) != Refused::True)
      GTEST_SKIP() << "this host has no filters for system calls";
  }
  [[nodiscard]] std::string path(const std::string& name) const { return folder.root().host("/" + name); }

  contract::TemporaryStage folder;
};

TEST(UninterruptedTest, ACallThatASignalInterruptsIsMadeAgain) {
  int calls = 0;
  const auto result = uninterrupted([&calls] {
    errno = EINTR;
    return ++calls < 3 ? -1 : 7;
  });
  EXPECT_EQ(result, 7);
  EXPECT_EQ(calls, 3);
}

TEST(UninterruptedTest, AnyOtherFailureIsTheAnswer) {
  int calls = 0;
  const auto result = uninterrupted([&calls] {
    errno = EIO;
    return ++calls < 3 ? -1 : 7;
  });
  EXPECT_EQ(result, -1);
  EXPECT_EQ(calls, 1);
}

TEST_F(PosixRefusalsTest, WhatCannotBeWrittenIsSaid) {
  const Descriptor readOnly(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  EXPECT_FALSE(writeAll(readOnly.get(), "text"));
  EXPECT_TRUE(writeAll(readOnly.get(), ""));
}

TEST_F(PosixRefusalsTest, AFileThatCannotBeReplacedWholeIsKeptAsItWas) {
  folder.file("/kept", "old");
  for (const auto call : {SYS_openat, SYS_write, SYS_fchmod, SYS_fsync}) {
    const auto written = [this] { return posix::writeAtomically(path("kept"), "new"); };
    EXPECT_EQ(refused({static_cast<int>(call), EACCES}, written), Refused::False) << call;
    EXPECT_EQ(hostBytes(path("kept")), "old") << call;
  }
  for (const auto& item : std::filesystem::directory_iterator(folder.root().directory()))
    EXPECT_FALSE(item.path().filename().string().starts_with(".tamo-write")) << item.path();
}

TEST_F(PosixRefusalsTest, TheLeftOverOfAnEarlierWriteIsPassedOver) {
  for (int number = 0; number < 400; ++number)
    folder.file("/.tamo-write." + std::to_string(::getpid()) + "." + std::to_string(number), "left over");
  EXPECT_TRUE(posix::writeAtomically(path("file"), "new"));
  EXPECT_EQ(hostBytes(path("file")), "new");
}

TEST_F(PosixRefusalsTest, ADirectoryBelowAnotherThatCannotBeMadeIsNotMadeEither) {
  const auto made = [this] { return posix::createDirectories(path("a/b")); };
  EXPECT_EQ(refused({contract::makingDirectories, ENOENT}, made), Refused::False);
  EXPECT_FALSE(posix::createDirectories(path("a/" + std::string(300, 'n'))));
  EXPECT_TRUE(posix::exists(path("a")));
}

TEST_F(PosixRefusalsTest, WithoutASocketNothingAccepts) {
  const auto accepts = [this] { return PosixLocalSockets().accepts(path("none.sock")); };
  EXPECT_EQ(refused({SYS_socket, EMFILE}, accepts), Refused::False);
  EXPECT_FALSE(PosixLocalSockets().accepts("/" + std::string(200, 's')));
}

TEST_F(PosixRefusalsTest, AUserDatabaseThatCannotBeReadHasNoEntry) {
  const auto found = [] { return PosixUser().passwordEntry().has_value(); };
  EXPECT_EQ(refused({SYS_openat, EIO}, found), Refused::False);
}

/// The kernel's answer to the one question is made to differ from that to the other: where tests run, the
/// real and the effective user are one.
TEST_F(PosixRefusalsTest, TheUserIsTheRealOneNotTheEffective) {
  const auto real = ::getuid();
  const auto* known = ::getpwuid(real);
  const auto isReal = [real, home = known == nullptr ? std::string() : std::string(known->pw_dir)] {
    const auto entry = PosixUser().passwordEntry();
    return PosixUser().realUserID() == real && entry.value_or(PasswordEntry{.home = ""}).home == home;
  };
  EXPECT_EQ(refused({SYS_geteuid, 7}, isReal), Refused::True);
  EXPECT_EQ(refused({SYS_getuid, 7}, isReal), Refused::False);
}

TEST_F(PosixRefusalsTest, ASleepThatTheKernelRefusesIsNotTriedForEver) {
  const auto sleep = [] {
    PosixClock().sleep(std::chrono::hours(1));
    return true;
  };
  EXPECT_EQ(refused({SYS_clock_nanosleep, EPERM}, sleep), Refused::True);
}

bool runsTool(PosixProcesses& processes, bool capturesErrors) {
  const auto tool = processes.start({.path = "/bin/true", .arguments = {}, .capturesErrors = capturesErrors});
  return tool != nullptr && tool->wait() == 0;
}

/// Whether a tool starts in a process that may have so many descriptors.
bool startsWith(rlim_t descriptors, bool capturesErrors) {
  constexpr int startedStatus = 42;
  contract::Child child([&] {
    PosixProcesses processes;
    // Once without the limit: when a sanitizer meets a class for the first time, its check takes descriptors.
    if (!runsTool(processes, capturesErrors)) ::_exit(1);
    const rlimit limit{.rlim_cur = descriptors, .rlim_max = descriptors};
    ::setrlimit(RLIMIT_NOFILE, &limit);
    ::_exit(runsTool(processes, capturesErrors) ? startedStatus : 0);
  });
  const int status = child.reap();
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) != 1) << descriptors;
  return WEXITSTATUS(status) == startedStatus;
}

TEST(PosixDescriptorsTest, AToolStartsWithEnoughDescriptorsAndIsAbsentWithFewer) {
  for (const bool capturesErrors : {false, true}) {
    bool started = false;
    for (rlim_t descriptors = 0; descriptors < 64; ++descriptors) {
      const bool starts = startsWith(descriptors, capturesErrors);
      EXPECT_TRUE(starts || !started) << "no longer with " << descriptors;
      EXPECT_FALSE(starts && descriptors < 3) << "with " << descriptors;
      started = starts;
    }
    EXPECT_TRUE(started);
  }
}

/// A tool that has exited, whose status somebody else has taken.
std::unique_ptr<Tool> reapedTool(PosixProcesses& processes) {
  auto tool = processes.start({.path = "/bin/true", .arguments = {}});
  EXPECT_NE(tool, nullptr);
  EXPECT_GT(::waitpid(-1, nullptr, 0), 0);
  return tool;
}

TEST(PosixReapedTest, AToolThatSomebodyElseReapedHasEndedWithoutAStatus) {
  PosixProcesses processes;
  EXPECT_FALSE(reapedTool(processes)->running());
  const auto tool = reapedTool(processes);
  EXPECT_EQ(tool->wait(), -1);
  EXPECT_EQ(tool->wait(), -1);
  EXPECT_FALSE(tool->running());
}

TEST(PosixReapedTest, AToolWithoutAStatusHoldsNothingUp) {
  PosixProcesses processes;
  static_cast<void>(reapedTool(processes)->running());
  const auto next = processes.start({.path = "/bin/sh", .arguments = {"-c", "exit 5"}});
  ASSERT_NE(next, nullptr);
  EXPECT_EQ(next->wait(), 5);
}

TEST_F(PosixRefusalsTest, AToolThatCannotBeWaitedForHasNoStatus) {
  PosixProcesses processes;
  const auto status = [&processes] {
    const auto tool = processes.start({.path = "/bin/true", .arguments = {}});
    return tool != nullptr && tool->wait() == -1;
  };
  EXPECT_EQ(refused({SYS_wait4, ECHILD}, status), Refused::True);
}

TEST_F(PosixRefusalsTest, WithoutAThreadTheWorkIsNotRun) {
  const auto detaches = [] {
    PosixThreads threads;
    return threads.detach([] { ::_exit(1); });
  };
  EXPECT_EQ(refused({SYS_clone3, EAGAIN}, detaches), Refused::False);
}

}  // namespace
}  // namespace tamo::platform
