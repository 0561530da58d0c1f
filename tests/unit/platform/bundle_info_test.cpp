#include "platform/bundle_info.hpp"

#include <gtest/gtest.h>

#include "contract/binary_list_builder.hpp"
#include "fakes/fake_files.hpp"

namespace tamo::platform {
namespace {

class BundleInfoTest : public ::testing::Test {
 protected:
  void placeInfo(const std::string& value) {
    files.contents["/A.app/Contents/Info.plist"] = "<plist>" + value + "</plist>";
  }

  fakes::Ledger ledger;
  fakes::FakeClock clock{ledger};
  fakes::FakeFiles files{ledger, clock};
};

TEST_F(BundleInfoTest, TheIdentifierIsReadFromTheInfoFile) {
  placeInfo("<dict><key>CFBundleIdentifier</key><string>a.b</string></dict>");
  EXPECT_EQ(bundleIdentifier(files, "/A.app"), "a.b");
  EXPECT_EQ(bundleIdentifier(files, "/A.app/"), "a.b");
}

TEST_F(BundleInfoTest, AFolderWithoutAnInfoFileIsNoBundle) {
  files.directories.insert("/A.app");
  EXPECT_FALSE(bundleInfo(files, "/A.app"));
  EXPECT_EQ(bundleIdentifier(files, "/A.app"), std::nullopt);
}

TEST_F(BundleInfoTest, AnInfoFileThatCannotBeReadGivesNothing) {
  placeInfo("<dict><key>CFBundleIdentifier</key><string>a.b</string></dict>");
  files.failsToRead = true;
  EXPECT_EQ(bundleIdentifier(files, "/A.app"), std::nullopt);
}

TEST_F(BundleInfoTest, AnInfoFileThatIsNoDictionaryGivesNothing) {
  for (const auto* value : {"<array/>", "<string>CFBundleIdentifier</string>", "<dict><key>a</key></dict>"}) {
    placeInfo(value);
    EXPECT_FALSE(bundleInfo(files, "/A.app")) << value;
  }
}

TEST_F(BundleInfoTest, AValueThatIsNoTextGivesNothing) {
  placeInfo("<dict><key>CFBundleVersion</key><integer>12</integer></dict>");
  EXPECT_TRUE(bundleInfo(files, "/A.app"));
  EXPECT_EQ(bundleText(files, "/A.app", "CFBundleVersion"), std::nullopt);
  EXPECT_EQ(bundleText(files, "/A.app", "CFBundleIdentifier"), std::nullopt);
}

TEST_F(BundleInfoTest, ABundleThatDeclaresNoIdentifierHasNone) {
  placeInfo("<dict><key>CFBundleName</key><string>a.b</string></dict>");
  EXPECT_TRUE(bundleInfo(files, "/A.app"));
  EXPECT_EQ(bundleIdentifier(files, "/A.app"), std::nullopt);
}

TEST_F(BundleInfoTest, AnEmptyTextIsPresent) {
  placeInfo("<dict><key>CFBundleVersion</key><string/><key>CFBundleIdentifier</key><string></string></dict>");
  EXPECT_EQ(bundleText(files, "/A.app", "CFBundleVersion"), "");
  EXPECT_EQ(bundleIdentifier(files, "/A.app"), "");
}

TEST_F(BundleInfoTest, AnEmptyDictionaryIsThereAndSaysNothing) {
  placeInfo("<dict/>");
  EXPECT_TRUE(bundleInfo(files, "/A.app"));
  EXPECT_EQ(bundleIdentifier(files, "/A.app"), std::nullopt);
}

TEST_F(BundleInfoTest, ABinaryInfoFileIsReadAsWell) {
  files.contents["/A.app/Contents/Info.plist"] = BinaryListBuilder()
                                                     .addDictionary("\1", "\2")
                                                     .add(
                                                         "\x5F\x10\x12"
                                                         "CFBundleIdentifier")
                                                     .addText("a.b")
                                                     .bytes();
  EXPECT_EQ(bundleIdentifier(files, "/A.app"), "a.b");
}

TEST_F(BundleInfoTest, AKeyIsTheWholeKeyWithItsLetterCase) {
  placeInfo(
      "<dict><key>cfbundleidentifier</key><string>a</string><key>CFBundleIdentifier </key>"
      "<string>b</string><key>\uFEFFCFBundleIdentifier</key><string>c</string></dict>");
  EXPECT_EQ(bundleIdentifier(files, "/A.app"), std::nullopt);
}

TEST_F(BundleInfoTest, AReplacedBundleIsReadAnew) {
  placeInfo("<dict><key>CFBundleVersion</key><string>1</string></dict>");
  EXPECT_EQ(bundleText(files, "/A.app", "CFBundleVersion"), "1");
  placeInfo("<dict><key>CFBundleVersion</key><string>2</string></dict>");
  EXPECT_EQ(bundleText(files, "/A.app", "CFBundleVersion"), "2");
}

}  // namespace
}  // namespace tamo::platform
