#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "contract/child.hpp"
#include "contract/temporary_stage.hpp"
#include "platform/posix/byte_stream.hpp"
#include "platform/posix/descriptor.hpp"
#include "platform/posix/posix_files.hpp"
#include "platform/posix/posix_local_sockets.hpp"
#include "platform/posix/posix_processes.hpp"
#include "platform/posix/temporary_directory.hpp"

/// What the POSIX pieces promise beyond the interfaces, on this host's own paths.
namespace tamo::platform {
namespace {

namespace fs = std::filesystem;

class PosixTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string path(const std::string& name) const { return folder.root().host("/" + name); }

  contract::TemporaryStage folder;
};

TEST_F(PosixTest, ADescriptorHasOneOwner) {
  Descriptor first(::dup(1));
  const int number = first.get();
  Descriptor second(std::move(first));
  EXPECT_EQ(second.get(), number);
  second = Descriptor(::dup(1));
  EXPECT_NE(::fcntl(second.get(), F_GETFD), -1);
  const Descriptor released(second.release());
  EXPECT_FALSE(second);
  EXPECT_TRUE(released);
}

TEST_F(PosixTest, AReplacedDescriptorIsClosed) {
  Descriptor owner(::fcntl(1, F_DUPFD_CLOEXEC, 100));
  const int number = owner.get();
  owner = Descriptor();
  EXPECT_EQ(::fcntl(number, F_GETFD), -1);
}

TEST_F(PosixTest, ADescriptorMovedOntoItselfStaysOpen) {
  Descriptor owner(::fcntl(1, F_DUPFD_CLOEXEC, 100));
  const int number = owner.get();
  auto& same = owner;
  owner = std::move(same);
  EXPECT_EQ(owner.get(), number);
  EXPECT_NE(::fcntl(number, F_GETFD), -1);
}

TEST_F(PosixTest, DirectoriesAreMadeOnTheHost) {
  EXPECT_TRUE(posix::createDirectories(path("a/b/c/")));
  EXPECT_TRUE(fs::is_directory(path("a/b/c")));
  folder.file("/file", "");
  EXPECT_FALSE(posix::createDirectories(path("file/b")));
  EXPECT_FALSE(posix::createDirectories(""));
  EXPECT_TRUE(posix::createDirectories("/"));
}

TEST_F(PosixTest, ExistenceFollowsLinks) {
  folder.link("/dangling", "nowhere");
  EXPECT_TRUE(posix::exists(path("bin")));
  EXPECT_FALSE(posix::exists(path("dangling")));
}

TEST_F(PosixTest, WhatAPathLeadsToIsNamedWithoutLinks) {
  folder.folder("/real/deep");
  folder.file("/real/file", "");
  folder.link("/linked", "real");
  folder.link("/dangling", "nowhere");
  folder.link("/inside", "real/deep");
  const auto base = folder.root().directory();
  EXPECT_EQ(posix::withoutLinks(base + "/linked//file"), base + "/real/file");
  EXPECT_EQ(posix::withoutLinks(base + "/inside/../file"), base + "/real/file");
  EXPECT_EQ(posix::withoutLinks("/"), "/");
  for (const auto* name : {"/dangling", "/linked/missing", "/real/file/", "/real/file/.."})
    EXPECT_EQ(posix::withoutLinks(base + name), std::nullopt) << name;
}

TEST_F(PosixTest, WhatIsMissingIsNotWritable) {
  folder.folder("/own");
  folder.link("/linked", "own");
  EXPECT_TRUE(posix::isWritable(path("own")));
  EXPECT_TRUE(posix::isWritable(path("linked")));
  EXPECT_FALSE(posix::isWritable(path("missing")));
}

TEST_F(PosixTest, AConfiguredTextIsWholeOrAbsent) {
  EXPECT_EQ(posix::configuredText(_CS_PATH), "/bin:/usr/bin");
  EXPECT_EQ(posix::configuredText(_CS_LFS_CFLAGS), std::nullopt) << "an empty one";
  EXPECT_EQ(posix::configuredText(-1), std::nullopt) << "one that the host doesn't know";
}

/// What a process with this in its environment takes for the temporary directory.
std::string temporaryDirectoryWith(const char* environment) {
  const char* before = std::getenv("TMPDIR");
  const std::optional<std::string> kept =
      before == nullptr ? std::nullopt : std::optional<std::string>(before);
  environment == nullptr ? ::unsetenv("TMPDIR") : ::setenv("TMPDIR", environment, 1);
  const auto found = posix::temporaryDirectory();
  kept ? ::setenv("TMPDIR", kept->c_str(), 1) : ::unsetenv("TMPDIR");
  return found;
}

TEST_F(PosixTest, WithoutAnAnswerOfTheHostsTheEnvironmentNamesTheTemporaryDirectory) {
  EXPECT_EQ(temporaryDirectoryWith("/run/user/501"), "/run/user/501/");
  EXPECT_EQ(temporaryDirectoryWith("/run/user/501/"), "/run/user/501/");
}

TEST_F(PosixTest, WithoutAPlaceInTheEnvironmentTemporaryFilesGoWhereEverybodysDo) {
  for (const auto* none : {"", "below/the/working/directory"})
    EXPECT_EQ(temporaryDirectoryWith(none), "/tmp/") << none;
  EXPECT_EQ(temporaryDirectoryWith(nullptr), "/tmp/");
}

TEST_F(PosixTest, AnAddressHoldsWhatFitsTheHost) {
  constexpr auto most = sizeof(sockaddr_un::sun_path) - 1;
  EXPECT_TRUE(socketAddress(std::string(most, 's')));
  EXPECT_FALSE(socketAddress(std::string(most + 1, 's')));
}

TEST_F(PosixTest, AListenerOnTheHostAccepts) {
  const auto listener = localStreamSocket();
  const auto address = socketAddress(path("s"));
  ASSERT_TRUE(address);
  PosixLocalSockets sockets;
  EXPECT_FALSE(sockets.accepts(path("s")));
  ASSERT_EQ(::bind(listener.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address), 0);
  EXPECT_FALSE(sockets.accepts(path("s")));
  ASSERT_EQ(::listen(listener.get(), 1), 0);
  EXPECT_TRUE(sockets.accepts(path("s")));
}

TEST_F(PosixTest, AToolOfTheHostIsStarted) {
  PosixProcesses processes;
  const auto tool = processes.start({.path = "/bin/sh", .arguments = {"-c", "exit 5"}});
  ASSERT_NE(tool, nullptr);
  EXPECT_EQ(tool->wait(), 5);
}

TEST_F(PosixTest, AnInheritedIgnoredChildSignalLosesNoStatus) {
  const auto before = std::signal(SIGCHLD, SIG_IGN);
  PosixProcesses processes;
  const auto tool = processes.start({.path = "/bin/sh", .arguments = {"-c", "exit 5"}});
  ASSERT_NE(tool, nullptr);
  EXPECT_EQ(tool->wait(), 5);
  std::signal(SIGCHLD, before);
}

TEST_F(PosixTest, WhoUsesThePidOfAReapedToolIsNotTerminated) {
  PosixProcesses processes;
  folder.file("/pid", "");
  const Descriptor output(::open(path("pid").c_str(), O_WRONLY | O_CLOEXEC));
  const auto tool =
      processes.start({.path = "/bin/sh", .arguments = {"-c", "echo $$"}, .standardOutput = output.get()});
  ASSERT_NE(tool, nullptr);
  EXPECT_EQ(tool->wait(), 0);
  const auto stranger = contract::childWithPid(std::stoi(contract::hostBytes(path("pid"))));
  if (stranger == nullptr) GTEST_SKIP() << "the pid could not be had again";
  tool->terminate();
  ::kill(stranger->pid(), SIGKILL);
  const int waited = stranger->reap();
  EXPECT_EQ(WTERMSIG(waited), SIGKILL);
}

TEST_F(PosixTest, ErrorsThatWereNotCapturedCannotBeRead) {
  PosixProcesses processes;
  const auto tool = processes.start({.path = "/bin/sh", .arguments = {"-c", "exit 0"}});
  ASSERT_NE(tool, nullptr);
  EXPECT_DEATH(static_cast<void>(tool->readErrors(10)), "fatal: standard error was not captured");
  EXPECT_EQ(tool->wait(), 0);
}

TEST_F(PosixTest, ReadingKeepsTheFirstBytes) {
  folder.file("/file", std::string(70'000, 'a') + "b");
  const Descriptor opened(::open(path("file").c_str(), O_RDONLY | O_CLOEXEC));
  EXPECT_EQ(readToEnd(opened.get(), 3), "aaa");
  EXPECT_EQ(readToEnd(opened.get(), 3), "");
  EXPECT_EQ(readToEnd(-1, 3), std::nullopt);
}

}  // namespace
}  // namespace tamo::platform
