#include "app/outcome_record.hpp"

#include <gtest/gtest.h>

#include "platform/log_text.hpp"

namespace tamo {
namespace {

std::string shown(const OutcomeRecord& record) {
  return platform::shownText(outcomeLine("register", 1, record));
}

TEST(OutcomeLineTest, AKickstartedRegisterShowsItsExitStatus) {
  EXPECT_EQ(shown({{"ok", true}, {"kickstart", std::int64_t{0}}}),
            "register -> status 1 ok Optional(true) kickstart 0<private>");
}

TEST(OutcomeLineTest, AReseatFollowsTheKickstart) {
  const OutcomeRecord record{{"ok", false}, {"kickstart", std::int64_t{-1}}, {"reseated", "definition"}};
  EXPECT_EQ(shown(record),
            "register -> status 1 ok Optional(false) kickstart -1 reseated definition<private>");
  EXPECT_EQ(shown({{"ok", true}, {"reseated", "definition"}}),
            "register -> status 1 ok Optional(true) reseated definition<private>");
}

TEST(OutcomeLineTest, AnAbsentOkPrintsNil) {
  EXPECT_EQ(shown({}), "register -> status 1 ok nil<private>");
}

TEST(OutcomeLineTest, AnErrorShowsDomainAndCodeAndHidesItsDescription) {
  const auto record = failureRecord(platform::Error("TamoCore", 64, "Unknown action"));
  EXPECT_EQ(shown(record), "register -> status 1 ok Optional(false) error TamoCore 64<private>");
  EXPECT_EQ(outcomeLine("register", 1, record).arguments.back(), platform::LogArgument(" Unknown action"));
}

TEST(OutcomeLineTest, AnErrorWithoutACodeHasAnEmptyTextInItsPlace) {
  EXPECT_EQ(shown({{"ok", false}, {"domain", "D"}}),
            "register -> status 1 ok Optional(false) error D <private>");
}

TEST(OutcomeLineTest, ACodeWithoutADomainShowsNothing) {
  EXPECT_EQ(shown({{"ok", false}, {"code", std::int64_t{3}}}),
            "register -> status 1 ok Optional(false)<private>");
}

TEST(OutcomeLineTest, ADescriptionThatIsNoTextShowsNothing) {
  const auto line = outcomeLine("sync", 0, {{"description", std::int64_t{5}}});
  EXPECT_EQ(line.arguments.back(), platform::LogArgument(""));
}

/// Present and empty is present.
TEST(OutcomeLineTest, EmptyTextsThatArePresentKeepTheirBlanks) {
  const auto line = outcomeLine("", 1, failureRecord(platform::Error("", 0, "")));
  const std::vector<platform::LogArgument> expected{"", std::int64_t{1}, "Optional(false)",
                                                    "", " error  0",     " "};
  EXPECT_EQ(line.arguments, expected);
}

TEST(OutcomeLineTest, TheActionAndTheStatusAreThoseOfTheLineNotOfTheRecord) {
  const OutcomeRecord record{{"ok", true}, {"operation", "sync"}, {"status", std::int64_t{3}}};
  EXPECT_EQ(shown(record), "register -> status 1 ok Optional(true)<private>");
}

TEST(OutcomeLineTest, NumbersAreWrittenWhole) {
  const OutcomeRecord record{{"ok", true}, {"kickstart", std::int64_t{-2147483648}}};
  EXPECT_EQ(platform::shownText(outcomeLine("register", 9007199254740993, record)),
            "register -> status 9007199254740993 ok Optional(true) kickstart -2147483648<private>");
  EXPECT_EQ(shown(failureRecord(platform::Error("D", 9223372036854775807, ""))),
            "register -> status 1 ok Optional(false) error D 9223372036854775807<private>");
}

TEST(OutcomeLineTest, WhatOnlyTheReceiptTellsIsNotInTheLine) {
  const OutcomeRecord record{{"ok", false}, {"needsApproval", true}, {"hardStop", "exited stopFailed"}};
  EXPECT_EQ(shown(record), "register -> status 1 ok Optional(false)<private>");
}

TEST(OutcomeLineTest, OnlyTheDescriptionIsPrivate) {
  const OutcomeRecord record{{"ok", false},   {"kickstart", std::int64_t{5}}, {"reseated", "definition"},
                             {"domain", "D"}, {"code", std::int64_t{3}},      {"description", "secret"}};
  EXPECT_EQ(shown(record),
            "register -> status 1 ok Optional(false) kickstart 5 reseated definition error D 3<private>");
}

TEST(OutcomeLineTest, TheFormatIsTheFixedOneAtDefaultLevel) {
  EXPECT_EQ(platform::formatText(platform::LogFormat::outcome),
            "%{public}s -> status %{public}ld ok %{public}s%{public}s%{public}s%{private}s");
  EXPECT_EQ(platform::levelOf(platform::LogFormat::outcome), platform::LogLevel::Default);
}

TEST(FailureRecordTest, HoldsTheErrorAndNothingElse) {
  const OutcomeRecord expected{
      {"ok", false}, {"domain", "D"}, {"code", std::int64_t{-7}}, {"description", "what happened"}};
  EXPECT_EQ(failureRecord(platform::Error("D", -7, "what happened")), expected);
}

}  // namespace
}  // namespace tamo
