#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "fakes/fake_files.hpp"
#include "move/app_move.hpp"
#include "unit/move/info_files.hpp"

/// Builds: what a version text comes to, where it is read, and how two of them compare.
namespace tamo::AppMove {
namespace {

using namespace std::string_literals;

constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();

struct VersionRow {
  std::string version;
  std::optional<std::int64_t> build;
};

void expectBuilds(const std::vector<VersionRow>& table) {
  for (const auto& row : table)
    EXPECT_EQ(buildNumber(row.version), row.build) << "\"" << row.version << "\"";
}

TEST(BuildNumberTest, LeadingZerosCountNothing) {
  expectBuilds({{"0042", 42},
                {"00", 0},
                {"-0", 0},
                {"+0.9", 0},
                {"-007", -7},
                {"+008.1", 8},
                {"00000000000000000000000042.1", 42}});
}

TEST(BuildNumberTest, EveryDigitCounts) {
  expectBuilds({{"9007199254740993", 9007199254740993},
                {"4294967338", 4294967338},
                {"-2147483649.1", -2147483649},
                {"9223372036854775807", most},
                {"-9223372036854775808", least},
                {"20260101120000", 20260101120000}});
}

TEST(BuildNumberTest, ANumberOutOfRangeIsNone) {
  expectBuilds({{"9223372036854775808.1", std::nullopt},
                {"-9223372036854775809", std::nullopt},
                {"18446744073709551658", std::nullopt},
                {"99999999999999999999999999", std::nullopt}});
}

TEST(BuildNumberTest, OnlyTheFirstPieceIsLookedAt) {
  expectBuilds({{"..+8.x", 8},
                {"12.99999999999999999999", 12},
                {"7. 8", 7},
                {"-.5", std::nullopt},
                {"+.1", std::nullopt},
                {"1a.2", std::nullopt},
                {"..1a.2", std::nullopt},
                {" .2", std::nullopt},
                {"1 .2", std::nullopt}});
}

TEST(BuildNumberTest, NoOtherCharacterIsADigitASignOrADot) {
  for (const auto& version :
       {"42\n"s, "\t42"s,         "\r42"s,         "42\u00A0"s, "\u200B42"s,  "42\0"s, "42\0.1"s,
        "4e2"s,  "4E2"s,          "4'200"s,        "1_000"s,    "--3"s,       "++3"s,  "-+3"s,
        "- 3"s,  "\u22123"s,      "3-"s,           "#42"s,      "v42"s,       "b42"s,  "0b1"s,
        "0o7"s,  "\uFF14\uFF12"s, "\u0664\u0662"s, "42\u3002"s, "42\uFF0E1"s, "42/1"s, "\xFF"s}) {
    EXPECT_EQ(buildNumber(version), std::nullopt) << "\"" << version << "\"";
  }
}

TEST(PlanTest, BuildsThatDifferInTheLastDigitDiffer) {
  const auto over = [](std::int64_t source, std::int64_t installed) {
    return plan({.source = source, .installed = installed, .installedExists = true});
  };
  EXPECT_EQ(over(9007199254740993, 9007199254740992), Plan::replace);
  EXPECT_EQ(over(9007199254740992, 9007199254740993), Plan::openInstalled);
  EXPECT_EQ(over(most, most - 1), Plan::replace);
  EXPECT_EQ(over(most, least), Plan::replace);
  EXPECT_EQ(over(least, most), Plan::openInstalled);
  EXPECT_EQ(over(4294967296, 42), Plan::replace);
  EXPECT_EQ(over(10, 9), Plan::replace) << "not as texts";
}

TEST(PlanTest, TheCasesStandInTheirOrder) {
  EXPECT_EQ(static_cast<int>(Plan::copy), 0);
  EXPECT_EQ(static_cast<int>(Plan::replace), 1);
  EXPECT_EQ(static_cast<int>(Plan::openInstalled), 2);
}

class BuildTest : public ::testing::Test {
 protected:
  void placeEntries(const std::string& entries) { files.contents[info] = infoWith(entries); }
  [[nodiscard]] std::optional<std::int64_t> read() const { return build(files, "/A.app"); }

  const std::string info = "/A.app/Contents/Info.plist";
  fakes::Ledger ledger;
  fakes::FakeClock clock{ledger};
  fakes::FakeFiles files{ledger, clock};
};

TEST_F(BuildTest, ABinaryInfoFileIsReadLikeAnyOther) {
  files.contents[info] = binaryInfo("studio.pell.Tamo", "4211.3");
  EXPECT_EQ(read(), 4211);
}

TEST_F(BuildTest, ATextOfWideCharactersIsReadLikeAnyOther) {
  files.contents[info] = BinaryListBuilder()
                             .addDictionary("\x01", "\x02")
                             .add(
                                 "\x5F\x10\x0F"
                                 "CFBundleVersion")
                             .add(
                                 "\x62\0"
                                 "4\0"
                                 "2"s)
                             .bytes();
  EXPECT_EQ(read(), 42);
}

TEST_F(BuildTest, ADictionaryWithAKeyThatIsNoTextTellsNoBuild) {
  files.contents[info] = BinaryListBuilder()
                             .addDictionary("\x01\x03", "\x02\x02")
                             .add(
                                 "\x5F\x10\x0F"
                                 "CFBundleVersion")
                             .addText("42")
                             .add("\x10\x07")
                             .bytes();
  EXPECT_EQ(read(), std::nullopt);
}

TEST_F(BuildTest, OneFileIsReadAndNothingElseIsLookedAt) {
  placeEntries(versionEntry("4211"));
  EXPECT_EQ(read(), 4211);
  EXPECT_EQ(ledger.texts(), std::vector<std::string>{"files: read " + info});
}

TEST_F(BuildTest, AVersionElsewhereInTheBundleIsNotLookedFor) {
  for (const auto* path :
       {"/A.app/Info.plist", "/A.app/Contents/version.plist", "/A.app/Resources/Info.plist",
        "/A.app/Contents/info.plist", "/A.app/Contents/Resources/Info.plist"}) {
    files.contents[path] = infoWith(versionEntry("4211"));
  }
  EXPECT_EQ(read(), std::nullopt);
}

TEST_F(BuildTest, AFileThatIsThereAndCannotBeReadTellsNoBuild) {
  placeEntries(versionEntry("4211"));
  files.failsToRead = true;
  EXPECT_EQ(read(), std::nullopt);
}

TEST_F(BuildTest, TheOutermostDictionaryIsMeant) {
  const std::string nested = "<key>Inner</key><dict>" + versionEntry("4211") + "</dict>";
  placeEntries(nested);
  EXPECT_EQ(read(), std::nullopt);
  placeEntries(nested + versionEntry("7") + nested);
  EXPECT_EQ(read(), 7);
}

TEST_F(BuildTest, AListWithoutADictionaryAtItsTopTellsNoBuild) {
  for (const auto& top : {"<array><dict>" + versionEntry("4211") + "</dict></array>", "<array/>"s,
                          "<string>CFBundleVersion</string>"s, "<string>4211</string>"s}) {
    files.contents[info] = "<plist version=\"1.0\">" + top + "</plist>";
    EXPECT_EQ(read(), std::nullopt) << top;
  }
}

TEST_F(BuildTest, AnEmptyFileOrPlainTextTellsNoBuild) {
  for (const auto* bytes : {"", "4211", "CFBundleVersion = 4211;\n", "{\"CFBundleVersion\":\"4211\"}"}) {
    files.contents[info] = bytes;
    EXPECT_EQ(read(), std::nullopt) << bytes;
  }
}

TEST_F(BuildTest, TheKeyIsComparedExactly) {
  for (const auto* key :
       {"cfbundleversion", "CFBundleVersion ", " CFBundleVersion", "CFBundleShortVersionString",
        "CFBundleVersions", "BundleVersion", "CFBundleInfoDictionaryVersion"}) {
    placeEntries("<key>" + std::string(key) + "</key><string>4211</string>");
    EXPECT_EQ(read(), std::nullopt) << key;
  }
}

TEST_F(BuildTest, OnlyATextIsAVersion) {
  for (const auto* value : {"<array><string>4211</string></array>",
                            "<dict><key>CFBundleVersion</key><string>4211</string></dict>",
                            "<data>NDIxMQ==</data>", "<date>2024-02-29T12:34:56Z</date>", "<false/>"}) {
    placeEntries(std::string("<key>CFBundleVersion</key>") + value);
    EXPECT_EQ(read(), std::nullopt) << value;
  }
}

TEST_F(BuildTest, TheTextIsTakenAsItStands) {
  for (const auto* version : {"", " 4211", "4211 ", "\n4211\n"}) {
    placeEntries(versionEntry(version));
    EXPECT_EQ(read(), std::nullopt) << "\"" << version << "\"";
  }
}

TEST_F(BuildTest, TheFileIsReadAfreshEachTime) {
  placeEntries(versionEntry("41"));
  EXPECT_EQ(read(), 41);
  placeEntries(versionEntry("42"));
  EXPECT_EQ(read(), 42);
  files.contents.clear();
  EXPECT_EQ(read(), std::nullopt);
}

}  // namespace
}  // namespace tamo::AppMove
