#include "app/tamo_core_config.hpp"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

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

/// What the Mac's bundle is built with is told by its build file alone.
TEST(TamoCoreConfigTest, TheMacsProgramIsBuiltAsTheShippedOne) {
  std::ostringstream text;
  text << std::ifstream(TAMO_SOURCE_DIR "/platform/macos/CMakeLists.txt").rdbuf();
  const auto constants = text.str().find("TAMO_WRITES_RECEIPTS");
  ASSERT_NE(constants, std::string::npos);
  EXPECT_EQ(
      text.str().substr(constants).rfind("TAMO_WRITES_RECEIPTS=false TAMO_PROOF_HOME=std::nullopt)\n", 0),
      0U);
  EXPECT_EQ(text.str().find("TAMO_WRITES_RECEIPTS", constants + 1), std::string::npos);
}

}  // namespace
}  // namespace tamo
