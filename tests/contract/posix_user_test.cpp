#include "platform/posix/posix_user.hpp"

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
