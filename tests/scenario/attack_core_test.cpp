#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "platform/posix/posix_files.hpp"
#include "platform/stage/stream_sockets.hpp"
#include "scenario/attack.hpp"
#include "scenario/stage.hpp"

/// A Core that changes under the companion's eyes, a socket that takes nobody, URLs without end, foreign texts in the log,
/// all with real processes.
namespace tamo::scenario {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using std::chrono::seconds;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using Texts = std::vector<std::string>;

/// The Core's program replaced by a script, which is in the stage's folder and has its rights.
void replaceCore(const Stage& stage, const std::string& script) {
  const auto program =
      stage.root().host(stage::companionBundle("/Applications/Tamo.app") + "/Contents/MacOS/tamo-core-agent");
  fs::remove(program);
  std::ofstream(program) << "#!/usr/bin/perl\nuse POSIX;\n$SIG{TERM} = sub { $told = 1; };\n" << script;
  ::chmod(program.c_str(), 0755);
}

/// A number that the Core's script left for the test.
pid_t noted(const Stage& stage, const std::string& name) {
  pid_t found = 0;
  EXPECT_TRUE(eventually([&] {
    found = std::atoi(stage.file("/private/tmp/" + name).value_or("").c_str());
    return found > 1;
  }));
  return found;
}

/// Perl that leaves a number for the test, under its name only when it is whole.
std::string noting(const Stage& stage, const std::string& name, const std::string& value) {
  const auto place = stage.root().host("/private/tmp/" + name);
  return "open(my $note, '>', '" + place + ".part') or die; print $note " + value +
         "; close($note); rename('" + place + ".part', '" + place + "');\n";
}

/// Perl that waits for the first SIGTERM, which comes when the companion has looked at the Core and asks it to stop.
const std::string untilTold = "select(undef, undef, undef, 0.02) until ($told);\n";

/// The arguments that a process shows to others.
std::string wordsOf(pid_t pid) {
  auto words = platform::posix::readWhole("/proc/" + std::to_string(pid) + "/cmdline").value_or("");
  std::ranges::replace(words, '\0', ' ');
  return words;
}

class AttackByTheCore : public ::testing::Test {
 protected:
  /// Registers the agent with a Core of this course.
  pid_t runCore(const std::string& script) {
    replaceCore(stage, script);
    stage.act("register");
    return stage.corePid();
  }
  const Stage stage{{.registered = false}};
};

/// It led its group at the first look, and in the grace joins one that somebody else leads: it alone is killed.
TEST_F(AttackByTheCore, ACoreThatJoinsAStrangersGroupInTheGraceIsKilledAlone) {
  const auto core = runCore(
      "my $stranger = fork();\n"
      "if (!$stranger) { $SIG{TERM} = 'DEFAULT'; POSIX::setpgid(0, 0); sleep(60); exit(0); }\n"
      "POSIX::setpgid($stranger, $stranger);\n" +
      noting(stage, "stranger", "$stranger") + untilTold + "POSIX::setpgid(0, $stranger) or die;\n" +
      noting(stage, "joined", "getpgrp()") + "sleep(1) while (1);\n");
  const auto stranger = noted(stage, "stranger");
  ASSERT_GT(stranger, 1);
  ASSERT_GT(core, 1);
  stage.act("restart");
  EXPECT_EQ(noted(stage, "joined"), stranger);
  const auto number = std::to_string(core);
  EXPECT_EQ(stage.lines().at(2), "default hardstop pid {public:" + number + "}: {public:killedProcess(" +
                                     number + ", gone: true)}");
  EXPECT_FALSE(runs(core));
  EXPECT_TRUE(runs(stranger));
  ::kill(stranger, SIGKILL);
}

/// Another program in the same process is the same process: launchd's job, by its pid and its start.
TEST_F(AttackByTheCore, ACoreThatTakesAnotherProgramAndNameInTheGraceIsKilledAllTheSame) {
  const auto core =
      runCore(untilTold + noting(stage, "told", "$$") + "exec {'/bin/sleep'} 'Finder', '60';\n");
  ASSERT_GT(core, 1);
  const auto companion = stage.start({"--core-action", "restart"});
  EXPECT_EQ(noted(stage, "told"), core);
  EXPECT_TRUE(eventually([&] { return !runs(core) || wordsOf(core) == "Finder 60 "; }));
  Stage::finish(companion);
  const auto number = std::to_string(core);
  EXPECT_EQ(stage.lines().at(2),
            "default hardstop pid {public:" + number + "}: {public:killedGroup(" + number + ", gone: true)}");
  EXPECT_FALSE(runs(core));
}

/// What does not hold: what launchctl prints is believed. A process of the user that is named there is stopped in the
/// Core's place, and nobody else: the kernel lets the companion signal the user's own processes alone.
TEST(AttackOnTheCore, APrintThatNamesAStrangerDirectsTheKillToIt) {
  const Stage stage;
  const pid_t stranger = ::fork();
  ASSERT_GE(stranger, 0);
  if (stranger == 0) {
    ::setpgid(0, 0);
    ::pause();
    ::_exit(0);
  }
  ::setpgid(stranger, stranger);
  // Its start has to come before the companion's by a whole tick of the clock.
  std::this_thread::sleep_for(milliseconds(100));
  std::ofstream(stage.root().host("/private/tmp/lie"))
      << "gui/501/" + Stage::label + " = {\n\tpid = " << stranger << "\n}\n";
  stage.set("tool-launchctl", "print lie /private/tmp/lie");
  stage.act("restart");
  int status = 0;
  EXPECT_EQ(::waitpid(stranger, &status, WNOHANG), stranger);
  EXPECT_TRUE(WIFSIGNALED(status));
  ::kill(stranger, SIGKILL);
}

/// A print that names launchd, nobody, a group or a number that is none.
TEST(AttackOnTheCore, APrintThatNamesNoProcessOfTheUserStopsNobody) {
  const Stage stage;
  for (const std::string pid :
       {"1", "0", "-1", "-501", "4294967297", "99999999999999999999", "7x", "0x10", ""}) {
    SCOPED_TRACE(pid);
    std::ofstream(stage.root().host("/private/tmp/lie"))
        << "gui/501/" + Stage::label + " = {\n\tpid = " << pid << "\n}\n";
    stage.set("tool-launchctl", "print lie /private/tmp/lie");
    EXPECT_EQ(stage.act("restart").status, 0);
  }
  EXPECT_THAT(stage.lines(), Not(Contains(HasSubstr("hardstop"))));
}

platform::Descriptor listener(const std::string& path, int backlog) {
  auto made = stage::listeningAt(path);
  EXPECT_TRUE(made) << path;
  ::listen(made.get(), backlog);
  return made;
}

/// A kickstart that fails makes a register ask the sockets. `none`: the Core has none of its own.
class AttackOnTheSockets : public ::testing::Test {
 protected:
  /// The folder is the Core's to make, which has only just been started.
  AttackOnTheSockets() {
    stage.set("tool-launchctl", "kickstart fail 5");
    std::filesystem::create_directories(stage.root().host(stage.dataDirectory()));
  }
  [[nodiscard]] std::string place(const std::string& name) const {
    return stage.root().host(stage.dataDirectory() + name);
  }
  const Stage stage{{.core = "sockets=none"}};
};

TEST_F(AttackOnTheSockets, AListenerThatAcceptsAndSaysNothingIsNotWaitedFor) {
  const auto silent = listener(place("core.sock"), 5);
  const auto companion = stage.start({"--core-action", "register"});
  platform::Descriptor caller;
  EXPECT_TRUE(eventually([&] {
    return static_cast<bool>(caller = platform::Descriptor(::accept(silent.get(), nullptr, nullptr)));
  }));
  EXPECT_LT(Stage::finish(companion).after, seconds(10));
  EXPECT_THAT(stage.lines().back(), HasSubstr("kickstart 5"));
}

TEST_F(AttackOnTheSockets, AListenerThatTakesNobodyAnyMoreIsNotWaitedFor) {
  const auto deaf = listener(place("core.sock"), 0);
  const auto alsoDeaf = listener(place("talk.sock"), 0);
  std::vector<platform::Descriptor> callers;
  for (const auto* name : {"core.sock", "talk.sock"})
    while (auto caller = stage::connectedTo(place(name), stage::FullBacklog::Refuses))
      callers.push_back(std::move(caller));
  EXPECT_LT(stage.act("register").after, seconds(10));
  EXPECT_THAT(stage.lines().back(), HasSubstr("kickstart 5"));
}

TEST_F(AttackOnTheSockets, WhatIsNoSocketInItsPlaceIsNoAnswerAndIsNotTouched) {
  Victim victim(stage.root());
  for (const auto trap : everyTrap) {
    SCOPED_TRACE(nameOf(trap));
    for (const auto* name : {"core.sock", "talk.sock"})
      victim.lay(trap, stage.dataDirectory() + name);
    EXPECT_LT(stage.act("register").after, seconds(10));
    EXPECT_TRUE(victim.isUnharmed());
  }
}

/// Ten thousand URLs of every kind but two good ones, the last of which counts.
TEST(AttackByUrl, AFloodIsTakenInAndTheLastGoodOneIsCarriedOut) {
  const Stage stage;
  const auto companion = stage.start({"--core-action", "bogus"});
  std::string urls = "tamo-core://unregister\n";
  for (int number = 0; number < 5000; ++number)
    urls += "tamo-core://restart?" + std::to_string(number) + "\nhttp://example.com/" + std::string(50, 'x') +
            "\n";
  stage.send(companion, urls + "tamo-core://status\ntamo-core://%72estart\n");
  EXPECT_LT(Stage::finish(companion).after, seconds(20));
  EXPECT_THAT(stage.lines().back(), StartsWith("default {public:status} -> "));
}

/// Nothing behind the name is a path or a value for anything, and no other name does anything.
TEST(AttackByUrl, AnOddOneIsNoRequest) {
  const Stage stage;
  const auto core = stage.corePid();
  const auto companion = stage.start({"--core-action", "status"});
  std::string urls;
  for (const std::string url :
       {"tamo-core://restart\x01", "tamo-core://restart%0a", "tamo-core://restart%00",
        "tamo-core:/../restart", "tamo-core://audit-install", "tamo-core://restart;unregister",
        "tamo-core://x@y:99999/restart", "file:///Applications/Tamo.app", "tamo-core://../../restart",
        "tamo-core://--core-action", "javascript:restart", "tamo-core2://restart", "://restart", ""})
    urls += url + "\n";
  stage.send(companion, urls + "tamo-core://" + std::string(100'000, 'r') + "\n");
  Stage::finish(companion);
  EXPECT_THAT(stage.lines().back(), StartsWith("default {public:status} -> "));
  EXPECT_EQ(stage.corePid(), core);
}

/// An error's description is private, and no text in it ends that.
TEST(AttackOnTheLog, APrivateTextStaysPrivateWhateverItHolds) {
  const Stage stage({.registered = false});
  for (const std::string text :
       {"secret", "}{public:secret}", "%{public}s secret %s%n", "\\}{public:secret", "<private>secret"}) {
    stage.set("next-register-error", "SMAppServiceErrorDomain\t1\t" + text);
    stage.act("register");
    EXPECT_THAT(stage.lines().back(),
                ::testing::EndsWith("{public: error SMAppServiceErrorDomain 1}{private}"));
  }
  EXPECT_THAT(stage.file("/.stage/log").value_or(""), Not(HasSubstr("secret")));
}

/// The stage's log and standard error show what a name holds; no name makes a line of its own, or moves the cursor.
TEST(AttackOnTheLog, ANameForgesNoLineOnTheStage) {
  const Stage stage;
  const std::string forged = "register -> status 1 ok Optional(true)";
  for (const std::string text :
       {"x\n", "x\r", "x\r\n", "x\x1b[2K\x1b[1G", "x\x0b", "x\x0c", "x\x7f\b\b\b", "x\t"})
    stage.act(text + forged);
  const auto log = stage.file("/.stage/log").value_or("");
  EXPECT_EQ(std::ranges::count(log, '\n'), 8);
  EXPECT_TRUE(std::ranges::none_of(
      log, [](unsigned char each) { return each == 0x7f || (each < 0x20 && each != '\n' && each != '\t'); }));
  for (const auto& line : stage.lines())
    EXPECT_THAT(line, HasSubstr("error TamoCore 64"));
}

/// A receipt is one object whatever the name holds; what is no UTF-8 in it has been repaired by then.
TEST(AttackOnTheLog, ANameForgesNoMemberOfAReceipt) {
  const Stage stage({.companion = stage::Companion::Receipts});
  const std::string folder = "/Users/tamo/Library/Application Support/TamoPKG1/M2/";
  const auto receipt = [&](const std::string& action) {
    const auto ended = stage.act(action);
    return stage.file(folder + std::to_string(ended.pid) + "-core.json").value_or("none");
  };
  const auto forged = receipt("x\",\n  \"ok\" : true,\n  \"y\" : \"\x01\\");
  EXPECT_THAT(forged, HasSubstr(R"("operation" : "x\",\n  \"ok\" : true,\n  \"y\" : \"\u0001\\")"));
  EXPECT_THAT(forged, HasSubstr("\n  \"ok\" : false,\n"));
  EXPECT_THAT(receipt("\xff\xfe"), HasSubstr("\"operation\" : \"\xEF\xBF\xBD\xEF\xBF\xBD\""));
}

}  // namespace
}  // namespace tamo::scenario
