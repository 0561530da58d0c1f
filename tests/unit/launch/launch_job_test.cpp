#include "launch/launch_job.hpp"

#include <gtest/gtest.h>
#include <limits>

#include "unit/launch/launch_rig.hpp"

namespace tamo {
namespace {

using LaunchJob::Definition;
using Words = std::vector<std::string>;

constexpr auto absent = std::nullopt;
const std::string argumentsBlock = "\targuments = {\n\t\t/a/core\n\t\t--serve\n\t}\n";
const Words someWords{"/a/core", "--serve"};

std::optional<Definition> loadedFrom(const std::string& lines) {
  return LaunchJob::loaded(printOf(lines));
}

/// What a print says of the timeout when it has arguments and this line.
std::optional<std::int64_t> timeoutBy(const std::string& lines) {
  return loadedFrom(argumentsBlock + lines).value().exitTimeout;
}

TEST(LoadedTest, TheArgumentsAndTheTimeoutAreRead) {
  const auto definition = loadedFrom(argumentsBlock + "\texit timeout = 5\n");
  EXPECT_EQ(definition.value().arguments, someWords);
  EXPECT_EQ(definition.value().exitTimeout, 5);
}

TEST(LoadedTest, TheTimeoutMayComeFirst) {
  EXPECT_EQ(loadedFrom("\texit timeout = 5\n" + argumentsBlock).value().exitTimeout, 5);
}

TEST(LoadedTest, WithoutATimeoutLineTheTimeoutIsAbsent) {
  EXPECT_EQ(timeoutBy(""), absent);
}

TEST(LoadedTest, ATimeoutIsADecimalIntegerOfAtMost64Bits) {
  struct Row {
    const char* rest;
    std::optional<std::int64_t> timeout;
  };
  constexpr auto most = std::numeric_limits<std::int64_t>::max();
  constexpr auto least = std::numeric_limits<std::int64_t>::min();
  for (const auto& [rest, timeout] : {
           Row{"5", 5},
           Row{"0", 0},
           Row{"007", 7},
           Row{"+5", 5},
           Row{"-5", -5},
           Row{"  5  ", absent},
           Row{"5 \t", 5},
           Row{"5s", absent},
           Row{"5 s", absent},
           Row{"5.0", absent},
           Row{"0x5", absent},
           Row{"five", absent},
           Row{"+", absent},
           Row{"-", absent},
           Row{"+-5", absent},
           Row{"++5", absent},
           Row{"5\r", absent},
           Row{"9223372036854775807", most},
           Row{"9223372036854775808", absent},
           Row{"-9223372036854775808", least},
           Row{"-9223372036854775809", absent},
       }) {
    EXPECT_EQ(timeoutBy("\texit timeout = " + std::string(rest) + "\n"), timeout) << rest;
  }
}

TEST(LoadedTest, ALaterTimeoutLineOverwritesAnEarlierOne) {
  EXPECT_EQ(timeoutBy("\texit timeout = 5\n\texit timeout = 9\n"), 9);
  EXPECT_EQ(timeoutBy("\texit timeout = 5\n\texit timeout = 9s\n"), absent);
}

// Stripping takes the last blank of such a line, and with it what the line has to begin with.
TEST(LoadedTest, ATimeoutLineThatEndsAtItsBlankIsNoTimeoutLine) {
  EXPECT_EQ(timeoutBy("\texit timeout = 5\n\texit timeout = \n"), 5);
}

TEST(LoadedTest, OnlyALineThatBeginsSoIsATimeoutLine) {
  EXPECT_EQ(timeoutBy("\tlast exit timeout = 5\n"), absent);
  EXPECT_EQ(timeoutBy("\texit timeout =5\n"), absent);
  EXPECT_EQ(timeoutBy("\tExit timeout = 5\n"), absent);
}

TEST(LoadedTest, ATimeoutLineOutsideTheJobsOwnBlockDoesNotCount) {
  EXPECT_EQ(timeoutBy("\tnested = {\n\t\texit timeout = 5\n\t}\n"), absent);
  EXPECT_EQ(LaunchJob::loaded("exit timeout = 5\n" + printOf(argumentsBlock)).value().exitTimeout, absent);
  EXPECT_EQ(LaunchJob::loaded(printOf(argumentsBlock) + "exit timeout = 5\n").value().exitTimeout, absent);
}

TEST(LoadedTest, ATimeoutLineInASecondOutermostBlockCounts) {
  const auto text = printOf(argumentsBlock + "\texit timeout = 5\n") + "more = {\n\texit timeout = 9\n}\n";
  EXPECT_EQ(LaunchJob::loaded(text).value().exitTimeout, 9);
}

TEST(LoadedTest, NoArgumentsBlockIsAbsent) {
  EXPECT_EQ(LaunchJob::loaded(""), absent);
  EXPECT_EQ(LaunchJob::loaded("Could not find service\n"), absent);
  EXPECT_EQ(loadedFrom("\texit timeout = 5\n"), absent);
}

TEST(LoadedTest, AnEmptyArgumentsBlockIsAbsent) {
  EXPECT_EQ(loadedFrom("\targuments = {\n\t}\n\texit timeout = 5\n"), absent);
}

TEST(LoadedTest, AnArgumentsBlockThatIsNotClosedIsAbsent) {
  EXPECT_EQ(LaunchJob::loaded("job = {\n\targuments = {\n\t\t/a/core\n"), absent);
  EXPECT_EQ(LaunchJob::loaded("job = {\n\targuments = {\n\t\t/a/core\n\t};\n"), absent);
}

TEST(LoadedTest, APrintCutOffBehindTheArgumentsIsRead) {
  EXPECT_EQ(LaunchJob::loaded("job = {\n" + argumentsBlock + "\texit timeout = 5").value().exitTimeout, 5);
}

TEST(LoadedTest, ABlankLineIsAnEmptyArgument) {
  EXPECT_EQ(loadedFrom("\targuments = {\n\n\t\ta\n \t \n\t}\n").value().arguments, (Words{"", "a", ""}));
}

TEST(LoadedTest, ArgumentsAreStrippedOfBlanksAndKeepCarriageReturns) {
  EXPECT_EQ(loadedFrom("\targuments = {\n \t a b \u00A0\n\t\tc\r\n\t}\n").value().arguments,
            (Words{"a b", "c\r"}));
}

TEST(LoadedTest, WhatLooksLikeABlockIsAnArgumentInsideTheArguments) {
  EXPECT_EQ(loadedFrom("\targuments = {\n\t\tx = {\n\t\texit timeout = 3\n\t}\n").value().arguments,
            (Words{"x = {", "exit timeout = 3"}));
}

TEST(LoadedTest, AClosingBraceAmongTheArgumentsEndsThem) {
  EXPECT_EQ(loadedFrom("\targuments = {\n\t\ta\n\t\t}\n\t\tb\n\t}\n").value().arguments, Words{"a"});
}

TEST(LoadedTest, AnArgumentsBlockAtAnotherDepthIsSkipped) {
  EXPECT_EQ(loadedFrom("\tnested = {\n\t\targuments = {\n\t\t\ta\n\t\t}\n\t}\n"), absent);
  EXPECT_EQ(LaunchJob::loaded("arguments = {\n\ta\n}\n"), absent);
}

TEST(LoadedTest, ASkippedArgumentsBlockStillCountsItsBraces) {
  const auto nested = "\tnested = {\n\t\targuments = {\n\t\t\tx\n\t\t}\n\t}\n" + argumentsBlock;
  const auto definition = loadedFrom(nested + "\texit timeout = 5\n");
  EXPECT_EQ(definition.value().arguments, someWords);
  EXPECT_EQ(definition.value().exitTimeout, 5);
}

TEST(LoadedTest, ASecondArgumentsBlockIsSkippedAndClosed) {
  const auto definition =
      loadedFrom(argumentsBlock + "\targuments = {\n\t\tother\n\t}\n\texit timeout = 5\n");
  EXPECT_EQ(definition.value().arguments, someWords);
  EXPECT_EQ(definition.value().exitTimeout, 5);
}

TEST(LoadedTest, ASecondArgumentsBlockDoesNotReplaceAnEmptyFirst) {
  EXPECT_EQ(loadedFrom("\targuments = {\n\t}\n" + argumentsBlock), absent);
}

TEST(LoadedTest, OnlyTheExactWordsOpenTheArguments) {
  for (const auto* line : {"default arguments = {", "arguments  = {", "arguments = {\r", "Arguments = {"})
    EXPECT_EQ(loadedFrom(std::string("\t") + line + "\n\t\ta\n\t}\n"), absent) << line;
}

TEST(LoadedTest, AnyEndOfThatFormOpensABlock) {
  EXPECT_EQ(loadedFrom("\tpid = {\n\t\targuments = {\n\t\t}\n\t}\n" + argumentsBlock).value().arguments,
            someWords);
  EXPECT_EQ(loadedFrom("\t= {\n\t}\n" + argumentsBlock).value().arguments, someWords);
}

TEST(LoadedTest, TheDepthMayGoBelowZero) {
  const auto text = "}\n}\nup = {\nup = {\n" + printOf(argumentsBlock);
  EXPECT_EQ(LaunchJob::loaded(text).value().arguments, someWords);
  EXPECT_EQ(LaunchJob::loaded("}\n" + printOf(argumentsBlock)), absent);
}

TEST(LoadedTest, AnArrowedBlockClosesTheBlockAroundItEarly) {
  const auto arrowed = argumentsBlock + "\tLWCR = {\n\t\t\"reqs\" => {\n\t\t}\n\t}\n\texit timeout = 5\n";
  EXPECT_EQ(loadedFrom(arrowed).value().exitTimeout, absent);
}

TEST(LoadedTest, ACarriageReturnStaysPartOfItsLine) {
  EXPECT_EQ(LaunchJob::loaded("job = {\r\n\targuments = {\r\n\t\ta\r\n\t}\r\n}\r\n"), absent);
}

TEST(LoadedTest, ALongPrintIsReadInOneGo) {
  std::string lines = argumentsBlock;
  for (int entry = 0; entry < 100'000; ++entry)
    lines += "\tone = {\n\t\tstate = active\n\t}\n";
  EXPECT_EQ(timeoutBy(lines + "\texit timeout = 5\n"), 5);
}

const std::string wordsEntry =
    "<key>ProgramArguments</key><array><string>/a/core</string><string>--serve</string></array>";

std::optional<std::int64_t> bundledTimeoutBy(const std::string& value) {
  const auto list = plistOf(wordsEntry + "<key>ExitTimeOut</key>" + value);
  return LaunchJob::bundled(list).value().exitTimeout;
}

TEST(BundledTest, TheArgumentsAndTheTimeoutAreRead) {
  const auto definition =
      LaunchJob::bundled(plistOf(wordsEntry + "<key>ExitTimeOut</key><integer>5</integer>"));
  EXPECT_EQ(definition.value().arguments, someWords);
  EXPECT_EQ(definition.value().exitTimeout, 5);
}

TEST(BundledTest, WithoutATimeoutTheDefinitionIsStillGiven) {
  const auto definition = LaunchJob::bundled(plistOf(wordsEntry));
  EXPECT_EQ(definition.value().arguments, someWords);
  EXPECT_EQ(definition.value().exitTimeout, absent);
}

TEST(BundledTest, ATimeoutOfAnotherKindIsAbsent) {
  struct Row {
    const char* value;
    std::optional<std::int64_t> timeout;
  };
  for (const auto& [value, timeout] : {
           Row{"<integer>0</integer>", 0},
           Row{"<integer>-3</integer>", -3},
           Row{"<integer>010</integer>", 10},
           Row{"<integer>18446744073709551615</integer>", absent},
           Row{"<real>5.0</real>", 5},
           Row{"<real>5.5</real>", absent},
           Row{"<string>5</string>", absent},
           Row{"<true/>", absent},
           Row{"<array><integer>5</integer></array>", absent},
           Row{"<dict/>", absent},
       }) {
    EXPECT_EQ(bundledTimeoutBy(value), timeout) << value;
  }
}

TEST(BundledTest, ArgumentsThatAreNoListOfTextsMakeItAbsent) {
  for (const std::string value : {"<array/>", "<array><string>a</string><integer>1</integer></array>",
                                  "<string>a</string>", "<dict/>", "<array><array/></array>"}) {
    EXPECT_EQ(LaunchJob::bundled(plistOf("<key>ProgramArguments</key>" + value)), absent) << value;
  }
  EXPECT_EQ(LaunchJob::bundled(plistOf("<key>Label</key><string>l</string>")), absent);
}

TEST(BundledTest, WhatIsNoDictionaryIsAbsent) {
  EXPECT_EQ(LaunchJob::bundled(""), absent);
  EXPECT_EQ(LaunchJob::bundled("ProgramArguments"), absent);
  EXPECT_EQ(LaunchJob::bundled("<plist version=\"1.0\"><array><string>a</string></array></plist>"), absent);
  EXPECT_EQ(LaunchJob::bundled(plistOf(wordsEntry + "<key>ExitTimeOut</key><integer>5x</integer>")), absent);
}

const Definition ab5{.arguments = {"a", "b"}, .exitTimeout = 5};
const Definition ab10{.arguments = {"a", "b"}, .exitTimeout = 10};
const Definition ab{.arguments = {"a", "b"}};
const Definition abc5{.arguments = {"a", "b", "c"}, .exitTimeout = 5};
const Definition ax5{.arguments = {"a", "x"}, .exitTimeout = 5};
const Definition ba5{.arguments = {"b", "a"}, .exitTimeout = 5};

TEST(DefinitionTest, EqualityTakesArgumentsAndTimeout) {
  EXPECT_EQ(ab5, (Definition{.arguments = {"a", "b"}, .exitTimeout = 5}));
  EXPECT_EQ(ab, (Definition{.arguments = {"a", "b"}}));
  for (const auto& other : {ab10, ab, abc5, ax5, ba5})
    EXPECT_FALSE(ab5 == other || other == ab5);
}

TEST(DefinitionTest, EqualityIsCanonical) {
  EXPECT_EQ((Definition{.arguments = {"/Zo\u00EB"}}), (Definition{.arguments = {"/Zoe\u0308"}}));
  EXPECT_FALSE((Definition{.arguments = {"/Zo\u00EB"}}) == (Definition{.arguments = {"/Zoe"}}));
}

TEST(NeedsReseatTest, OnlyAKnownDifferenceAsksForOne) {
  struct Row {
    const char* what;
    std::optional<Definition> loaded;
    std::optional<Definition> bundled;
    bool needed;
  };
  for (const auto& [what, loaded, bundled, needed] : {
           Row{"neither known", absent, absent, false},
           Row{"loaded unknown", absent, ab5, false},
           Row{"bundled unknown", ab5, absent, false},
           Row{"the same", ab5, ab5, false},
           Row{"another timeout", ab5, ab10, true},
           Row{"no bundled timeout", ab5, ab, false},
           Row{"no loaded timeout", ab, ab5, false},
           Row{"no timeout at all", ab, ab, false},
           Row{"one more argument", ab5, abc5, true},
           Row{"one argument less", abc5, ab5, true},
           Row{"another argument", ab5, ax5, true},
           Row{"another order", ab5, ba5, true},
           Row{"another argument, no timeout", ab, ax5, true},
       }) {
    EXPECT_EQ(LaunchJob::needsReseat(loaded, bundled), needed) << what;
  }
}

TEST(NeedsReseatTest, AMissingTimeoutIsADifferenceButNoReason) {
  EXPECT_FALSE(LaunchJob::needsReseat(ab5, ab));
  EXPECT_FALSE(ab5 == ab);
}

TEST(NeedsReseatTest, AnotherSpellingOfTheSameTextIsNoReason) {
  EXPECT_FALSE(LaunchJob::needsReseat(Definition{.arguments = {"/Zo\u00EB"}},
                                      Definition{.arguments = {"/Zoe\u0308"}}));
}

TEST(StaleLaunchTest, OnlyKnownArgumentsThatDifferAreStale) {
  EXPECT_TRUE(LaunchJob::staleLaunch({"a"}, ab5));
  EXPECT_TRUE(LaunchJob::staleLaunch({"a", "b", "c"}, ab5));
  EXPECT_TRUE(LaunchJob::staleLaunch({"a", "x"}, ab5));
  EXPECT_FALSE(LaunchJob::staleLaunch({"a", "b"}, ab5));
  EXPECT_FALSE(LaunchJob::staleLaunch({"a", "b"}, ab));
  EXPECT_FALSE(LaunchJob::staleLaunch({"a", "b"}, absent));
}

TEST(StaleLaunchTest, NoArgumentsAreNeverStale) {
  EXPECT_FALSE(LaunchJob::staleLaunch({}, ab5));
  EXPECT_FALSE(LaunchJob::staleLaunch({}, absent));
}

TEST(SyncAtLaunchTest, AKnownBuildThatIsNotTheLastSyncedIsDue) {
  EXPECT_TRUE(LaunchJob::syncAtLaunch("42", absent));
  EXPECT_TRUE(LaunchJob::syncAtLaunch("42", "41"));
  EXPECT_TRUE(LaunchJob::syncAtLaunch("42", ""));
  EXPECT_FALSE(LaunchJob::syncAtLaunch("42", "42"));
}

TEST(SyncAtLaunchTest, AnUnknownBuildIsNeverDue) {
  EXPECT_FALSE(LaunchJob::syncAtLaunch(absent, absent));
  EXPECT_FALSE(LaunchJob::syncAtLaunch(absent, "41"));
  EXPECT_FALSE(LaunchJob::syncAtLaunch("", absent));
  EXPECT_FALSE(LaunchJob::syncAtLaunch("", "41"));
  EXPECT_FALSE(LaunchJob::syncAtLaunch("", ""));
}

}  // namespace
}  // namespace tamo
