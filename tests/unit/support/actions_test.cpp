#include "support/actions.hpp"

#include <gtest/gtest.h>

/// Which lines belong to one action, and in which order actions are handed on.
namespace tamo::support {
namespace {

using Texts = std::vector<std::string>;

/// Puts lines in, at seconds, and notes what comes out: "812:3" for an action of process 812 with three lines.
class Handed {
 public:
  Handed& line(int second, std::int64_t pid, const std::string& text) {
    actions_.take(pid,
                  {.at = {.localMicros = std::int64_t{second} * 1'000'000}, .message = *messageIn(text)});
    return *this;
  }
  Handed& aside(const std::string& remark) {
    actions_.take(Aside{.remark = remark});
    return *this;
  }
  [[nodiscard]] const Texts& soFar() const { return out_; }
  Texts all() {
    actions_.finish();
    return out_;
  }

 private:
  void note(const Item& item) {
    const auto* action = std::get_if<Action>(&item);
    out_.push_back(action == nullptr
                       ? std::get<Aside>(item).remark
                       : std::to_string(action->pid) + ":" + std::to_string(action->lines.size()));
  }

  Texts out_;
  Actions actions_{[this](const Item& item) { note(item); }};
};

const std::string definition = "definition: loaded a exit 20 · bundled a exit 20 · changed false";
const std::string hardStop = "hardstop pid 777: exited";
const std::string outcome = "restart -> status 1 ok Optional(true) kickstart 0";
const std::string receipt = "receipt failed";

TEST(ActionsTest, TheLinesOfOneProcessAreOneAction) {
  Handed handed;
  handed.line(0, 8, definition).line(2, 8, hardStop).line(2, 8, outcome);
  EXPECT_EQ(handed.all(), Texts{"8:3"});
}

TEST(ActionsTest, ProcessesThatRunAtOnceAreToldApart) {
  Handed handed;
  handed.line(0, 8, definition).line(1, 9, definition).line(2, 8, outcome).line(3, 9, outcome);
  EXPECT_EQ(handed.all(), (Texts{"8:2", "9:2"}));
}

TEST(ActionsTest, AFailedReceiptBelongsToTheOutcomeBeforeIt) {
  Handed handed;
  handed.line(0, 8, outcome).line(1, 8, receipt).line(2, 8, receipt);
  EXPECT_EQ(handed.all(), (Texts{"8:3"}));
}

TEST(ActionsTest, AFailedReceiptLongAfterIsAnotherProcesss) {
  Handed handed;
  handed.line(0, 8, outcome).line(11, 8, receipt);
  EXPECT_EQ(handed.all(), (Texts{"8:1", "8:1"}));
}

TEST(ActionsTest, APidThatIsGivenAgainBeginsAnotherAction) {
  Handed handed;
  handed.line(0, 8, outcome).line(1, 8, outcome).line(2, 8, definition).line(3, 8, definition);
  EXPECT_EQ(handed.all(), (Texts{"8:1", "8:1", "8:1", "8:1"}));
}

TEST(ActionsTest, ALineAfterMoreThanAnHourIsAnotherProcesss) {
  EXPECT_EQ(Handed().line(0, 8, definition).line(3600, 8, outcome).all(), (Texts{"8:2"}));
  EXPECT_EQ(Handed().line(0, 8, definition).line(3601, 8, outcome).all(), (Texts{"8:1", "8:1"}));
  EXPECT_EQ(Handed().line(3601, 8, definition).line(0, 8, outcome).all(), (Texts{"8:1", "8:1"}));
}

TEST(ActionsTest, AnActionIsHandedOnOnceNothingCanFollow) {
  Handed handed;
  handed.line(0, 8, outcome).line(10, 9, definition);
  EXPECT_EQ(handed.soFar(), Texts{});
  handed.line(11, 10, outcome);
  EXPECT_EQ(handed.soFar(), Texts{"8:1"});
}

TEST(ActionsTest, TheOrderIsThatOfTheFirstLines) {
  Handed handed;
  handed.line(0, 8, definition).line(1, 9, outcome).line(30, 8, outcome).line(60, 10, outcome);
  EXPECT_EQ(handed.soFar(), (Texts{"8:2", "9:1"}));
}

TEST(ActionsTest, WhatStandsBetweenActionsKeepsItsPlace) {
  Handed handed;
  handed.aside("first").line(0, 8, definition).aside("second");
  EXPECT_EQ(handed.soFar(), Texts{"first"});
  EXPECT_EQ(handed.line(1, 8, outcome).all(), (Texts{"first", "8:2", "second"}));
}

TEST(ActionsTest, OfVeryManyThatAreOpenTheOldestGoesFirst) {
  Handed handed;
  for (int pid = 1; pid <= 65; ++pid)
    handed.line(0, pid, definition);
  EXPECT_EQ(handed.soFar(), Texts{"1:1"});
}

TEST(ActionsTest, AnActionWithoutAnEndOfLinesIsCut) {
  Handed handed;
  for (int line = 0; line < 17; ++line)
    handed.line(0, 8, hardStop);
  EXPECT_EQ(handed.all(), (Texts{"8:16", "8:1"}));
}

TEST(ActionsTest, TheLinesThatEndAnActionAreKnown) {
  for (const auto* text :
       {"restart -> status 1 ok Optional(true)", "sync refused: x", "move-to-applications -> moved",
        "move refused: this Tamo doesn't need moving", "fatal: x"})
    EXPECT_TRUE(endsAction(*messageIn(text))) << text;
  for (const auto& text : {definition, hardStop, receipt})
    EXPECT_FALSE(endsAction(*messageIn(text))) << text;
}

}  // namespace
}  // namespace tamo::support
