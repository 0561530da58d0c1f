#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "app/tamo_core_config.hpp"
#include "values/property_list.hpp"

/// What the bundle on a Mac is made of beside the program: a mistake there shows only when it is installed.
namespace tamo::platform {
namespace {

constexpr TamoCoreConfig shipped;

std::string bytesOf(const std::string& name) {
  std::ostringstream bytes;
  bytes << std::ifstream(std::string(TAMO_SOURCE_DIR) + "/platform/macos/" + name, std::ios::binary).rdbuf();
  return bytes.str();
}

std::optional<values::PropertyList> listOf(const std::string& name) {
  return values::readPropertyList(bytesOf(name));
}

std::string textAt(const values::PropertyList& list, const std::string& key) {
  const auto* entry = list.entry(key);
  const auto* text = entry == nullptr ? nullptr : entry->text();
  return text == nullptr ? "no text" : *text;
}

bool isTrueAt(const values::PropertyList& list, const std::string& key) {
  const auto* entry = list.entry(key);
  const auto* truth = entry == nullptr ? nullptr : std::get_if<bool>(&entry->value);
  return truth != nullptr && *truth;
}

TEST(BundleFilesTest, TheCompanionIsAnApplicationWithoutADockIcon) {
  const auto info = listOf("Info.plist.in");
  ASSERT_TRUE(info);
  EXPECT_EQ(textAt(*info, "CFBundleIdentifier"), shipped.coreBundleID);
  EXPECT_EQ(textAt(*info, "CFBundleExecutable"), "Tamo Core");
  EXPECT_EQ(textAt(*info, "CFBundlePackageType"), "APPL");
  EXPECT_EQ(textAt(*info, "NSPrincipalClass"), "NSApplication");
  EXPECT_EQ(textAt(*info, "LSMinimumSystemVersion"), "13.0");
  EXPECT_TRUE(isTrueAt(*info, "LSUIElement"));
}

TEST(BundleFilesTest, TheVersionsAreTextsOfTheBuild) {
  const auto info = listOf("Info.plist.in");
  ASSERT_TRUE(info);
  EXPECT_EQ(textAt(*info, "CFBundleShortVersionString"), "${PROJECT_VERSION}");
  EXPECT_EQ(textAt(*info, "CFBundleVersion"), "${TAMO_BUILD}");
}

TEST(BundleFilesTest, TheSystemIsToldOfTheScheme) {
  const auto info = listOf("Info.plist.in");
  ASSERT_TRUE(info && info->entry("CFBundleURLTypes") && info->entry("CFBundleURLTypes")->array());
  const auto& types = *info->entry("CFBundleURLTypes")->array();
  ASSERT_EQ(types.size(), 1U);
  ASSERT_TRUE(types.front().entry("CFBundleURLSchemes") &&
              types.front().entry("CFBundleURLSchemes")->array());
  const auto& schemes = *types.front().entry("CFBundleURLSchemes")->array();
  ASSERT_EQ(schemes.size(), 1U);
  EXPECT_EQ(*schemes.front().text(), shipped.urlScheme);
}

/// A second instance has to queue at the job lock, and an action must not be cut off when the user logs out.
TEST(BundleFilesTest, NothingHindersASecondInstanceOrEndsOneEarly) {
  const auto info = listOf("Info.plist.in");
  ASSERT_TRUE(info);
  for (const auto* key : {"LSBackgroundOnly", "LSMultipleInstancesProhibited", "NSSupportsSuddenTermination",
                          "NSSupportsAutomaticTermination"}) {
    EXPECT_EQ(info->entry(key), nullptr) << key;
  }
}

/// The system asks the user before a program may touch these folders, and a move begins in one of them.
TEST(BundleFilesTest, TheUserIsToldWhyAMoveTouchesAFolder) {
  const auto info = listOf("Info.plist.in");
  ASSERT_TRUE(info);
  for (const auto* place :
       {"DesktopFolder", "DocumentsFolder", "DownloadsFolder", "NetworkVolumes", "RemovableVolumes"}) {
    const auto key = "NS" + std::string(place) + "UsageDescription";
    EXPECT_TRUE(textAt(*info, key).starts_with("Tamo moves itself from ")) << key;
  }
}

TEST(BundleFilesTest, TheAgentIsDefinedUnderItsLabel) {
  const auto agent = listOf(std::string(shipped.label) + ".plist");
  ASSERT_TRUE(agent);
  EXPECT_EQ(textAt(*agent, "Label"), shipped.label);
  EXPECT_EQ(textAt(*agent, "AssociatedBundleIdentifiers"), "studio.pell.Tamo");
  EXPECT_TRUE(isTrueAt(*agent, "RunAtLoad"));
  EXPECT_TRUE(isTrueAt(*agent, "KeepAlive"));
}

/// Without arguments or a timeout that is a number, a changed definition would never be noticed.
TEST(BundleFilesTest, TheAgentsDefinitionCanBeCompared) {
  const auto agent = listOf(std::string(shipped.label) + ".plist");
  ASSERT_TRUE(agent && agent->entry("ProgramArguments") && agent->entry("ExitTimeOut"));
  const auto* arguments = agent->entry("ProgramArguments")->array();
  ASSERT_TRUE(arguments && !arguments->empty() && arguments->front().text());
  EXPECT_EQ(*arguments->front().text(), "/Applications/Tamo.app/Contents/Library/LoginItems/Tamo Core.app/" +
                                            textAt(*agent, "BundleProgram"));
  EXPECT_EQ(values::exactInt64(*agent->entry("ExitTimeOut")), 20);
}

/// A process that dies before its logger is made has to say so where the other lines of the log are.
TEST(BundleFilesTest, LastWordsAreFoundWhereTheLogIs) {
  const auto channel = "os_log_create(\"" + std::string(shipped.coreBundleID) + "\", \"lifecycle\")";
  EXPECT_NE(bytesOf("mac_log.cpp").find(channel), std::string::npos) << channel;
}

/// An application in a sandbox could neither run launchctl nor signal the Core.
TEST(BundleFilesTest, NoEntitlementIsAskedFor) {
  const auto entitlements = listOf("TamoCore.entitlements");
  ASSERT_TRUE(entitlements && entitlements->dictionary());
  EXPECT_TRUE(entitlements->dictionary()->empty());
}

}  // namespace
}  // namespace tamo::platform
