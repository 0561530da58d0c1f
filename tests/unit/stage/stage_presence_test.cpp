#include "stage/common/stage_presence.hpp"

#include <gtest/gtest.h>

#include "temporary_stage.hpp"

namespace tamo::stage {
namespace {

TEST(StagePresenceTest, AStageIsThereUntilItIsRemoved) {
  const TemporaryStage stage;
  const StagePresence presence(stage.path);
  EXPECT_TRUE(presence.isThere());
  std::filesystem::remove_all(stage.path);
  EXPECT_FALSE(presence.isThere());
}

TEST(StagePresenceTest, AnotherStageAtTheSamePlaceIsAnother) {
  const TemporaryStage stage;
  const StagePresence presence(stage.path);
  const auto aside = stage.path + "-aside";
  std::filesystem::rename(stage.path, aside);
  std::filesystem::create_directory(stage.path);
  EXPECT_FALSE(presence.isThere());
  std::filesystem::remove_all(aside);
}

}  // namespace
}  // namespace tamo::stage
