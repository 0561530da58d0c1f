#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/stage/launchd_wire.hpp"
#include "stage/common/rights.hpp"
#include "stage/control/stage_layout.hpp"
#include "stage/tools/ditto.hpp"
#include "stage/tools/osascript.hpp"
#include "stage/tools/xattr.hpp"
#include "temporary_stage.hpp"

/// The tools of the move, each in a process of its own.
namespace tamo::stage {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

constexpr auto mark = "user.com.apple.quarantine";

class PlayedToolsTest : public ::testing::Test {
 protected:
  /// Runs a tool's work in a child, because a tool may turn into another program.
  template <class Work>
  int inChild(Work work) {
    const auto child = ::fork();
    if (child == 0) ::_exit(work());
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  int ditto(const Texts& arguments) {
    return inChild([&] { return runDitto(stage.root, arguments); });
  }
  int xattr(const Texts& arguments) {
    return inChild([&] { return runXattr(stage.root, arguments); });
  }
  void setMark(const std::string& path) const {
    ASSERT_EQ(::setxattr((stage.path + path).c_str(), mark, "0081", 4, 0), 0);
  }
  [[nodiscard]] bool hasMark(const std::string& path) const {
    return ::lgetxattr((stage.path + path).c_str(), mark, nullptr, 0) == 4;
  }
  [[nodiscard]] struct stat statOf(const std::string& path) const {
    struct stat found{};
    EXPECT_EQ(::lstat((stage.path + path).c_str(), &found), 0) << path;
    return found;
  }

  TemporaryStage stage;
};

TEST_F(PlayedToolsTest, DittoKeepsModesLinksTimesAndAttributes) {
  stage.write("/a.app/Contents/program", "bytes");
  fs::create_symlink("program", stage.path + "/a.app/Contents/link");
  setMark("/a.app/Contents/program");
  ::chmod((stage.path + "/a.app/Contents/program").c_str(), 0751);
  const timespec times[2] = {{.tv_sec = 1'000'000, .tv_nsec = 5}, {.tv_sec = 2'000'000, .tv_nsec = 7}};
  ::utimensat(AT_FDCWD, (stage.path + "/a.app/Contents/program").c_str(), times, 0);
  ASSERT_EQ(ditto({"/a.app", "/b.app"}), 0);
  const auto copied = statOf("/b.app/Contents/program");
  EXPECT_EQ(copied.st_mode & 07777U, 0751U);
  EXPECT_EQ(copied.st_mtim.tv_sec, 2'000'000);
  EXPECT_EQ(copied.st_mtim.tv_nsec, 7);
  EXPECT_EQ(fs::read_symlink(stage.path + "/b.app/Contents/link"), "program");
  EXPECT_TRUE(hasMark("/b.app/Contents/program"));
  EXPECT_EQ(stage.read("/b.app/Contents/program"), "bytes");
}

TEST_F(PlayedToolsTest, DittoWritesIntoAFolderThatIsThere) {
  stage.write("/a.app/new", "new");
  stage.write("/b.app/old", "old");
  EXPECT_EQ(ditto({"/a.app", "/b.app"}), 0);
  EXPECT_EQ(stage.read("/b.app/new"), "new");
  EXPECT_EQ(stage.read("/b.app/old"), "old");
}

TEST_F(PlayedToolsTest, DittoFollowsALinkThatIsItsSource) {
  stage.write("/real.app/file", "bytes");
  fs::create_symlink("real.app", stage.path + "/link.app");
  EXPECT_EQ(ditto({"/link.app", "/b.app"}), 0);
  EXPECT_FALSE(fs::is_symlink(stage.path + "/b.app"));
  EXPECT_EQ(stage.read("/b.app/file"), "bytes");
}

TEST_F(PlayedToolsTest, DittoFailsWithoutASourceAFolderOrTwoPaths) {
  stage.write("/a.app/file", "bytes");
  EXPECT_EQ(ditto({"/nowhere.app", "/b.app"}), 1);
  EXPECT_EQ(ditto({"/a.app", "/nowhere/b.app"}), 1);
  EXPECT_EQ(ditto({"/a.app"}), 1);
  EXPECT_FALSE(fs::exists(stage.path + "/b.app"));
}

TEST_F(PlayedToolsTest, ADittoThatIsCutLeavesHalfACopyAndFails) {
  stage.write("/a.app/1-small", "bytes");
  stage.write("/a.app/2-large", std::string(10'000, 'x'));
  stage.root.set("tool-ditto", "user cut 4096");
  EXPECT_EQ(ditto({"/a.app", "/b.app"}), 1);
  EXPECT_EQ(stage.read("/b.app/1-small"), "bytes");
  EXPECT_LT(stage.read("/b.app/2-large").size(), 10'000U);
}

TEST_F(PlayedToolsTest, AFaultOfTheAdministratorsDittoIsNotTheUsers) {
  stage.write("/a.app/file", "bytes");
  stage.root.set("tool-ditto", "administrator fail 3");
  EXPECT_EQ(ditto({"/a.app", "/b.app"}), 0);
  ::setenv("TAMO_STAGE_ADMINISTRATOR", "yes", 1);
  EXPECT_EQ(ditto({"/a.app", "/c.app"}), 3);
  ::unsetenv("TAMO_STAGE_ADMINISTRATOR");
}

TEST_F(PlayedToolsTest, XattrDeletesTheMarkFromEverythingBelow) {
  stage.write("/a.app/Contents/one", "1");
  stage.write("/a.app/Contents/two", "2");
  stage.write("/outside", "3");
  fs::create_symlink("../../outside", stage.path + "/a.app/Contents/link");
  for (const auto* path : {"/a.app", "/a.app/Contents/one", "/outside"})
    setMark(path);
  EXPECT_EQ(xattr({"-dr", "com.apple.quarantine", "/a.app"}), 0);
  EXPECT_FALSE(hasMark("/a.app"));
  EXPECT_FALSE(hasMark("/a.app/Contents/one"));
  EXPECT_TRUE(hasMark("/outside")) << "through a link";
}

TEST_F(PlayedToolsTest, XattrFailsForWhatIsNotThere) {
  stage.write("/file", "bytes");
  EXPECT_EQ(xattr({"-dr", "com.apple.quarantine", "/nowhere"}), 1);
  EXPECT_EQ(xattr({"-d", "com.apple.quarantine", "/file"}), 1);
  EXPECT_EQ(xattr({"-dr", "com.apple.quarantine", "/file"}), 0);
  EXPECT_EQ(xattr({"-x", "name", "/file"}), 64);
  EXPECT_EQ(xattr({"-dr", "name"}), 64);
}

TEST_F(PlayedToolsTest, OsascriptTakesItsLinesAndThenArguments) {
  const auto use = osascriptUse({"-e", "on run argv", "-e", "end run", "-x", "-e"});
  ASSERT_TRUE(use);
  EXPECT_EQ(use->script, "on run argv\nend run\n");
  EXPECT_EQ(use->arguments, (Texts{"-x", "-e"}));
  EXPECT_FALSE(osascriptUse({"script.scpt"}));
  EXPECT_FALSE(osascriptUse({"-e"}));
}

/// A laid stage, with a launchd that can act as the administrator.
class AdministratorTest : public ::testing::Test {
 protected:
  ~AdministratorTest() override { strikeStage(root.directory()); }

  int osascript(const std::string& command) {
    ::testing::internal::CaptureStderr();
    const int status = runOsascript(
        root, {"-e", "on run argv", "-e",
               "do shell script \"" + command + "\" with prompt \"May I?\" with administrator privileges",
               "-e", "end run"});
    errors = ::testing::internal::GetCapturedStderr();
    return status;
  }
  [[nodiscard]] std::string prompts() const {
    std::ostringstream bytes;
    bytes << std::ifstream(root.control("prompts")).rdbuf();
    return bytes.str();
  }

  TemporaryStage around;
  const StageRoot root = layStage({.directory = around.path + "/an administrator's stage",
                                   .programs = TAMO_BINARY_DIR "/bin",
                                   .bare = true});
  std::string errors;
};

TEST_F(AdministratorTest, ACommandIsRunWithPrivilegesOnceTheUserAgrees) {
  closeApplications(root);
  EXPECT_EQ(osascript("cd \\\"$TAMO_STAGE\\\" && mkdir Applications/made"), 0) << errors;
  EXPECT_TRUE(fs::is_directory(root.host("/Applications/made")));
  EXPECT_NE(prompts().find("asked: May I?\n"), std::string::npos);
  EXPECT_NE(prompts().find("answered: agree\n"), std::string::npos);
}

TEST_F(AdministratorTest, ARefusalRunsNothingAndTellsItsNumber) {
  const std::vector<std::pair<std::string, std::string>> answers = {
      {"cancel", "(-128)"}, {"refuse", "(-60005)"}, {"wrong-password", "(-60007)"}, {"shrug", "(-60008)"}};
  for (const auto& [answer, number] : answers) {
    root.set("administrator", answer);
    EXPECT_EQ(osascript("cd \\\"$TAMO_STAGE\\\" && mkdir Applications/made"), 1);
    EXPECT_NE(errors.find(number), std::string::npos) << errors;
    EXPECT_EQ(errors.find("-128") != std::string::npos, answer == "cancel") << errors;
  }
  EXPECT_FALSE(fs::exists(root.host("/Applications/made")));
}

TEST_F(AdministratorTest, ACommandThatFailsIsAnErrorWithWhatItSaid) {
  EXPECT_EQ(osascript("echo told >&2; exit 7"), 1);
  EXPECT_EQ(errors, "execution error: told\n (7)\n");
  EXPECT_EQ(osascript("kill -9 $$"), 1);
  EXPECT_EQ(errors, "execution error:  (137)\n");
}

/// The errand goes on until it is told to end, or for half a minute: a launchd that answered only then would be
/// told by what the errand leaves behind.
TEST_F(AdministratorTest, AnErrandThatTakesItsTimeKeepsLaunchdAnswering) {
  const auto trace = [this](const char* name) { return root.directory() + "/Users/" + name; };
  const auto child = ::fork();
  if (child == 0) {
    ::_exit(
        osascript("cd \\\"$TAMO_STAGE/Users\\\" && touch begun && for i in $(seq 3000); do "
                  "[ -e enough ] && break; sleep 0.01; done; touch over"));
  }
  for (int look = 0; look < 6000 && !fs::exists(trace("begun")); ++look)
    ::usleep(5000);
  ASSERT_TRUE(fs::exists(trace("begun")));
  EXPECT_TRUE(askLaunchd(root, {"print", "gui/501"}).has_value());
  EXPECT_FALSE(fs::exists(trace("over"))) << "the errand was over before launchd answered";
  std::ofstream(trace("enough")) << "yes";
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(fs::exists(trace("over")));
}

TEST_F(AdministratorTest, AnOsascriptThatIsPutAwayComesBack) {
  chooseAdministrator(root, "not-there");
  EXPECT_FALSE(fs::exists(root.host("/usr/bin/osascript")));
  chooseAdministrator(root, "not-there");
  chooseAdministrator(root, "agree");
  EXPECT_TRUE(fs::exists(root.host("/usr/bin/osascript")));
}

}  // namespace
}  // namespace tamo::stage
