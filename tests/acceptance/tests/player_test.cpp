#include "acceptance/player.hpp"

#include <gtest/gtest.h>

#include "acceptance/tests/nowhere.hpp"

namespace tamo::acceptance {
namespace {

Lay nowhere(bool bare) {
  return [bare] { return std::make_unique<LaidNowhere>(bare); };
}

const Check cannot{.name = "cannot", .sees = "x", .setting = Setting::Installed, .play = [](Scene& scene) {
                     static_cast<void>(scene.coreNow());
                   }};
const Check fails{.name = "fails", .sees = "x", .setting = Setting::Installed, .play = [](Scene& scene) {
                    scene.see.that(false, "it is so");
                    static_cast<void>(scene.coreNow());
                  }};
const Check empty{.name = "empty", .sees = "x", .setting = Setting::Installed, .play = [](Scene&) {}};
const Check holds{.name = "holds", .sees = "x", .setting = Setting::Installed, .play = [](Scene& scene) {
                    scene.see.that(true, "it is so");
                  }};

TEST(PlayerTest, WhatAPlaceCannotArrangeIsNotPlayedAndSaysWhy) {
  const auto atTheStart = play(holds, nowhere(false), {});
  EXPECT_EQ(atTheStart.outcome, Outcome::NotPlayed);
  const auto underWay = play(cannot, nowhere(true), {});
  EXPECT_EQ(underWay.outcome, Outcome::NotPlayed);
  EXPECT_EQ(underWay.reason, "this place has nothing");
}

TEST(PlayerTest, AFaultThatWasSeenBeforeCounts) {
  EXPECT_EQ(play(fails, nowhere(true), {}).outcome, Outcome::Failed);
}

TEST(PlayerTest, ACheckThatJudgesNothingFails) {
  EXPECT_EQ(play(empty, nowhere(true), {}).outcome, Outcome::Failed);
}

TEST(PlayerTest, ACheckHoldsWhenAllThatItJudgesDoes) {
  const auto played = play(holds, nowhere(true), {});
  EXPECT_EQ(played.outcome, Outcome::Held);
  ASSERT_EQ(played.findings.kept().size(), 1U);
  EXPECT_EQ(played.findings.kept().front().name, "notes");
}

TEST(PlayerTest, APlaceThatCannotBeLaidIsAFailure) {
  const auto played = play(holds, []() -> std::unique_ptr<LaidPlace> { throw PlaceError("no room"); }, {});
  EXPECT_EQ(played.outcome, Outcome::Failed);
  EXPECT_EQ(played.findings.judgements().front().seen, "no room");
}

TEST(RefusalTest, APersonIsNeededWhereThePlaceNeedsOne) {
  const Check prompted{.name = "prompted", .sees = "x", .person = "Type the password."};
  EXPECT_EQ(refusal(prompted, {.needsPersons = true}),
            "it needs a person, with ./accept --with-me: Type the password.");
  EXPECT_EQ(refusal(prompted, {.needsPersons = true, .personIsThere = true}), "");
  EXPECT_EQ(refusal(prompted, {.needsPersons = false}), "");
  EXPECT_EQ(refusal(holds, {.needsPersons = true}), "");
}

TEST(RefusalTest, ARealTamoHasNoCoreThatMisbehaves) {
  const Check stubborn{.name = "stubborn", .sees = "x", .needsSampleCore = true};
  EXPECT_EQ(refusal(stubborn, {.sampleCore = false}),
            "it needs the sample's own Core, not that of a real Tamo");
  EXPECT_EQ(refusal(stubborn, {}), "");
}

}  // namespace
}  // namespace tamo::acceptance
