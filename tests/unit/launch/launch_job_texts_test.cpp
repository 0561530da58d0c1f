#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "launch/launch_job.hpp"
#include "unit/launch/launch_rig.hpp"

/// What a text of a definition is: where it ends, what is stripped of it, and what makes two of them the same.
namespace tamo {
namespace {

using LaunchJob::Definition;
using Words = std::vector<std::string>;

Words argumentsOf(const std::string& lines) {
  const auto definition = LaunchJob::loaded(printOf("\targuments = {\n" + lines + "\t}\n"));
  return definition ? definition->arguments : Words{"absent"};
}

Definition definitionOf(const std::string& text) {
  return {.arguments = {"/a/core", text}};
}

TEST(PrintedTextTest, OnlyALineFeedEndsIt) {
  for (const std::string text :
       {"a\rb", "a\vb", "a\fb", "a\u0085b", "a\u2028b", "a\u2029b", "a\tb", "a  b", "a;b", "a\\nb"})
    EXPECT_EQ(argumentsOf("\t\t" + text + "\n"), Words{text});
  EXPECT_EQ(argumentsOf(std::string("\t\ta\0b\n", 6)), (Words{std::string("a\0b", 3)}));
}

TEST(PrintedTextTest, OnlySpacesAndTabsAreStripped) {
  for (const std::string text : {"\u200Ba\u200B", "\uFEFFa", "\va\v", "\fa\f", "\ra\r", "\u0085a\u0085"})
    EXPECT_EQ(argumentsOf("\t\t" + text + "\t\n"), Words{text});
  EXPECT_EQ(argumentsOf("\u2003 \ta\u3000\u00A0\t \n"), Words{"a"});
}

TEST(PrintedTextTest, QuotesAndEscapesStay) {
  EXPECT_EQ(argumentsOf("\t\t\"a b\"\n\t\t'c'\n\t\td\\\n\t\t# e\n"), (Words{"\"a b\"", "'c'", "d\\", "# e"}));
}

TEST(PrintedTextTest, RepetitionsStay) {
  EXPECT_EQ(argumentsOf("\t\ta\n\t\ta\n\t\tb\n\t\ta\n"), (Words{"a", "a", "b", "a"}));
}

TEST(PrintedTextTest, ABraceBesideOtherWordsClosesNothing) {
  EXPECT_EQ(argumentsOf("\t\t{}\n\t\t} \t\n"), Words{"{}"});
  EXPECT_EQ(argumentsOf("\t\t}x\n\t\tx}\n\t\t}}\n"), (Words{"}x", "x}", "}}"}));
}

TEST(PrintedTextTest, AnOpenerNeedsNoBlankBeforeItsSign) {
  const auto print =
      printOf("\ta= {\n\t\targuments = {\n\t\t\tinner\n\t\t}\n\t}\n\targuments = {\n\t\tb\n\t}\n");
  EXPECT_EQ(LaunchJob::loaded(print).value().arguments, Words{"b"});
}

struct Pair {
  const char* what;
  const char* left;
  const char* right;
};

constexpr Pair different[] = {
    {"case", "--Serve", "--serve"},      {"a blank at the end", "a", "a "},
    {"a blank within", "a b", "a  b"},   {"another spelling of the path", "/a/core", "/a//core"},
    {"a slash at the end", "/a", "/a/"}, {"a link of the system", "/private/tmp/x", "/tmp/x"},
    {"a quote", "\"a\"", "a"},           {"no words", "", " "},
    {"an accent", "Zo\u00EB", "Zoe"},    {"compatibility alone", "\uFB01", "fi"},
    {"wide letters", "\uFF21", "A"},     {"a number's form", "05", "5"},
};

constexpr Pair same[] = {
    {"composition", "Zo\u00EB", "Zoe\u0308"},
    {"the order of marks", "a\u0323\u0307", "a\u0307\u0323"},
    {"a sign of its own", "\u212B", "\u00C5"},
    {"syllables", "\uAC00", "\u1100\u1161"},
};

TEST(ComparedTextTest, WhatIsNotTheSameTextIsADifference) {
  for (const auto& [what, left, right] : different) {
    EXPECT_FALSE(definitionOf(left) == definitionOf(right)) << what;
    EXPECT_TRUE(LaunchJob::needsReseat(definitionOf(left), definitionOf(right))) << what;
    EXPECT_TRUE(LaunchJob::staleLaunch({"/a/core", left}, definitionOf(right))) << what;
    EXPECT_EQ(LaunchJob::syncAtLaunch(left, right), *left != '\0') << what;
  }
}

TEST(ComparedTextTest, AnotherCompositionIsTheSameText) {
  for (const auto& [what, left, right] : same) {
    EXPECT_EQ(definitionOf(left), definitionOf(right)) << what;
    EXPECT_FALSE(LaunchJob::needsReseat(definitionOf(left), definitionOf(right))) << what;
    EXPECT_FALSE(LaunchJob::staleLaunch({"/a/core", left}, definitionOf(right))) << what;
    EXPECT_FALSE(LaunchJob::syncAtLaunch(left, right)) << what;
  }
}

TEST(ComparedTextTest, EveryPlaceCountsTheFirstIncluded) {
  EXPECT_TRUE(LaunchJob::needsReseat(Definition{.arguments = {"/b/core", "x"}}, definitionOf("x")));
  EXPECT_TRUE(LaunchJob::staleLaunch({"/b/core", "x"}, definitionOf("x")));
  EXPECT_TRUE(LaunchJob::staleLaunch({"x", "/a/core"}, definitionOf("x")));
  EXPECT_TRUE(LaunchJob::staleLaunch({""}, definitionOf("x")));
}

TEST(ComparedTextTest, ATimeoutOfAnySizeIsCompared) {
  const Definition large{.arguments = {"a"}, .exitTimeout = 9'007'199'254'740'993};
  const Definition larger{.arguments = {"a"}, .exitTimeout = 9'007'199'254'740'992};
  const Definition wrapped{.arguments = {"a"}, .exitTimeout = 4'294'967'301};
  const Definition five{.arguments = {"a"}, .exitTimeout = 5};
  const Definition zero{.arguments = {"a"}, .exitTimeout = 0};
  const Definition none{.arguments = {"a"}};
  EXPECT_TRUE(LaunchJob::needsReseat(large, larger));
  EXPECT_TRUE(LaunchJob::needsReseat(wrapped, five));
  EXPECT_TRUE(LaunchJob::needsReseat(zero, five));
  EXPECT_TRUE(LaunchJob::needsReseat(five, zero));
  EXPECT_FALSE(LaunchJob::needsReseat(zero, none));
  EXPECT_FALSE(zero == none || large == larger || wrapped == five);
}

TEST(SyncedBuildTest, AnyOtherBuildIsDueTheOlderIncluded) {
  EXPECT_TRUE(LaunchJob::syncAtLaunch("41", "42"));
  EXPECT_TRUE(LaunchJob::syncAtLaunch("42", "042"));
  EXPECT_TRUE(LaunchJob::syncAtLaunch("1.4.2", "1.4.20"));
  EXPECT_TRUE(LaunchJob::syncAtLaunch("beta", "Beta"));
}

TEST(SyncedBuildTest, ABuildOfOneBlankIsKnown) {
  EXPECT_TRUE(LaunchJob::syncAtLaunch(" ", std::nullopt));
  EXPECT_FALSE(LaunchJob::syncAtLaunch(" ", " "));
}

}  // namespace
}  // namespace tamo
