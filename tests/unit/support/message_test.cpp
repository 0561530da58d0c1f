#include "support/message.hpp"

#include <gtest/gtest.h>
#include <set>

#include "hardstop/stop_outcome.hpp"
#include "platform/log_text.hpp"

/// What the companion's lines say, taken out of their texts again.
namespace tamo::support {
namespace {

using platform::LogFormat;

#define TAMO_LOG_NAME(name, level, format) LogFormat::name,
const std::vector<LogFormat> everyFormat{TAMO_LOG_LINES(TAMO_LOG_NAME)};
#undef TAMO_LOG_NAME

/// A line of each format. One that is added to the list has to be added here, and to be explained.
platform::LogLine sample(LogFormat format) {
  switch (format) {
    case LogFormat::outcome:
      return {format, {"restart", std::int64_t{1}, "Optional(true)", " kickstart 0", "", ""}};
    case LogFormat::refused:
      return {format, {"sync", "why"}};
    case LogFormat::receiptFailed:
      return {format, {}};
    case LogFormat::definition:
      return {format, {"a b", "20", "unknown", "-", false}};
    case LogFormat::hardStop:
      return {format, {std::int64_t{777}, "exited"}};
    case LogFormat::moveRefused:
      return {format, {}};
    case LogFormat::moveResult:
      return {format, {"moved"}};
  }
  return {};
}

template <class T>
T said(const std::string& text) {
  const auto message = messageIn(text);
  if (!message || !std::holds_alternative<T>(*message)) {
    ADD_FAILURE() << text;
    return {};
  }
  return std::get<T>(*message);
}

TEST(MessageTest, EveryLineThatTheSystemCanLogIsUnderstood) {
  std::set<std::size_t> kinds;
  for (const auto format : everyFormat) {
    const auto text = platform::shownText(sample(format));
    const auto message = messageIn(text);
    ASSERT_TRUE(message) << text;
    kinds.insert(message->index());
  }
  EXPECT_EQ(kinds.size(), everyFormat.size()) << "two lines were taken for one";
}

TEST(MessageTest, AnOutcomeIsTakenApart) {
  const auto apart =
      said<OutcomeSaid>("restart -> status 1 ok Optional(true) kickstart -1 reseated definition<private>");
  EXPECT_EQ(apart.action, "restart");
  EXPECT_EQ(apart.status, 1);
  EXPECT_EQ(apart.ok, true);
  EXPECT_EQ(apart.kickstart, -1);
  EXPECT_EQ(apart.reseated, "definition");
  EXPECT_FALSE(apart.error);
  EXPECT_FALSE(apart.description);
}

TEST(MessageTest, AnErrorIsTakenApart) {
  const auto hidden =
      said<OutcomeSaid>("sync -> status 0 ok Optional(false) error SMAppServiceErrorDomain 1<private>");
  EXPECT_EQ(hidden.error->domain, "SMAppServiceErrorDomain");
  EXPECT_EQ(hidden.error->code, 1);
  EXPECT_FALSE(hidden.description);
  const auto shown = said<OutcomeSaid>("x -> status 1 ok Optional(false) error TamoCore 64 Unknown action");
  EXPECT_EQ(shown.error->code, 64);
  EXPECT_EQ(shown.description, "Unknown action");
  EXPECT_FALSE(said<OutcomeSaid>("x -> status 1 ok Optional(false) error TamoCore ").error->code);
}

TEST(MessageTest, AnOutcomeMayEndAnywhereThatALogEndsIt) {
  EXPECT_EQ(said<OutcomeSaid>("status -> status 1 ok Optional(true)").description, "");
  EXPECT_EQ(said<OutcomeSaid>("status -> status -7 ok nil<private>").ok, std::nullopt);
  EXPECT_EQ(said<OutcomeSaid>("status -> status 3 ok Optional(false)<private>").ok, false);
}

TEST(MessageTest, AnActionMayBeAnyText) {
  EXPECT_EQ(said<OutcomeSaid>("a -> b -> status 1 ok Optional(true)<private>").action, "a -> b");
  EXPECT_EQ(said<OutcomeSaid>("two\nlines -> status 1 ok Optional(true)<private>").action, "two\nlines");
  EXPECT_EQ(said<OutcomeSaid>(" -> status 1 ok Optional(true)").action, "");
  EXPECT_EQ(said<RefusedSaid>("a refused: b refused: c").action, "a");
}

TEST(MessageTest, ARefusalNamesTheCopy) {
  const auto refused = said<RefusedSaid>(
      "sync refused: tamo.test_copy_refused_live_data app=/Users/u/(only x)/Tamo.app (only "
      "/Applications/Tamo.app opens "
      "the founder's data and Core)");
  EXPECT_EQ(refused.action, "sync");
  EXPECT_EQ(refused.app, "/Users/u/(only x)/Tamo.app");
  EXPECT_EQ(said<RefusedSaid>("sync refused: for another reason").app, std::nullopt);
}

TEST(MessageTest, ADefinitionIsTakenApart) {
  const auto line =
      said<DefinitionSaid>("definition: loaded /a b exit 20 · bundled /a exit 5 exit - · changed true");
  EXPECT_EQ(line.loaded, (DefinitionSide{.arguments = "/a b", .exitTimeout = "20"}));
  EXPECT_EQ(line.bundled, (DefinitionSide{.arguments = "/a exit 5", .exitTimeout = "-"}));
  EXPECT_TRUE(line.changed);
  EXPECT_FALSE(
      said<DefinitionSaid>("definition: loaded unknown exit - · bundled unknown exit - · changed false")
          .changed);
}

TEST(MessageTest, ADefinitionThatTheSystemCutIsKnownAsOne) {
  said<DefinitionCutSaid>("definition: loaded /Applications/Ta");
  said<DefinitionCutSaid>("definition: loaded /a exit 20 · bundled /a exit 20 · chang");
}

TEST(MessageTest, EveryEndOfAHardStopIsRead) {
  const auto saidBy = [](const HardStop::Outcome& outcome) {
    return said<HardStopSaid>("hardstop pid 42: " + HardStop::text(outcome));
  };
  using End = HardStopSaid::End;
  EXPECT_EQ(saidBy(HardStop::Exited()).end, End::Exited);
  EXPECT_EQ(saidBy(HardStop::Cancelled()).end, End::Cancelled);
  EXPECT_FALSE(saidBy(HardStop::Cancelled()).gone);
  EXPECT_EQ(saidBy(HardStop::KilledGroup{.group = 43, .gone = true}).end, End::KilledGroup);
  EXPECT_EQ(saidBy(HardStop::KilledGroup{.group = 43, .gone = true}).target, 43);
  EXPECT_TRUE(saidBy(HardStop::KilledGroup{.group = 43, .gone = true}).gone);
  EXPECT_EQ(saidBy(HardStop::KilledProcess{.pid = 44, .gone = false}).end, End::KilledProcess);
  EXPECT_FALSE(saidBy(HardStop::KilledProcess{.pid = 44, .gone = false}).gone);
  EXPECT_EQ(saidBy(HardStop::Spared{.reason = "young_core", .gone = true}).reason, "young_core");
  EXPECT_EQ(saidBy(HardStop::Spared{.reason = "a\"b", .gone = false}).reason, "a\"b");
  EXPECT_EQ(saidBy(HardStop::Exited()).pid, 42);
}

TEST(MessageTest, TheRestIsReadAsWell) {
  EXPECT_EQ(said<MoveResultSaid>("move-to-applications -> not_writable").code, "not_writable");
  EXPECT_EQ(said<FatalSaid>("fatal: no home").why, "no home");
}

TEST(MessageTest, WhatIsNearlyALineIsNone) {
  for (const auto* text :
       {"", "restart", "restart -> status", "restart -> status x ok Optional(true)",
        "restart -> status 1 ok Optional(yes)", "restart -> status 1 ok Optional(true) kickstart",
        "restart -> status 1 ok Optional(true) and more",
        "restart -> status 1 ok Optional(true) more<private>", "hardstop pid : exited",
        "hardstop pid 1: gone", "hardstop pid 1: killedGroup(x, gone: true)",
        "hardstop pid 1: killedGroup(1, gone: maybe)", "hardstop pid 1: exited ",
        "hardstop pid 1: killed(1, gone: true)", "move-to-applications -> ", "move-to-applications -> Moved!",
        "receipt failed!", "restart -> status 99999999999999999999 ok Optional(true)"})
    EXPECT_FALSE(messageIn(text)) << text;
}

}  // namespace
}  // namespace tamo::support
