#include "platform/stage/stage_user.hpp"

#include <gtest/gtest.h>

#include "contract/temporary_stage.hpp"

namespace tamo::stage {
namespace {

class StageUserTest : public ::testing::Test {
 protected:
  contract::TemporaryStage stage;
  StageUser user{stage.root()};
};

TEST_F(StageUserTest, TheUserIsTheStages) {
  EXPECT_EQ(user.realUserID(), 501U);
  stage.root().set("home", "/Users/other");
  ASSERT_TRUE(user.passwordEntry());
  EXPECT_EQ(user.passwordEntry()->home, "/Users/other");
}

TEST_F(StageUserTest, NoEntryAndNoHomeAreDifferentAnswers) {
  stage.root().set("home", "none");
  ASSERT_TRUE(user.passwordEntry());
  EXPECT_EQ(user.passwordEntry()->home, std::nullopt);
  stage.root().set("user", "absent");
  EXPECT_FALSE(user.passwordEntry());
}

}  // namespace
}  // namespace tamo::stage
