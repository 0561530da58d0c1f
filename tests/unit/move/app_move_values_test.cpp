#include <gtest/gtest.h>

#include "move/app_move.hpp"

namespace tamo::AppMove {
namespace {

TEST(BuildsTest, NothingIsInstalledUnlessItIsSaid) {
  EXPECT_FALSE(Builds().installedExists);
  EXPECT_EQ(plan({}), Plan::copy);
}

TEST(ResultTest, NothingIsInPlaceUnlessItIsSaid) {
  EXPECT_FALSE(Result().ok);
}

}  // namespace
}  // namespace tamo::AppMove
