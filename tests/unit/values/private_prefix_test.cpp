#include "values/private_prefix.hpp"

#include <gtest/gtest.h>
#include <vector>

namespace tamo::values {
namespace {

const SameItem always = [](const std::string&, const std::string&) { return true; };
const SameItem never = [](const std::string&, const std::string&) { return false; };

TEST(PrivatePrefixTest, TheShorterNameOfTheSameItemIsTaken) {
  EXPECT_EQ(withoutPrivatePrefix("/private/tmp", always), "/tmp");
  EXPECT_EQ(withoutPrivatePrefix("/private/var/folders/x/T", always), "/var/folders/x/T");
  EXPECT_EQ(withoutPrivatePrefix("/private/usrlocal", always), "/usrlocal");
}

TEST(PrivatePrefixTest, BothNamesAreAskedAbout) {
  std::vector<std::string> asked;
  const SameItem noting = [&asked](const std::string& left, const std::string& right) {
    asked = {left, right};
    return false;
  };
  EXPECT_EQ(withoutPrivatePrefix("/private/tmp/x", noting), "/private/tmp/x");
  EXPECT_EQ(asked, (std::vector<std::string>{"/private/tmp/x", "/tmp/x"}));
}

TEST(PrivatePrefixTest, AnotherOrMissingItemKeepsIt) {
  EXPECT_EQ(withoutPrivatePrefix("/private/tmp", never), "/private/tmp");
}

TEST(PrivatePrefixTest, OtherPathsAreLeftAlone) {
  for (const auto* path : {"/", "/private", "/privateer/tmp", "/tmp", "/Users/private/tmp"})
    EXPECT_EQ(withoutPrivatePrefix(path, always), path);
}

TEST(PrivatePrefixTest, ASystemFolderIsNeverReachedThatWay) {
  for (const auto* folder : {"/Applications", "/Library", "/System", "/Users", "/Volumes", "/bin", "/cores",
                             "/dev", "/opt", "/sbin", "/usr"}) {
    const auto path = std::string("/private") + folder;
    EXPECT_EQ(withoutPrivatePrefix(path, always), path);
    EXPECT_EQ(withoutPrivatePrefix(path + "/Tamo.app", always), path + "/Tamo.app");
  }
}

TEST(PrivatePrefixTest, WithoutALookItIsDroppedWhereEveryMacHasItsLinks) {
  EXPECT_EQ(withoutPrivatePrefix("/private/tmp"), "/tmp");
  EXPECT_EQ(withoutPrivatePrefix("/private/etc/hosts"), "/etc/hosts");
  EXPECT_EQ(withoutPrivatePrefix("/private/var/folders/x/T/Tamo.app"), "/var/folders/x/T/Tamo.app");
}

TEST(PrivatePrefixTest, WithoutALookAnythingElseIsAnotherPlace) {
  for (const auto* path : {"/", "/private", "/privateer/tmp", "/tmp", "/var/private/tmp", "/private/tmpfiles",
                           "/private/variety", "/private/home/u", "/private/Tmp", "/private/private/tmp",
                           "/private/Users/u", "/private/Applications/Tamo.app"}) {
    EXPECT_EQ(withoutPrivatePrefix(path), path);
  }
}

}  // namespace
}  // namespace tamo::values
