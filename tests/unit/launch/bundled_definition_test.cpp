#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "contract/binary_list_builder.hpp"
#include "launch/launch_job.hpp"
#include "unit/launch/launch_rig.hpp"

/// Which entries of a launchd property list make a definition, and in which forms.
namespace tamo {
namespace {

using Words = std::vector<std::string>;

const std::string oneWord = "<key>ProgramArguments</key><array><string>/a/core</string></array>";

std::optional<LaunchJob::Definition> bundledBy(const std::string& entries) {
  return LaunchJob::bundled(plistOf(entries));
}

TEST(BundledFormTest, ABinaryListIsRead) {
  const auto list = BinaryListBuilder()
                        .addDictionary("\x01\x02", "\x03\x04")
                        .add(std::string("\x5F\x10\x10") + "ProgramArguments")
                        .addText("ExitTimeOut")
                        .addArray("\x05\x06")
                        .add("\x10\x09")
                        .addText("/a/core")
                        .addText("--serve")
                        .bytes();
  const auto definition = LaunchJob::bundled(list);
  EXPECT_EQ(definition.value().arguments, (Words{"/a/core", "--serve"}));
  EXPECT_EQ(definition.value().exitTimeout, 9);
}

TEST(BundledFormTest, AListThatIsCutOffIsAbsent) {
  const auto whole = plistOf(oneWord);
  EXPECT_TRUE(LaunchJob::bundled(whole));
  EXPECT_EQ(LaunchJob::bundled(whole.substr(0, whole.size() / 2)), std::nullopt);
}

TEST(BundledEntriesTest, ArgumentsOfAnInnerDictionaryDoNotCount) {
  EXPECT_EQ(bundledBy("<key>Job</key><dict>" + oneWord + "</dict>"), std::nullopt);
  EXPECT_EQ(LaunchJob::bundled("<plist version=\"1.0\"><array><dict>" + oneWord + "</dict></array></plist>"),
            std::nullopt);
}

TEST(BundledEntriesTest, ATimeoutOfAnInnerDictionaryDoesNotCount) {
  const auto definition =
      bundledBy(oneWord + "<key>Job</key><dict><key>ExitTimeOut</key><integer>5</integer></dict>");
  EXPECT_EQ(definition.value().exitTimeout, std::nullopt);
}

TEST(BundledEntriesTest, TheKeysAreExact) {
  for (const std::string key : {"programarguments", "ProgramArgument", "Program Arguments",
                                "ProgramArguments ", "Arguments", "Program"})
    EXPECT_EQ(bundledBy("<key>" + key + "</key><array><string>a</string></array>"), std::nullopt) << key;
  for (const std::string key : {"ExitTimeout", "exittimeout", "Exit Timeout", "ExitTimeOut ", "TimeOut"})
    EXPECT_EQ(bundledBy(oneWord + "<key>" + key + "</key><integer>5</integer>").value().exitTimeout,
              std::nullopt)
        << key;
}

TEST(BundledEntriesTest, TheProgramIsNoArgument) {
  EXPECT_EQ(bundledBy("<key>Program</key><string>/p</string>"), std::nullopt);
  EXPECT_EQ(bundledBy("<key>Program</key><string>/p</string>" + oneWord +
                      "<key>BundleProgram</key><string>Contents/MacOS/p</string>")
                .value()
                .arguments,
            Words{"/a/core"});
}

TEST(BundledEntriesTest, TextsAreKeptAsTheyAre) {
  const auto definition = bundledBy(
      "<key>ProgramArguments</key><array><string> a b </string><string></string>"
      "<string>~/x/../y</string><string>\"q\" $HOME</string></array>");
  EXPECT_EQ(definition.value().arguments, (Words{" a b ", "", "~/x/../y", "\"q\" $HOME"}));
}

TEST(BundledEntriesTest, OneArgumentOfNoWordsIsADefinition) {
  EXPECT_EQ(bundledBy("<key>ProgramArguments</key><array><string></string></array>").value().arguments,
            Words{""});
}

TEST(BundledEntriesTest, OneArgumentThatIsNoTextMakesItAbsentWhereverItStands) {
  const std::string text = "<string>a</string>";
  for (const std::string other :
       {"<true/>", "<real>1</real>", "<dict/>", "<data>YQ==</data>", "<date>2026-01-01T00:00:00Z</date>"}) {
    EXPECT_EQ(bundledBy("<key>ProgramArguments</key><array>" + other + text + "</array>"), std::nullopt)
        << other;
    EXPECT_EQ(bundledBy("<key>ProgramArguments</key><array>" + text + other + "</array>"), std::nullopt)
        << other;
  }
}

TEST(BundledTimeoutTest, IsExactToTheLastOfSixtyFourBits) {
  struct Row {
    const char* value;
    std::optional<std::int64_t> timeout;
  };
  constexpr auto most = std::numeric_limits<std::int64_t>::max();
  constexpr auto least = std::numeric_limits<std::int64_t>::min();
  for (const auto& [value, timeout] : {
           Row{"<integer>2147483648</integer>", 2'147'483'648},
           Row{"<integer>9007199254740993</integer>", 9'007'199'254'740'993},
           Row{"<integer>9223372036854775807</integer>", most},
           Row{"<integer>-9223372036854775808</integer>", least},
           Row{"<integer>9223372036854775808</integer>", std::nullopt},
           Row{"<real>4294967297</real>", 4'294'967'297},
           Row{"<real>-9223372036854775808</real>", least},
           Row{"<real>9223372036854775808</real>", std::nullopt},
           Row{"<real>1e300</real>", std::nullopt},
           Row{"<real>-0.5</real>", std::nullopt},
           Row{"<real>0.0</real>", 0},
           Row{"<false/>", std::nullopt},
           Row{"<string></string>", std::nullopt},
           Row{"<date>2026-01-01T00:00:00Z</date>", std::nullopt},
           Row{"<data>BQ==</data>", std::nullopt},
       }) {
    const auto definition = bundledBy(oneWord + "<key>ExitTimeOut</key>" + value);
    EXPECT_EQ(definition.value().arguments, Words{"/a/core"}) << value;
    EXPECT_EQ(definition.value().exitTimeout, timeout) << value;
  }
}

}  // namespace
}  // namespace tamo
