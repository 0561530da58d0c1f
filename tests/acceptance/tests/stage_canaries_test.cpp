#include <algorithm>
#include <gtest/gtest.h>

#include "acceptance/stage/canaries.hpp"
#include "acceptance/stage/canary_session.hpp"
#include "acceptance/stage/stage_evidence.hpp"

namespace tamo::acceptance {
namespace {

bool notForStagesHas(std::string_view name) {
  return std::ranges::find(notForStages(), name) != notForStages().end();
}

TEST(StageCanariesTest, EachCheckThatAStagePlaysHasOne) {
  for (const auto& theme : allThemes())
    for (const auto& check : theme.checks)
      EXPECT_NE(canaryOf(check.name) != nullptr, notForStagesHas(check.name)) << check.name;
}

TEST(StageCanariesTest, EachIsOfACheckAndLies) {
  for (const auto& canary : allCanaries()) {
    EXPECT_NE(checkNamed(canary.check), nullptr) << canary.check;
    const bool lies = canary.plant.plant != nullptr || canary.plant.core ||
                      canary.plant.companion != stage::Companion::Shipped || canary.plant.oneSession;
    EXPECT_TRUE(lies) << canary.check;
    EXPECT_NE(canary.finds, "") << canary.check;
    EXPECT_EQ(std::ranges::count(allCanaries(), canary.check, &Canary::check), 1) << canary.check;
  }
}

const Canary canary{.check = "register", .lie = "it lies", .plant = {}, .finds = "the Core runs"};

TEST(CanaryFaultTest, ACheckThatHoldsOnALyingStageIsTold) {
  EXPECT_EQ(canaryFault(canary, {.outcome = Outcome::Held}), "the check holds all the same");
}

TEST(CanaryFaultTest, ACheckThatIsNotPlayedSawNothing) {
  EXPECT_EQ(canaryFault(canary, {.outcome = Outcome::NotPlayed, .reason = "no"}),
            "the check is not played: no");
}

TEST(CanaryFaultTest, ItHasToFailByTheRightJudgement) {
  Played played{.outcome = Outcome::Failed};
  played.findings.that(false, "something else", "x");
  EXPECT_EQ(canaryFault(canary, played),
            "it fails, but not by \"the Core runs\" but by \"something else\": x");
  played.findings.that(true, "the Core runs");
  EXPECT_NE(canaryFault(canary, played), "");
  played.findings.that(false, "the Core runs");
  EXPECT_EQ(canaryFault(canary, played), "");
}

TEST(SparedTest, EachKindOfLieSparesACheckThatIsNotItsOwn) {
  const auto kinds = oneOfEachLie();
  EXPECT_GT(kinds.size(), 20U);
  for (const auto& one : allCanaries()) {
    const auto alike = [&](const Canary* other) { return other->plant == one.plant; };
    EXPECT_EQ(std::ranges::count_if(kinds, alike), 1) << one.check;
    EXPECT_NE(checkNamed(sparedBy(one.plant)), nullptr) << one.check;
    EXPECT_NE(sparedBy(one.plant), one.check);
  }
}

TEST(SparedTest, ACheckThatFailsByALieThatIsNothingToItIsTold) {
  Played played{.check = checkNamed("status"), .outcome = Outcome::Held};
  EXPECT_EQ(sparedFault(played), "");
  played.outcome = Outcome::Failed;
  EXPECT_EQ(sparedFault(played), "its lie is nothing to status, which does not hold all the same");
}

TEST(HonestFaultTest, OnlyACheckThatHoldsIsWithoutOne) {
  Played played{.check = checkNamed("status"), .outcome = Outcome::Held};
  EXPECT_EQ(honestFault(played), "");
  played.outcome = Outcome::Failed;
  played.findings.that(false, "the Core runs", "none");
  EXPECT_EQ(honestFault(played), "it fails on a stage that is honest, by \"the Core runs\": none");
  EXPECT_EQ(honestFault({.outcome = Outcome::NotPlayed, .reason = "no"}),
            "it is not played on a stage that is honest: no");
}

TEST(TurnsTest, AfterEachLieTheNextCheckIsPlayedHonestly) {
  const auto turns = turnsOf(chosen({"lock", "last-words"}).checks);
  std::string order;
  for (const auto& turn : turns)
    order += std::string(turn.canary == nullptr ? "" : "lying ") + std::string(turn.check->name) + ", ";
  EXPECT_EQ(order,
            "lying lock-held, lock-released, lying lock-released, lock-status, lying lock-status, "
            "lock-held, ");
}

TEST(TurnsTest, EachCheckThatAStagePlaysLiesOnceAndIsHonestOnce) {
  const auto turns = turnsOf(chosen({}).checks);
  for (const auto& one : allCanaries()) {
    for (const auto kind : {Turn::Kind::Lying, Turn::Kind::Honest}) {
      const auto isIt = [&](const Turn& turn) { return turn.kind == kind && turn.check->name == one.check; };
      EXPECT_EQ(std::ranges::count_if(turns, isIt), 1) << one.check;
    }
  }
}

TEST(LineOfStageTest, AllColumnsAreRead) {
  const auto line = lineOfStage(
      "1970-01-01T00:00:01.250Z\t42\terror\tstudio\tlifecycle\ta\\nb <private>\t{public:a\\nb\\{} {private}");
  ASSERT_TRUE(line.has_value());
  EXPECT_EQ(line->time, 1'250'000);
  EXPECT_EQ(line->pid, 42);
  EXPECT_EQ(line->level, Level::Error);
  EXPECT_EQ(line->text, "a\nb <private>");
  EXPECT_EQ(line->marks, (std::vector{Mark::Public, Mark::Private}));
}

TEST(LineOfStageTest, AControlCharacterIsReadFromItsNumber) {
  const auto line = lineOfStage("1970-01-01T00:00:01.250Z\t42\terror\ts\tl\ta\\x1b[2J\\\\x1b\tmarks");
  ASSERT_TRUE(line.has_value());
  EXPECT_EQ(line->text, "a\x1b[2J\\x1b");
}

TEST(LineOfStageTest, WhatIsNoLineIsNone) {
  EXPECT_FALSE(lineOfStage("").has_value());
  EXPECT_FALSE(lineOfStage("yesterday\t42\terror\ts\tl\ta\tb").has_value());
}

}  // namespace
}  // namespace tamo::acceptance
