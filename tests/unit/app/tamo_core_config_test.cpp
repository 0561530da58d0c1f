#include "app/tamo_core_config.hpp"

#include <gtest/gtest.h>

namespace tamo {
namespace {

TEST(TamoCoreConfigTest, TheShippedBuildHoldsTheFixedValues) {
  constexpr TamoCoreConfig config;
  EXPECT_EQ(config.label, "studio.pell.tamo.core");
  EXPECT_EQ(config.coreBundleID, "studio.pell.Tamo.Core");
  EXPECT_EQ(config.urlScheme, "tamo-core");
  EXPECT_FALSE(config.writesReceipts);
  EXPECT_FALSE(config.proofHome.has_value());
}

TEST(TamoCoreConfigTest, BothIdentifiersAre21CharactersLong) {
  static_assert(TamoCoreConfig().label.size() == 21);
  static_assert(TamoCoreConfig().coreBundleID.size() == 21);
}

TEST(TamoCoreConfigTest, ATestBuildSetsItsOwnValuesAtCompileTime) {
  constexpr TamoCoreConfig config{.writesReceipts = true, .proofHome = "/tmp/x"};
  static_assert(config.writesReceipts && config.proofHome == "/tmp/x");
  EXPECT_EQ(config.label, TamoCoreConfig().label);
}

}  // namespace
}  // namespace tamo
