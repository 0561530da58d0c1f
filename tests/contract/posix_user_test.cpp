#include "platform/posix/posix_user.hpp"

#include <cstdlib>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

namespace tamo::platform {
namespace {

TEST(PosixUserTest, TheRealUsersEntryIsTheDatabases) {
  const PosixUser user;
  EXPECT_EQ(user.realUserID(), ::getuid());
  const auto* known = ::getpwuid(::getuid());
  const auto entry = user.passwordEntry();
  ASSERT_EQ(entry.has_value(), known != nullptr);
  if (entry) {
    EXPECT_EQ(entry->home, known->pw_dir);
  }
}

/// The two agree in nearly every shell, and in every one that runs tests.
TEST(PosixUserTest, TheHomeIsThatOfTheDatabaseWhateverTheEnvironmentSays) {
  const auto entry = PosixUser().passwordEntry();
  const char* home = std::getenv("HOME");
  const auto before = home == nullptr ? std::nullopt : std::optional<std::string>(home);
  for (const char* elsewhere : {"/elsewhere", ""}) {
    ::setenv("HOME", elsewhere, 1);
    const auto asked = PosixUser().passwordEntry();
    EXPECT_EQ(asked.has_value(), entry.has_value());
    if (asked && entry) {
      EXPECT_EQ(asked->home, entry->home);
    }
  }
  before ? ::setenv("HOME", before->c_str(), 1) : ::unsetenv("HOME");
}

TEST(PosixUserTest, NoEntryAndNoHomeAreDifferent) {
  EXPECT_FALSE(passwordEntryFrom(nullptr));
  const passwd homeless{};
  const auto entry = passwordEntryFrom(&homeless);
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->home, std::nullopt);
}

TEST(PosixUserTest, AnEmptyHomeIsAHome) {
  char empty[] = "";
  passwd found{};
  found.pw_dir = empty;
  const auto entry = passwordEntryFrom(&found);
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->home, "");
}

}  // namespace
}  // namespace tamo::platform
