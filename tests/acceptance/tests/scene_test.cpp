#include "acceptance/scene.hpp"

#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "acceptance/check.hpp"
#include "acceptance/tests/nowhere.hpp"

namespace tamo::acceptance {
namespace {

/// A place where companions act at once, and all that they leave is one line. Each that is started starts a Core anew.
class Somewhere : public Nowhere {
 public:
  explicit Somewhere(std::string line) : Nowhere(true), line_(std::move(line)) {}
  int start(const Start&) override { return ++core_; }
  bool ended(int) override { return true; }
  std::string open(const std::string&) override { return ""; }
  std::vector<pid_t> running() override { return {}; }
  Printed print() override { return {.status = 0, .text = "\n\tpid = " + std::to_string(core_)}; }
  std::vector<Line> lines(std::int64_t, std::size_t) override { return {{.text = line_}}; }
  std::string unreadable() override { return ""; }
  std::optional<platform::ProcessInfo> info(std::int32_t) const override { return platform::ProcessInfo(); }
  std::int64_t now() override {
    return std::chrono::duration_cast<std::chrono::microseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
  }

 private:
  std::string line_;
  int core_ = 100;
};

Findings found(std::string_view check, Somewhere& place) {
  Findings findings;
  Scene scene(placeOf(place), findings, {});
  checkNamed(check)->play(scene);
  return findings;
}

/// The first URL takes longer than the companion waits.
class SlowAtFirst final : public Somewhere {
 public:
  SlowAtFirst() : Somewhere(enabled("status")) {}
  std::string open(const std::string&) override {
    if (opened_++ == 0) Scene::pause(std::chrono::milliseconds(360));
    return "";
  }

 private:
  int opened_ = 0;
};

TEST(UrlChecksTest, TheCoreOfASlowTryIsNotTheOneThatTheNextTryLooksFor) {
  SlowAtFirst place;
  const auto findings = found("url-last-wins", place);
  EXPECT_EQ(findings.facts().size(), 2U);
  EXPECT_TRUE(findings.allHold());
}

/// A companion is there only at the third look.
class StartsSlowly final : public Somewhere {
 public:
  StartsSlowly() : Somewhere(enabled("status")) {}
  std::vector<pid_t> running() override {
    return ++looks_ < 3 ? std::vector<pid_t>() : std::vector<pid_t>{7};
  }
  std::string open(const std::string&) override {
    openedEarly = openedEarly || looks_ < 3;
    return "";
  }
  bool openedEarly = false;

 private:
  int looks_ = 0;
};

TEST(UrlChecksTest, AUrlWithinTheIntakeIsHandedToACompanionThatIsThere) {
  StartsSlowly place;
  EXPECT_TRUE(found("url-within", place).allHold());
  EXPECT_FALSE(place.openedEarly);
}

/// Of a user who may not read the log, and who closes the prompt.
class Unreadable final : public Somewhere {
 public:
  Unreadable() : Somewhere("") {}
  std::string unreadable() override { return "no log"; }
  std::string folder(Copy) const override { return "/nowhere"; }
  void loseApplications(const std::string&) override {}
};

TEST(UnreadableLogTest, WhatTheLinesWouldTellCannotBeJudged) {
  Unreadable place;
  Findings findings;
  Scene scene(placeOf(place), findings, {});
  const auto acted = scene.act("status");
  EXPECT_EQ(acted.unread, "no log");
  EXPECT_THROW(scene.left(acted, {}), CannotArrange);
  EXPECT_THROW(scene.ended(acted, ""), CannotArrange);
}

TEST(UnreadableLogTest, AMoveIsJudgedByTheRest) {
  Unreadable place;
  const auto findings = found("move-cancelled", place);
  ASSERT_EQ(findings.facts().size(), 1U);
  EXPECT_EQ(findings.facts().front().answer, "no log");
  EXPECT_EQ(findings.judgements().size(), 3U);
}

TEST(SignalTest, WhereThereIsNoProcessNobodyIsSignalled) {
  const auto child = ::fork();
  if (child == 0) {
    ::setpgid(0, 0);
    Scene::signal(0, SIGKILL);
    ::_exit(3);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status));
}

/// What the checks of the move find.
class Placing final : public Nowhere {
 public:
  Placing() : Nowhere(true) {}
  void place(const Sample& sample) override { marked = sample.marked; }
  bool marked = false;
};

class LaidPlacing final : public LaidPlace {
 public:
  explicit LaidPlacing(Placing& placing) : place_(placeOf(placing)) {}
  const Place& place() override { return place_; }
  void begin() override {}
  std::vector<Kept> leftovers() override { return {}; }

 private:
  const Place place_;
};

TEST(SettingTest, ADownloadedCopyBearsNoMarkUntilACheckIsAboutIt) {
  Placing placing;
  const Check check{.name = "x", .sees = "x.", .setting = Setting::Downloaded, .play = [](Scene& scene) {
                      scene.see.that(true, "it is so");
                    }};
  const auto played = play(check, [&] { return std::make_unique<LaidPlacing>(placing); }, {});
  EXPECT_EQ(played.outcome, Outcome::Held);
  EXPECT_FALSE(placing.marked);
}

}  // namespace
}  // namespace tamo::acceptance
