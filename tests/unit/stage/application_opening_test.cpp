#include "platform/stage/application_opening.hpp"

#include <gtest/gtest.h>

#include "temporary_stage.hpp"

namespace tamo::stage {
namespace {

class ApplicationOpeningTest : public ::testing::Test {
 protected:
  /// "DOMAIN CODE" of the error, or "opened".
  [[nodiscard]] std::string opened(const std::string& path) const {
    const auto error = openApplicationNow(stage.root, path);
    return error ? error->domain() + " " + std::to_string(error->code()) : "opened";
  }

  TemporaryStage stage;
};

TEST_F(ApplicationOpeningTest, AnErrorThatWasOrderedComesOnce) {
  stage.root.set("next-open-error", "SomeDomain\t77\tnot today");
  EXPECT_EQ(opened("/Nowhere.app"), "SomeDomain 77");
  EXPECT_EQ(opened("/Nowhere.app"), "NSCocoaErrorDomain 260");
}

TEST_F(ApplicationOpeningTest, WhatIsNotOpenedIsNotInFront) {
  stage.write("/A.app/Contents/Info.plist",
              "<plist><dict><key>CFBundleExecutable</key><string>A</string></dict></plist>");
  EXPECT_EQ(opened("/Nowhere.app"), "NSCocoaErrorDomain 260");
  EXPECT_EQ(opened("/A.app"), "NSCocoaErrorDomain 3587");
  EXPECT_EQ(stage.read("/.stage/front"), "");
}

}  // namespace
}  // namespace tamo::stage
