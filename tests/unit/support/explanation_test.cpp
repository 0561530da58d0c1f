#include "support/explanation.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/headings.hpp"

/// What is told of each kind of action.
namespace tamo::support {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

Story story(const Texts& texts) {
  Action action{.pid = 812};
  for (const auto& text : texts) {
    const auto message = messageIn(text);
    if (!message) ADD_FAILURE() << text;
    if (message) action.lines.push_back({.message = *message});
  }
  return storyOf(action);
}

/// All that is told of an action, in one text.
std::string told(const Texts& texts) {
  const auto one = story(texts);
  std::string all = one.action + "|" + one.purpose + "|" + one.verdict + "|";
  for (const auto& step : one.steps)
    all += step.text + "|";
  for (const auto& text : one.meaning)
    all += text + "|";
  for (const auto& text : one.advice)
    all += text + "|";
  return all;
}

std::string heading(std::string_view name) {
  return std::string(name);
}

const std::string same = "definition: loaded /a exit 20 · bundled /a exit 20 · changed false";
const std::string changed = "definition: loaded /a exit 20 · bundled /a exit 5 · changed true";
const std::string restarted = "restart -> status 1 ok Optional(true) kickstart 0<private>";

TEST(ExplanationTest, ARestartThatWentWellSaysSoAndAsksForNothing) {
  const auto one = story({same, "hardstop pid 777: exited", restarted});
  EXPECT_EQ(one.action, "restart");
  EXPECT_EQ(one.purpose, "restart the Core");
  EXPECT_EQ(one.verdict, "done");
  EXPECT_EQ(one.steps.size(), 3U);
  EXPECT_THAT(one.steps[0].text, HasSubstr("not changed"));
  EXPECT_THAT(one.steps[1].text, HasSubstr("ended by itself"));
  EXPECT_THAT(one.steps[2].text,
              HasSubstr("launchd took the order. The agent's status is 1 (enabled), as it has to be"));
  EXPECT_THAT(one.meaning, IsEmpty());
  EXPECT_THAT(one.advice, IsEmpty());
  EXPECT_THAT(one.headings, IsEmpty());
}

TEST(ExplanationTest, AKillIsExplained) {
  const auto text = told({same, "hardstop pid 777: killedGroup(777, gone: true)", restarted});
  EXPECT_THAT(text, HasSubstr("restart|restart the Core|done|"));
  EXPECT_THAT(text, HasSubstr("alive 2 seconds after it was asked to stop"));
  EXPECT_THAT(text, HasSubstr("SIGKILL to its process group 777. It is gone."));
  EXPECT_THAT(told({same, "hardstop pid 777: killedProcess(777, gone: true)", restarted}),
              HasSubstr("SIGKILL to process 777."));
  EXPECT_THAT(story({"hardstop pid 777: killedGroup(777, gone: true)", restarted}).headings,
              ElementsAre(heading::killed));
}

TEST(ExplanationTest, AKillThatDidNotHelpIsNoGoodEnd) {
  const auto text = told({same, "hardstop pid 777: killedProcess(777, gone: false)", restarted});
  EXPECT_THAT(text, HasSubstr("done, but the old Core may still run"));
  EXPECT_THAT(text, HasSubstr("2 seconds later it was still there"));
  EXPECT_THAT(text, HasSubstr("ps -p 777"));
}

TEST(ExplanationTest, EveryReasonToSpareIsExplained) {
  const auto spared = [](const std::string& reason, const std::string& gone) {
    return told({same, "hardstop pid 777: spared(\"" + reason + "\", gone: " + gone + ")", restarted});
  };
  EXPECT_THAT(spared("revert_release", "false"),
              HasSubstr("a release that a revert goes back to. No signal was sent. 20 seconds "
                        "later it still ran."));
  EXPECT_THAT(spared("revert_restoring", "false"), HasSubstr("Let the revert come to its end"));
  EXPECT_THAT(spared("young_core", "false"), HasSubstr("the process began later than this action"));
  EXPECT_THAT(spared("young_core", "true"), HasSubstr("had ended by itself"));
  EXPECT_THAT(spared("new_reason", "false"), HasSubstr("a reason that is not known here"));
  EXPECT_THAT(story({"hardstop pid 7: spared(\"young_core\", gone: true)", restarted}).headings,
              ElementsAre(heading::spared));
}

TEST(ExplanationTest, AWatchThatWasCalledOffIsExplained) {
  const Texts lines{same, "hardstop pid 777: cancelled",
                    "restart -> status 1 ok Optional(true) kickstart 37<private>"};
  EXPECT_THAT(told(lines), HasSubstr("the watch was called off"));
  EXPECT_THAT(
      told(lines),
      HasSubstr("launchctl kickstart ended with 37: launchd didn't take the order. If launchd said that no "
                "Core runs, the agent was registered anew."));
  EXPECT_THAT(told(lines), HasSubstr("done only as far as the agent's status goes"));
  EXPECT_THAT(story(lines).headings, ElementsAre(heading::calledOff, heading::kickstart));
}

TEST(ExplanationTest, ARestartThatNobodyWatchedIsTold) {
  EXPECT_THAT(story({same, restarted}).headings, ElementsAre(heading::noHardStop));
  EXPECT_THAT(told({same, restarted}), HasSubstr("nobody was killed"));
}

TEST(ExplanationTest, ARegisteringWatchesNobodyAndSaysNothingOfIt) {
  EXPECT_THAT(story({"register -> status 1 ok Optional(true) kickstart 0<private>"}).headings, IsEmpty());
}

TEST(ExplanationTest, WithoutAGraphicalSessionNothingHappened) {
  for (const auto* number : {"112", "125"}) {
    const Texts lines{"register -> status 1 ok Optional(true) kickstart " + std::string(number) +
                      "<private>"};
    EXPECT_THAT(told(lines), HasSubstr("this user has no graphical session"));
    EXPECT_THAT(told(lines), HasSubstr("Log in at the screen"));
    EXPECT_THAT(story(lines).headings, ElementsAre(heading::noSession));
  }
}

TEST(ExplanationTest, EveryKickstartIsNamed) {
  const auto kickstart = [](const std::string& status) {
    return told({"register -> status 1 ok Optional(true) kickstart " + status + "<private>"});
  };
  EXPECT_THAT(kickstart("-1"), HasSubstr("could not be started, or didn't end within 5 seconds"));
  EXPECT_THAT(kickstart("113"),
              HasSubstr("launchd doesn't know the job. If neither the Core's sockets nor launchd"));
}

TEST(ExplanationTest, TheWayThatAnActionTookIsTold) {
  const auto text = [](const std::string& outcome, const Texts& before = {}) {
    auto lines = before;
    lines.push_back(outcome);
    return told(lines);
  };
  EXPECT_THAT(text("register -> status 1 ok Optional(true)<private>"),
              HasSubstr("was not enabled, so it was registered."));
  EXPECT_THAT(text("restart -> status 1 ok Optional(true)<private>"), HasSubstr("so it was only registered"));
  EXPECT_THAT(text("restart -> status 1 ok Optional(true) reseated definition<private>", {changed}),
              HasSubstr("the exit timeout is 20 s with launchd and 5 s in the bundle.|The definition had "
                        "changed, so the agent was "
                        "unregistered and registered again"));
  EXPECT_THAT(text("sync -> status 1 ok Optional(true)<private>", {same}),
              HasSubstr("There was nothing to do."));
  EXPECT_THAT(text("sync -> status 0 ok Optional(false)<private>"),
              HasSubstr("was not enabled, so nothing was done."));
  EXPECT_THAT(text("unregister -> status 0 ok Optional(true)<private>"),
              HasSubstr("done|The agent was unregistered."));
  EXPECT_THAT(text("reseat -> status 1 ok Optional(true)<private>"),
              HasSubstr("no Core was seen that had to stop first"));
  EXPECT_THAT(text("reseat -> status 1 ok Optional(true)<private>", {"hardstop pid 7: exited"}),
              HasSubstr("was unregistered and registered again"));
  EXPECT_THAT(text("status -> status 2 ok Optional(true)<private>"),
              HasSubstr("answered|Nothing was touched. The agent's status is 2 "
                        "(waiting for the user's approval).|"));
}

TEST(ExplanationTest, ADefinitionIsToldByWhatDiffers) {
  const auto first = [](const std::string& line) { return story({line}).steps.at(0).text; };
  EXPECT_THAT(first("definition: loaded /a exit - · bundled /b -x exit - · changed true"),
              HasSubstr("changed; launchd runs /a, the bundle says /b -x."));
  EXPECT_THAT(first("definition: loaded unknown exit - · bundled /b exit 20 · changed false"),
              HasSubstr("launchd's could not be read, which counts as unchanged"));
  EXPECT_THAT(first("definition: loaded /b exit 20 · bundled unknown exit - · changed false"),
              HasSubstr("the bundled one could not"));
  EXPECT_THAT(first("definition: loaded unknown exit - · bundled unknown exit - · changed false"),
              HasSubstr("neither could be read"));
  EXPECT_THAT(first("definition: loaded /very/long"), HasSubstr("cut the line for its length"));
}

TEST(ExplanationTest, StatusesThatWereNotMeantAreExplained) {
  EXPECT_THAT(story({"register -> status 2 ok Optional(false)<private>"}).headings,
              ElementsAre(heading::approval));
  EXPECT_THAT(told({"register -> status 2 ok Optional(false)<private>"}),
              HasSubstr("not done|The agent was not enabled, so it was registered. The agent's status is 2 "
                        "(waiting for the user's "
                        "approval); after this action it has to be 1 (enabled)."));
  EXPECT_THAT(story({"status -> status 3 ok Optional(true)<private>"}).headings,
              ElementsAre(heading::notFound));
  EXPECT_THAT(told({"sync -> status 0 ok Optional(false)<private>"}),
              HasSubstr("The agent is not registered, and the Core does not "
                        "run.|Ask for register."));
  EXPECT_THAT(told({"unregister -> status 1 ok Optional(false)<private>"}),
              HasSubstr("The system kept the agent"));
  EXPECT_THAT(told({"unregister -> status 3 ok Optional(false)<private>"}),
              HasSubstr("If Tamo is to be gone, nothing."));
}

struct ErrorRow {
  Texts lines;
  std::string_view heading;
  std::string says;
};

TEST(ExplanationTest, EveryErrorLeadsToItsParagraph) {
  const std::vector<ErrorRow> rows{
      {{"register -> status 2 ok Optional(false) error SMAppServiceErrorDomain 11<private>"},
       heading::approval,
       "switch Tamo on"},
      {{"register -> status 2 ok Optional(false) error SMAppServiceErrorDomain 1<private>"},
       heading::approval,
       "switch Tamo on"},
      {{"hardstop pid 7: exited",
        "reseat -> status 0 ok Optional(false) error SMAppServiceErrorDomain 1<private>"},
       heading::afterReseat,
       "Wait a second"},
      {{changed, "sync -> status 0 ok Optional(false) error SMAppServiceErrorDomain 1<private>"},
       heading::afterReseat,
       "is not registered now"},
      {{"register -> status 0 ok Optional(false) error SMAppServiceErrorDomain 1<private>"},
       heading::serviceError,
       "operation not permitted"},
      {{"register -> status 0 ok Optional(false) error SMAppServiceErrorDomain 3<private>"},
       heading::serviceError,
       "codesign --verify"},
      {{"unregister -> status 0 ok Optional(false) error SMAppServiceErrorDomain 6<private>"},
       heading::serviceError,
       "Nothing is left"},
      {{"register -> status 0 ok Optional(false) error SMAppServiceErrorDomain 8<private>"},
       heading::serviceError,
       "not whole"},
      {{"register -> status 3 ok Optional(false) error SMAppServiceErrorDomain 108<private>"},
       heading::notFound,
       "doesn't find"},
      {{"register -> status 0 ok Optional(false) error TamoPlatform 1<private>"},
       heading::serviceError,
       "without giving an error"},
      {{"bogus -> status 1 ok Optional(false) error TamoCore 64<private>"},
       heading::unknownAction,
       "is no action"},
  };
  for (const auto& row : rows) {
    EXPECT_THAT(told(row.lines), HasSubstr(row.says));
    EXPECT_THAT(told(row.lines), HasSubstr("|failed|"));
    EXPECT_THAT(story(row.lines).headings, Contains(heading(row.heading))) << row.lines.back();
  }
}

TEST(ExplanationTest, AHiddenDescriptionIsToldToBeHidden) {
  const std::string line = "x -> status 1 ok Optional(false) error TamoCore 64";
  EXPECT_THAT(told({line + "<private>"}), HasSubstr("description is private"));
  EXPECT_THAT(told({line + " Unknown action"}), HasSubstr("Its description: Unknown action"));
  EXPECT_THAT(told({line}), testing::Not(HasSubstr("description")));
}

TEST(ExplanationTest, ARefusalSaysWhichCopyAndWhatToDo) {
  const auto refused = [](const std::string& app) {
    return told({"sync refused: tamo.test_copy_refused_live_data app=" + app +
                 " (only /Applications/Tamo.app opens the founder's data and Core)"});
  };
  EXPECT_THAT(refused("/Users/u/Downloads/Tamo.app"),
              HasSubstr("refused|Refused, because this copy of Tamo may not act: "
                        "/Users/u/Downloads/Tamo.app.|"));
  EXPECT_THAT(refused("/Users/u/Downloads/Tamo.app"), HasSubstr("Remove that copy"));
  EXPECT_THAT(refused("/private/var/x/AppTranslocation/y/Tamo.app"), HasSubstr("quarantine"));
  EXPECT_THAT(refused("/Applications/Tamo.app"), HasSubstr("identifier"));
  EXPECT_THAT(story({"sync refused: x"}).headings, ElementsAre(heading::refused));
}

TEST(ExplanationTest, EveryEndOfAMoveIsExplained) {
  const auto move = [](const std::string& code) { return told({"move-to-applications -> " + code}); };
  EXPECT_THAT(move("moved"), HasSubstr("|done|"));
  EXPECT_THAT(move("opened"), HasSubstr("|done|"));
  EXPECT_THAT(move("cancelled"), HasSubstr("|not done|The move ended with the code cancelled. The prompt"));
  EXPECT_THAT(move("not_writable"), HasSubstr("|not done|"));
  EXPECT_THAT(move("copy_failed"), HasSubstr("Drag Tamo into Applications"));
  EXPECT_THAT(move("new_code"), HasSubstr("a code that is not known here"));
  EXPECT_THAT(story({"move-to-applications -> moved"}).headings, IsEmpty());
  EXPECT_THAT(story({"move-to-applications -> opened"}).headings, ElementsAre(heading::movedAgain));
  EXPECT_THAT(story({"move-to-applications -> cancelled"}).headings, ElementsAre(heading::moveEnded));
  EXPECT_THAT(told({"move refused: this Tamo doesn't need moving"}),
              HasSubstr("move-to-applications|move this Tamo into /Applications|"
                        "not needed|"));
}

TEST(ExplanationTest, WhatWentWrongBesideTheActionIsToldToo) {
  EXPECT_THAT(story({restarted, "receipt failed"}).headings, Contains(heading(heading::receipt)));
  EXPECT_EQ(story({restarted, "receipt failed"}).verdict, "done");
  EXPECT_THAT(told({"fatal: no home"}),
              HasSubstr("the companion stopped itself|The companion stopped itself: no home|"));
}

TEST(ExplanationTest, AnActionWithoutAnEndIsToldAsOne) {
  EXPECT_THAT(told({same}), HasSubstr("restart or sync||its end is not in the log|"));
  EXPECT_THAT(told({"hardstop pid 7: exited"}),
              HasSubstr("restart, reseat or sync||its end is not in the log|"));
  EXPECT_THAT(told({"receipt failed"}), HasSubstr("||its end is not in the log|"));
  EXPECT_THAT(story({same}).headings, ElementsAre(heading::noEnd));
}

}  // namespace
}  // namespace tamo::support
