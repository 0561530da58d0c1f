#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

#include "contract/backend.hpp"
#include "contract/child.hpp"
#include "platform/posix/posix_processes.hpp"

namespace tamo::contract {
namespace {

using platform::Descriptor;
using platform::Tool;
using namespace std::chrono_literals;

class ProcessesContract : public Contract {
 protected:
  [[nodiscard]] Descriptor outputFile() const {
    return Descriptor(::open(host("output").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
  }
  [[nodiscard]] std::unique_ptr<Tool> shell(const std::string& script, int output = -1,
                                            bool capturesErrors = false) {
    return platform.processes.start({.path = "/bin/sh",
                                     .arguments = {"-c", script},
                                     .standardOutput = output,
                                     .capturesErrors = capturesErrors});
  }
  /// What a script writes to its standard output until it exits.
  [[nodiscard]] std::string outputOf(const std::string& script) {
    const auto output = outputFile();
    const auto tool = shell(script, output.get());
    if (tool == nullptr || tool->wait() != 0) ADD_FAILURE() << "did not run: " << script;
    return contentsOf("output");
  }
  /// The pid that a started script has written to its output.
  [[nodiscard]] std::int32_t writtenPid() {
    EXPECT_TRUE(eventually([this] { return contentsOf("output").ends_with('\n'); }));
    return std::stoi("0" + contentsOf("output"));
  }
};

TEST_P(ProcessesContract, TheStatusIsTheExitCode) {
  for (const int code : {0, 1, 2, 113, 126, 127, 128, 255}) {
    const auto tool = shell("exit " + std::to_string(code));
    ASSERT_NE(tool, nullptr);
    EXPECT_EQ(tool->wait(), code);
    EXPECT_FALSE(tool->running());
    EXPECT_EQ(tool->wait(), code);
  }
}

TEST_P(ProcessesContract, TheStatusIsTheNumberOfTheSignalThatEndedIt) {
  const auto tool = shell("kill -9 $$");
  ASSERT_NE(tool, nullptr);
  EXPECT_EQ(tool->wait(), 9);
}

TEST_P(ProcessesContract, WhatCannotBeExecutedDoesNotStart) {
  lay("plain", "#!/bin/sh\nexit 0\n");
  EXPECT_EQ(platform.processes.start({.path = path("missing"), .arguments = {}}), nullptr);
  EXPECT_EQ(platform.processes.start({.path = path("plain"), .arguments = {}, .capturesErrors = true}),
            nullptr);
  EXPECT_EQ(platform.processes.start({.path = backend->folder(), .arguments = {}}), nullptr);
}

TEST_P(ProcessesContract, AToolIsNotLookedForAlongThePath) {
  EXPECT_EQ(platform.processes.start({.path = "sh", .arguments = {"-c", "exit 0"}}), nullptr);
  platform::PosixProcesses ofTheHost;
  const auto tool = ofTheHost.start({.path = "sh", .arguments = {"-c", "exit 0"}});
  EXPECT_EQ(tool, nullptr);
  if (tool != nullptr) static_cast<void>(tool->wait());
}

TEST_P(ProcessesContract, AScriptIsATool) {
  lay("script", "#!/bin/sh\nexit 7\n");
  std::filesystem::permissions(host("script"), std::filesystem::perms::owner_all);
  const auto tool = platform.processes.start({.path = path("script"), .arguments = {}});
  ASSERT_NE(tool, nullptr);
  EXPECT_EQ(tool->wait(), 7);
}

TEST_P(ProcessesContract, ArgumentsArriveAsTheyAre) {
  const auto output = outputFile();
  const auto tool = platform.processes.start(
      {.path = "/bin/sh",
       .arguments = {"-c", R"(for word; do printf '<%s>' "$word"; done)", "zero", "", "a b", "*", "\n"},
       .standardOutput = output.get()});
  ASSERT_NE(tool, nullptr);
  EXPECT_EQ(tool->wait(), 0);
  EXPECT_EQ(contentsOf("output"), "<><a b><*><\n>");
}

TEST_P(ProcessesContract, ArgumentZeroIsThePath) {
  EXPECT_EQ(outputOf("echo $0"), "/bin/sh\n");
}

TEST_P(ProcessesContract, UnnamedStreamsGoToTheNullDevice) {
  const auto tool = shell("test /dev/fd/1 -ef /dev/null && test /dev/fd/2 -ef /dev/null");
  ASSERT_NE(tool, nullptr);
  EXPECT_EQ(tool->wait(), 0);
}

TEST_P(ProcessesContract, TheEnvironmentAndTheDirectoryAreInherited) {
  ::setenv("TAMO_TEST_WORDS", "two words", 1);
  EXPECT_EQ(outputOf("echo \"$TAMO_TEST_WORDS\"; pwd -P"),
            "two words\n" + std::filesystem::canonical(".").string() + "\n");
  ::unsetenv("TAMO_TEST_WORDS");
}

TEST_P(ProcessesContract, StandardInputIsInherited) {
  lay("input", "from the file\n");
  const Descriptor saved(::fcntl(0, F_DUPFD_CLOEXEC, 10));
  const Descriptor input(::open(host("input").c_str(), O_RDONLY));
  ::dup2(input.get(), 0);
  EXPECT_EQ(outputOf("read line; echo \"$line\""), "from the file\n");
  ::dup2(saved.get(), 0);
}

TEST_P(ProcessesContract, AStandardInputThatIsClosedStaysClosedInATool) {
  Child child([this] {
    ::close(0);
    const auto tool = shell("test -e /dev/fd/0 && exit 1; exit 7");
    ::_exit(tool == nullptr ? 2 : tool->wait());
  });
  EXPECT_EQ(exitStatus(child.reap()), 7);
}

TEST_P(ProcessesContract, AFileThatTookThePlaceOfStandardInputIsClosedInATool) {
  Child child([this] {
    ::close(0);
    if (outputFile().release() != 0) ::_exit(3);
    const auto tool = shell("test -e /dev/fd/0 && exit 1; exit 7");
    ::_exit(tool == nullptr ? 2 : tool->wait());
  });
  EXPECT_EQ(exitStatus(child.reap()), 7);
}

TEST_P(ProcessesContract, EveryOtherDescriptorIsClosed) {
  const Descriptor stray(::fcntl(0, F_DUPFD, 40));
  ASSERT_EQ(::fcntl(stray.get(), F_GETFD) & FD_CLOEXEC, 0);
  EXPECT_EQ(outputOf("test -e /dev/fd/" + std::to_string(stray.get()) + " && echo open || echo closed"),
            "closed\n");
}

TEST_P(ProcessesContract, AToolLeadsAGroupOfItsOwn) {
  const auto output = outputFile();
  const auto tool = shell("echo $$; exec sleep 30", output.get());
  ASSERT_NE(tool, nullptr);
  const auto pid = writtenPid();
  const auto info = platform.kernelProcesses.info(pid);
  ASSERT_TRUE(info);
  EXPECT_EQ(info->group, pid);
  tool->terminate();
  EXPECT_EQ(tool->wait(), SIGTERM);
}

TEST_P(ProcessesContract, AToolStartsWithCleanSignals) {
  sigset_t blocked;
  sigset_t before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
  const auto ignored = std::signal(SIGTERM, SIG_IGN);
  const auto tool = shell("exec sleep 30");
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  std::signal(SIGTERM, ignored);
  ASSERT_NE(tool, nullptr);
  tool->terminate();
  EXPECT_TRUE(eventually([&] { return !tool->running(); }));
}

TEST_P(ProcessesContract, AHangingToolRunsUntilItIsTerminated) {
  const auto tool = shell("exec sleep 30");
  ASSERT_NE(tool, nullptr);
  EXPECT_TRUE(tool->running());
  tool->terminate();
  EXPECT_EQ(tool->wait(), SIGTERM);
  EXPECT_FALSE(tool->running());
  tool->terminate();
}

TEST_P(ProcessesContract, TheFirstErrorBytesAreKeptAndTheRestIsDrained) {
  // More than a pipe holds and one reading takes: a tool whose rest nobody reads would be ended by a signal.
  const auto tool = shell("head -c 1000000 /dev/zero >&2 || exit 4; exit 3", -1, true);
  ASSERT_NE(tool, nullptr);
  EXPECT_EQ(tool->readErrors(4096), std::string(4096, '\0'));
  EXPECT_EQ(tool->wait(), 3);
}

TEST_P(ProcessesContract, ShortErrorsAreKeptWhole) {
  const auto tool = shell("printf 'no\\377' >&2", -1, true);
  ASSERT_NE(tool, nullptr);
  EXPECT_EQ(tool->readErrors(4096), "no\xFF");
  EXPECT_EQ(tool->wait(), 0);
}

TEST_P(ProcessesContract, ErrorsEndWhenTheLastInheritorClosesThem) {
  const auto tool = shell("(sleep 0.05; echo late >&2) & echo early >&2", -1, true);
  ASSERT_NE(tool, nullptr);
  EXPECT_EQ(tool->readErrors(4096), "early\nlate\n");
  EXPECT_EQ(tool->wait(), 0);
}

TEST_P(ProcessesContract, AForgottenToolRunsOn) {
  lay("trace", "");
  EXPECT_NE(shell("sleep 0.05; echo done > '" + host("trace") + "'"), nullptr);
  EXPECT_EQ(contentsOf("trace"), "");
  EXPECT_TRUE(eventually([this] { return contentsOf("trace") == "done\n"; }));
}

TEST_P(ProcessesContract, AForgottenToolIsReapedAtTheNextStart) {
  const auto output = outputFile();
  EXPECT_NE(shell("echo $$", output.get()), nullptr);
  const auto pid = writtenPid();
  siginfo_t ignored{};
  ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(pid), &ignored, WEXITED | WNOWAIT), 0);
  const auto next = shell("exec sleep 30");
  ASSERT_NE(next, nullptr);
  // Nobody is there, or, where the kernel has given the pid to the next tool, one that still runs.
  EXPECT_LE(::waitpid(pid, nullptr, WNOHANG), 0);
  next->terminate();
  EXPECT_EQ(next->wait(), SIGTERM);
}

TAMO_CONTRACT(ProcessesContract);

}  // namespace
}  // namespace tamo::contract
