#include "acceptance/player.hpp"

#include <gtest/gtest.h>

namespace tamo::acceptance {
namespace {

/// A place where nothing can be arranged: every operation says so.
class Nowhere final : public Copies,
                      public Companions,
                      public Job,
                      public Core,
                      public Evidence,
                      public User,
                      public Faults,
                      public platform::KernelProcesses {
 public:
  explicit Nowhere(bool bare) : bare_(bare) {}
  void place(const Sample&) override {
    if (!bare_) no();
  }
  void remove(Copy) override { no(); }
  void define(Copy, const Definition&) override { no(); }
  void changeExecutable(Copy) override { no(); }
  std::string path(Copy) const override { return no(); }
  std::string folder(Copy) const override { return no(); }
  int marked(Copy) const override { return no().empty() ? 0 : 1; }
  std::string signatureFault(Copy) const override { return no(); }
  int start(const Start&) override { return no().empty() ? 0 : 1; }
  bool ended(int) override { return no().empty(); }
  std::string open(const std::string&) override { return no(); }
  std::vector<pid_t> running() override { return {static_cast<pid_t>(no().size())}; }
  Printed print() override { return {.status = 0, .text = no()}; }
  void restart() override { no(); }
  void behave(const std::string&) override { no(); }
  std::vector<std::string> events() override { return {no()}; }
  std::int64_t now() override { return 0; }
  std::vector<Line> lines(std::int64_t, std::size_t) override { return {{.text = no()}}; }
  std::vector<std::string> crashes(std::int64_t) override { return {no()}; }
  void open(Copy) override { no(); }
  std::vector<RunningApp> applications() override { return {{.bundle = no()}}; }
  std::string front() override { return no(); }
  std::string whereabouts(int) override { return no(); }
  void approve(bool) override { no(); }
  void loseApplications(const std::string&) override { no(); }
  void sleepAWhile() override { no(); }
  void failNextRegister(const std::string&, int, const std::string&) override { no(); }
  void failNextUnregister(const std::string&, int, const std::string&) override { no(); }
  void failLaunchctl(const std::string&, int) override { no(); }
  std::optional<platform::ProcessInfo> info(std::int32_t) const override { return std::nullopt; }
  std::int32_t ownPid() const override { return 1; }
  std::int32_t ownGroup() const override { return 1; }
  void kill(std::int32_t) override {}
  void killGroup(std::int32_t) override {}

 private:
  static std::string no() { throw CannotArrange("this place has nothing"); }
  bool bare_;
};

class LaidNowhere final : public LaidPlace {
 public:
  explicit LaidNowhere(bool bare) : nowhere_(bare) {}
  const Place& place() override { return place_; }
  void begin() override {}
  std::vector<Kept> leftovers() override { return {{.name = "notes", .text = "none"}}; }

 private:
  Nowhere nowhere_;
  const Place place_{nowhere_, nowhere_, nowhere_, nowhere_, nowhere_, nowhere_, nowhere_, nowhere_, {}};
};

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
