#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

#include "platform/posix/descriptor.hpp"
#include "platform/posix/posix_files.hpp"
#include "platform/posix/posix_processes.hpp"
#include "stage.hpp"

/// The commands that a person drives a stage with, as the program that the person runs.
namespace tamo::scenario {
namespace {

using std::chrono::milliseconds;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using Words = std::vector<std::string>;

/// What a run of tamo-stage came to.
struct Said {
  int status = -1;
  std::string output;
  std::string errors;
};

class Person {
 public:
  Person() : folder_(freshFolder()) {}
  Person(const Person&) = delete;
  Person& operator=(const Person&) = delete;
  ~Person() { std::filesystem::remove_all(folder_); }

  [[nodiscard]] std::string folder(const std::string& name) const { return folder_ + "/" + name; }

  /// Starts "tamo-stage COMMAND STAGE …"; what it prints is there once it has ended.
  [[nodiscard]] std::unique_ptr<platform::Tool> starts(const Words& words) {
    const platform::Descriptor output(::open(folder("output").c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600));
    return processes_.start({.path = TAMO_BINARY_DIR "/bin/tamo-stage",
                             .arguments = words,
                             .standardOutput = output.get(),
                             .capturesErrors = true});
  }
  Said runs(const Words& words) {
    const auto tool = starts(words);
    // A launchd that is started inherits none of the streams, so this ends.
    auto errors = tool->readErrors(10'000);
    const int status = tool->wait();
    return {.status = status, .output = printed(), .errors = std::move(errors)};
  }
  [[nodiscard]] std::string printed() const {
    return platform::posix::readWhole(folder("output")).value_or("");
  }

 private:
  static std::string freshFolder() {
    std::string name = "/tmp/tamo-scenario-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) ADD_FAILURE() << "no folder";
    return name;
  }

  std::string folder_;
  platform::PosixProcesses processes_;
};

std::string directoryOf(const Stage& stage) {
  return stage.root().directory();
}

TEST(StageCommandScenario, AStageIsLaidAndStruck) {
  Person person;
  const auto place = person.folder("stage");
  EXPECT_EQ(person.runs({"lay", place, "--bare"}).status, 0);
  EXPECT_TRUE(std::filesystem::exists(place + "/bin/launchctl"));
  EXPECT_NE(person.runs({"ps", place}).output, "") << "launchd runs";
  EXPECT_EQ(person.runs({"lay", place}).status, 1) << "there is one already";
  EXPECT_EQ(person.runs({"strike", place}).status, 0);
  EXPECT_FALSE(std::filesystem::exists(place));
}

TEST(StageCommandScenario, RunBecomesTheInstalledCopysCompanion) {
  Person person;
  const Stage stage;
  EXPECT_EQ(person.runs({"run", directoryOf(stage), "--core-action", "status"}).status, 0);
  EXPECT_EQ(person.runs({"run", directoryOf(stage), "--", "--core-action", "bogus"}).status, 0);
  ASSERT_EQ(stage.lines().size(), 2U);
  EXPECT_THAT(stage.lines()[0], StartsWith("default {public:status}"));
  EXPECT_THAT(stage.lines()[1], StartsWith("default {public:bogus}"));
}

TEST(StageCommandScenario, RunTakesAnotherCopyAndUrls) {
  Person person;
  const Stage stage;
  EXPECT_EQ(
      person.runs({"copy", directoryOf(stage), "staged", "--build", "4212", "--program", "receipts"}).status,
      0);
  const auto ran = person.runs({"run", directoryOf(stage), "--copy", "staged", "--open",
                                "tamo-core://core/status", "--open", "http://elsewhere"});
  EXPECT_EQ(ran.status, 0) << ran.errors;
  ASSERT_EQ(stage.lines().size(), 1U);
}

TEST(StageCommandScenario, RunRefusesWhatCannotBe) {
  Person person;
  const Stage stage;
  EXPECT_THAT(person.runs({"run", directoryOf(stage), "--copy", "/Nowhere.app"}).errors,
              HasSubstr("there is no companion at /Nowhere.app"));
  EXPECT_EQ(person.runs({"run", directoryOf(stage), "--open", ""}).status, 2);
  EXPECT_EQ(person.runs({"run", directoryOf(stage), "--open", "two\nlines"}).status, 2);
  EXPECT_EQ(stage.lines(), Words());
}

TEST(StageCommandScenario, SendReachesTheCompanionsThatRun) {
  Person person;
  const Stage stage;
  const auto nobody = person.runs({"send", directoryOf(stage), "tamo-core://core/status"});
  EXPECT_EQ(nobody.status, 1);
  EXPECT_THAT(nobody.errors, HasSubstr("no companion runs on " + directoryOf(stage)));
  const auto companion = stage.start({});
  int status = 1;
  for (int attempt = 0; attempt < 50 && status != 0; ++attempt)
    status = person.runs({"send", directoryOf(stage), "no-scheme-of-ours://x"}).status;
  EXPECT_EQ(status, 0);
  Stage::finish(companion);
  EXPECT_THAT(stage.lines().at(0), StartsWith("default {public:register}"));
}

TEST(StageCommandScenario, ASocketThatAKilledCompanionLeftTakesNothing) {
  Person person;
  const Stage stage;
  const auto companion = stage.start({});
  const auto socket = stage.root().control("companions/" + std::to_string(companion.pid) + ".sock");
  ASSERT_TRUE(eventually([&] { return std::filesystem::exists(socket); }));
  ::kill(companion.pid, SIGKILL);
  Stage::finish(companion);
  EXPECT_TRUE(std::filesystem::exists(socket));
  EXPECT_EQ(person.runs({"send", directoryOf(stage), "tamo-core://core/status"}).status, 1);
}

TEST(StageCommandScenario, LaunchctlIsTheStagesOwn) {
  Person person;
  const Stage stage;
  const auto print = person.runs({"launchctl", directoryOf(stage), "print", stage.target()});
  EXPECT_EQ(print.status, 0);
  EXPECT_THAT(print.output, StartsWith(stage.target() + " = {"));
  std::filesystem::remove(stage.root().host("/bin/launchctl"));
  EXPECT_THAT(person.runs({"launchctl", directoryOf(stage), "list"}).errors, HasSubstr("cannot run "));
}

TEST(StageCommandScenario, StatusShowsJobsRegistrationsProcessesAndSettings) {
  Person person;
  const Stage stage({.core = "term=obey"});
  const auto status = person.runs({"status", directoryOf(stage)});
  EXPECT_EQ(status.status, 0);
  EXPECT_THAT(status.output, StartsWith("stage " + directoryOf(stage) + ", user 501, home /Users/tamo\n"));
  EXPECT_THAT(status.output, HasSubstr(Stage::label));
  EXPECT_THAT(status.output, HasSubstr(": 1 enabled, from /Applications/Tamo.app"));
  EXPECT_THAT(status.output, HasSubstr("\n  " + std::to_string(stage.corePid()) + " group "));
  EXPECT_THAT(status.output, HasSubstr("\n  core = term=obey\n"));
}

TEST(StageCommandScenario, StatusOfAStageWhoseLaunchdIsGoneSaysSo) {
  Person person;
  const Stage stage;
  std::filesystem::remove(stage.root().control("launchd.sock"));
  EXPECT_THAT(person.runs({"status", directoryOf(stage)}).output, HasSubstr("launchd doesn't answer\n"));
}

TEST(StageCommandScenario, TheProcessesOfTheStageArePrintedByPid) {
  Person person;
  const Stage stage;
  const auto core = stage.corePid();
  EXPECT_THAT("\n" + person.runs({"ps", directoryOf(stage)}).output,
              HasSubstr("\n" + std::to_string(core) + "\n"));
}

TEST(StageCommandScenario, TheLogIsShownAsAPersonMayReadItOrWithItsMarks) {
  Person person;
  const Stage stage;
  stage.act("bogus");
  const auto plain = person.runs({"log", directoryOf(stage)});
  EXPECT_THAT(plain.output, HasSubstr("bogus -> status 1 ok Optional(false) error TamoCore 64<private>"));
  const auto marks = person.runs({"log", directoryOf(stage), "--marks"});
  EXPECT_THAT(marks.output, HasSubstr("{public:bogus} -> status {public:1}"));
}

TEST(StageCommandScenario, AFollowedLogShowsNewLinesUntilTheStageIsStruck) {
  Person person;
  auto stage = std::make_unique<Stage>();
  const auto following = person.starts({"log", directoryOf(*stage), "--follow"});
  stage->act("bogus");
  for (int attempt = 0; attempt < 100 && person.printed().empty(); ++attempt)
    std::this_thread::sleep_for(milliseconds(20));
  EXPECT_THAT(person.printed(), HasSubstr("bogus -> status 1"));
  EXPECT_TRUE(following->running());
  stage.reset();
  EXPECT_EQ(following->wait(), 0);
}

TEST(StageCommandScenario, ReceiptsAreThoseThatCompanionsWrote) {
  Person person;
  const Stage stage({.companion = stage::Companion::Receipts});
  EXPECT_THAT(person.runs({"receipt", directoryOf(stage), "1"}).errors,
              HasSubstr("no receipt of the process 1"));
  const auto ended = stage.act("status");
  const auto receipt = person.runs({"receipt", directoryOf(stage), std::to_string(ended.pid)});
  EXPECT_EQ(receipt.status, 0);
  EXPECT_THAT(receipt.output, HasSubstr("\"operation\" : \"status\""));
}

TEST(StageCommandScenario, ADefinitionIsRewrittenForTheNextRestartToFind) {
  Person person;
  const Stage stage;
  EXPECT_EQ(person.runs({"definition", directoryOf(stage), "--exit-timeout", "45", "--binary"}).status, 0);
  EXPECT_EQ(
      person.runs({"definition", directoryOf(stage), "--exit-timeout", "none", "--arguments", "--serve"})
          .status,
      0);
  stage.act("sync");
  EXPECT_THAT(stage.lines().at(0), HasSubstr("changed {public:true}"));
}

TEST(StageCommandScenario, ApplicationsAreOpenedFromTheirCopies) {
  Person person;
  const Stage stage;
  EXPECT_EQ(person.runs({"open", directoryOf(stage), "installed"}).status, 0);
  EXPECT_EQ(platform::posix::readWhole(stage.root().control("front")), "/Applications/Tamo.app\n");
  const auto nowhere = person.runs({"open", directoryOf(stage), "/Nowhere.app"});
  EXPECT_EQ(nowhere.status, 1);
  EXPECT_THAT(nowhere.errors, HasSubstr("/Nowhere.app: The application could not be found."));
}

TEST(StageCommandScenario, AnApplicationThatNamesNoProgramOfItsOwnIsNotOpened) {
  Person person;
  const Stage stage;
  const auto contents = stage.root().host("/Applications/Odd.app/Contents");
  ASSERT_TRUE(platform::posix::createDirectories(contents + "/MacOS"));
  for (const auto* program : {"", "../../../bin/sh", "missing"}) {
    ASSERT_TRUE(platform::posix::writeAtomically(
        contents + "/Info.plist", std::string("<plist><dict><key>CFBundleExecutable</key><string>") +
                                      program + "</string></dict></plist>"));
    EXPECT_THAT(person.runs({"open", directoryOf(stage), "/Applications/Odd.app"}).errors,
                HasSubstr("The application could not be started."))
        << program;
  }
}

TEST(StageCommandScenario, ATranslocatedCopyIsPrintedByItsPath) {
  Person person;
  const Stage stage;
  for (const auto& words : {Words{"translocate", directoryOf(stage), "installed"},
                            Words{"translocate", directoryOf(stage), "--unknown", "installed"}}) {
    const auto said = person.runs(words);
    EXPECT_EQ(said.status, 0) << said.errors;
    const auto path = said.output.substr(0, said.output.find('\n'));
    EXPECT_TRUE(stage.root().existing(path)) << path;
  }
}

}  // namespace
}  // namespace tamo::scenario
