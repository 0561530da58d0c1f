#include "platform/stage/stage_user_files.hpp"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "contract/temporary_stage.hpp"
#include "fakes/fake_clock.hpp"
#include "platform/stage/privileges.hpp"

namespace tamo::stage {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

/// What a program finds that has given up its privileges, as the companion does when it starts.
bool withoutPrivileges(const std::function<bool()>& isTrue) {
  const auto child = ::fork();
  if (child == 0) {
    renouncePrivileges();
    ::_exit(isTrue() ? 0 : 1);
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  return status == 0;
}

class StageUserFilesTest : public ::testing::Test {
 protected:
  StageUserFilesTest() {
    ::setenv("TZ", "UTC", 1);
    clock.wallAtZero += std::chrono::hours(14) + std::chrono::minutes(30) + std::chrono::seconds(12);
  }
  void mode(std::string_view path, mode_t mode) const {
    EXPECT_EQ(::chmod(stage.root().host(path).c_str(), mode), 0);
  }
  [[nodiscard]] Texts trash() const {
    Texts names;
    for (const auto& item : fs::directory_iterator(stage.root().host("/Users/tamo/.Trash")))
      names.push_back(item.path().filename().string());
    std::ranges::sort(names);
    return names;
  }

  contract::TemporaryStage stage;
  fakes::Ledger ledger;
  fakes::FakeClock clock{ledger};
  StageUserFiles userFiles{stage.root(), clock};
};

TEST(NameInTrashTest, TheTimeStandsBeforeTheEnding) {
  EXPECT_EQ(nameInTrash("Tamo.app", "14.30.12", 1), "Tamo 14.30.12.app");
  EXPECT_EQ(nameInTrash("Tamo.app", "14.30.12", 2), "Tamo 14.30.12 2.app");
  EXPECT_EQ(nameInTrash("a.b.c", "14.30.12", 1), "a.b 14.30.12.c");
  EXPECT_EQ(nameInTrash("plain", "14.30.12", 1), "plain 14.30.12");
  EXPECT_EQ(nameInTrash(".hidden", "14.30.12", 1), ".hidden 14.30.12");
}

TEST_F(StageUserFilesTest, TheTrashKeepsWhatItIsGivenUnderNamesThatDoNotClash) {
  for (const auto* bytes : {"first", "second", "third"}) {
    stage.file("/Applications/Tamo.app/file", bytes);
    EXPECT_TRUE(userFiles.moveToTrash("/Applications/Tamo.app"));
  }
  EXPECT_EQ(trash(), (Texts{"Tamo 14.30.12 2.app", "Tamo 14.30.12.app", "Tamo.app"}));
  const auto bytesOf = [this](const std::string& name) {
    return contract::hostBytes(stage.root().host("/Users/tamo/.Trash/" + name + "/file"));
  };
  EXPECT_EQ(bytesOf("Tamo.app"), "first");
  EXPECT_EQ(bytesOf("Tamo 14.30.12.app"), "second");
  EXPECT_EQ(bytesOf("Tamo 14.30.12 2.app"), "third");
}

TEST_F(StageUserFilesTest, AFolderOnTheWayMayBeALinkOfTheStage) {
  stage.file("/Volumes/Disk/Tamo.app/file", "bytes");
  stage.link("/Users/tamo/Desktop", "/Volumes/Disk");
  EXPECT_TRUE(userFiles.moveToTrash("/Users/tamo/Desktop/Tamo.app"));
  EXPECT_EQ(trash(), Texts{"Tamo.app"});
}

TEST_F(StageUserFilesTest, NothingOutsideTheStageIsTrashedOrWritable) {
  const contract::TemporaryStage elsewhere;
  elsewhere.file("/file", "bytes");
  stage.link("/out", elsewhere.root().directory());
  EXPECT_FALSE(userFiles.moveToTrash("/out/file"));
  EXPECT_FALSE(userFiles.isWritable("/out/file"));
  EXPECT_FALSE(userFiles.moveToTrash("/"));
  EXPECT_TRUE(fs::exists(elsewhere.root().host("/file")));
}

TEST_F(StageUserFilesTest, OwnerAndModeDecideWithoutPrivileges) {
  stage.folder("/Applications/Tamo.app");
  mode("/Applications", 0555);
  EXPECT_TRUE(withoutPrivileges([&] { return !userFiles.isWritable("/Applications"); }));
  EXPECT_TRUE(withoutPrivileges([&] { return !userFiles.moveToTrash("/Applications/Tamo.app"); }));
  EXPECT_TRUE(fs::exists(stage.root().host("/Applications/Tamo.app")));
  mode("/Applications", 0755);
  EXPECT_TRUE(withoutPrivileges([&] { return userFiles.isWritable("/Applications"); }));
  EXPECT_TRUE(withoutPrivileges([&] { return userFiles.moveToTrash("/Applications/Tamo.app"); }));
}

TEST_F(StageUserFilesTest, PrivilegesThatAreGivenUpDoNotComeBackWithTheNextProgram) {
  stage.folder("/Applications");
  mode("/Applications", 0555);
  const auto command = "touch '" + stage.root().host("/Applications/file") + "' 2>/dev/null";
  EXPECT_TRUE(withoutPrivileges([&] { return std::system(command.c_str()) != 0; }));
  EXPECT_FALSE(fs::exists(stage.root().host("/Applications/file")));
}

TEST_F(StageUserFilesTest, AnAdministratorWritesWhereTheOwnerMayNot) {
  stage.folder("/Applications");
  mode("/Applications", 0555);
  const auto command = "touch '" + stage.root().host("/Applications/file") + "'";
  const auto child = ::fork();
  if (child == 0) ::_exit(takeAdministratorPrivileges() && std::system(command.c_str()) == 0 ? 0 : 1);
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(fs::exists(stage.root().host("/Applications/file")));
  // Who is no root could not remove it otherwise.
  mode("/Applications", 0755);
}

TEST_F(StageUserFilesTest, WithoutAHomeNothingIsThrownAway) {
  stage.file("/Applications/Tamo.app/file", "bytes");
  stage.root().set("home", "/Users/nobody");
  EXPECT_FALSE(userFiles.moveToTrash("/Applications/Tamo.app"));
  EXPECT_TRUE(fs::exists(stage.root().host("/Applications/Tamo.app/file")));
}

TEST_F(StageUserFilesTest, ATrashThatTakesNothingLeavesTheItemWhereItIs) {
  stage.file("/Applications/Tamo.app/file", "bytes");
  stage.file("/Users/tamo/.Trash", "no folder");
  EXPECT_FALSE(userFiles.moveToTrash("/Applications/Tamo.app"));
  EXPECT_TRUE(fs::exists(stage.root().host("/Applications/Tamo.app/file")));
}

}  // namespace
}  // namespace tamo::stage
