#include "stage/tools/apple_script.hpp"

#include <array>
#include <cstdio>
#include <gtest/gtest.h>

#include "stage/tools/apple_script_words.hpp"

namespace tamo::stage {
namespace {

using Texts = std::vector<std::string>;
using Kind = ScriptWord::Kind;

/// What this machine's shell makes of a command.
std::string shellOutput(const std::string& command) {
  std::string output;
  auto* shell = ::popen(command.c_str(), "r");
  std::array<char, 256> bytes{};
  for (std::size_t size = 1; shell != nullptr && size > 0;) {
    size = std::fread(bytes.data(), 1, bytes.size(), shell);
    output.append(bytes.data(), size);
  }
  if (shell != nullptr) ::pclose(shell);
  return output;
}

const Texts nastyTexts = {"",
                          "plain",
                          "with blanks  two",
                          "it's",
                          "''",
                          "'; echo evaluated; '",
                          "\" & (do shell script \"echo evaluated\") & \"",
                          "$(echo evaluated)",
                          "`echo evaluated`",
                          "$HOME ${HOME} ~ * ? [a] {a,b} ! # % & | ; < >",
                          R"(back\slash \\ \n \')",
                          "line\nbreak",
                          "Überfluß 東京 \xF0\x9F\x90\xA3 e\xCC\x81",
                          "-rf",
                          "tab\there"};

std::expected<ShellRequest, ScriptError> requestFor(const std::string& statement,
                                                    const Texts& arguments = {}) {
  return shellRequest("on run argv\n" + statement + "\nend run\n", arguments);
}

TEST(AppleScriptTest, TheWordsOfAScriptAreNamesLiteralsSignsAndLines) {
  EXPECT_EQ(scriptWords("do (\"a \\\"b\\\\\\n\" & item 1)"),
            (std::vector<ScriptWord>{{Kind::Name, "do"},
                                     {Kind::Sign, "("},
                                     {Kind::Literal, "a \"b\\\n"},
                                     {Kind::Sign, "&"},
                                     {Kind::Name, "item"},
                                     {Kind::Name, "1"},
                                     {Kind::Sign, ")"},
                                     {Kind::LineEnd, ""}}));
}

TEST(AppleScriptTest, WhatHasNoEndOrNoMeaningHasNoWords) {
  for (const auto* script : {"\"open", "\"bad \\q\"", "a; b", "\"ends in \\", "{1, 2}"})
    EXPECT_EQ(scriptWords(script), std::nullopt) << script;
}

TEST(AppleScriptTest, TheCommandIsJoinedFromLiteralsAndQuotedArguments) {
  const auto request = requestFor(
      R"(do shell script ("copy " & quoted form of item 2 of argv & " to " & quoted form of item 1 of argv))",
      {"a b", "c"});
  ASSERT_TRUE(request);
  EXPECT_EQ(joined(request->command), "copy 'c' to 'a b'");
  EXPECT_EQ(request->prompt, std::nullopt);
  EXPECT_FALSE(request->asAdministrator);
}

TEST(AppleScriptTest, QuotedFormHoldsForTheNextTermAlone) {
  EXPECT_EQ(joined(requestFor(R"(do shell script quoted form of "a" & "b")")->command), "'a'b");
  EXPECT_EQ(joined(requestFor(R"(do shell script quoted form of ("a" & "b"))")->command), "'ab'");
}

/// Each of them is up to four times as long as the one before.
TEST(AppleScriptTest, AQuotedTextThatNoShellTakesIsASyntaxError) {
  const auto nested = [](int depth) {
    std::string text = "item 1 of argv";
    while (depth-- > 0)
      text.insert(0, "quoted form of ");
    return shellRequest("on run argv\ndo shell script " + text + "\nend run\n", {"a"});
  };
  ASSERT_TRUE(nested(8));
  EXPECT_LT(joined(nested(8)->command).size(), std::size_t{128} << 10U);
  for (const int depth : {20, 40, 400}) {
    ASSERT_FALSE(nested(depth)) << depth;
    EXPECT_EQ(nested(depth).error().number, -2741);
  }
}

TEST(AppleScriptTest, ThePromptAndThePrivilegesStandBehindInAnyOrder) {
  const auto usual = requestFor(R"(do shell script "x" with prompt "May I?" with administrator privileges)");
  const auto turned = requestFor(R"(do shell script "x" with administrator privileges with prompt "May I?")");
  for (const auto& request : {usual, turned}) {
    ASSERT_TRUE(request);
    EXPECT_EQ(request->prompt, "May I?");
    EXPECT_TRUE(request->asAdministrator);
  }
}

TEST(AppleScriptTest, TheArgumentsHaveTheNameThatTheHandlerGivesThem) {
  const auto own = shellRequest("on run paths\ndo shell script item 1 of paths\nend run", {"x"});
  EXPECT_EQ(joined(own.value().command), "x");
  const auto other = shellRequest("on run paths\ndo shell script item 1 of argv\nend run", {"x"});
  EXPECT_EQ(other.error().number, -2741);
}

TEST(AppleScriptTest, AnArgumentThatIsNotThereIsAnErrorOfItsOwn) {
  EXPECT_EQ(requestFor("do shell script item 3 of argv", {"a", "b"}).error().number, -1728);
  EXPECT_EQ(requestFor("do shell script item 0 of argv", {"a", "b"}).error().number, -1728);
}

TEST(AppleScriptTest, AnythingElseIsASyntaxError) {
  for (const auto* statement :
       {"", "beep", "do shell script", "do shell script \"a\" \"b\"", "do shell script (\"a\"",
        "do shell script \"a\" with", "do shell script \"a\" with prompt",
        "do shell script \"a\" with administrator", "do shell script a", "do shell script \"a\"\nbeep",
        "do shell script quoted form \"a\"", "do shell script item one of argv"}) {
    const auto request = requestFor(statement, {"a"});
    ASSERT_FALSE(request) << statement;
    EXPECT_EQ(request.error().number, -2741) << statement;
  }
  EXPECT_FALSE(shellRequest("do shell script \"a\"", {}));
  EXPECT_FALSE(shellRequest("on run argv\ndo shell script \"a\"\nend run\nbeep", {}));
}

TEST(AppleScriptTest, AnArgumentIsNeverReadAsScript) {
  for (const auto& text : nastyTexts) {
    const auto request = requestFor("do shell script quoted form of item 1 of argv", {text});
    ASSERT_TRUE(request) << text;
    EXPECT_EQ(request->command, (ScriptText{{.text = quotedForm(text), .written = false}})) << text;
  }
}

TEST(AppleScriptTest, AShellGivesAQuotedTextBackAsItWas) {
  for (const auto& text : nastyTexts)
    EXPECT_EQ(shellOutput("printf %s " + quotedForm(text)), text);
}

TEST(AppleScriptTest, OnlyWhatTheAuthorWroteIsFoundOnTheStage) {
  const auto request = requestFor(
      R"(do shell script "/usr/bin/a " & quoted form of item 1 of argv & " && /usr/bin/b")", {"/usr/bin/c"});
  EXPECT_EQ(commandOnStage(request.value().command, "/tmp/a stage"),
            "'/tmp/a stage'/usr/bin/a '/usr/bin/c' && '/tmp/a stage'/usr/bin/b");
}

}  // namespace
}  // namespace tamo::stage
