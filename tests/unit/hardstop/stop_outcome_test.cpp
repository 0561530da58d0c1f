#include "hardstop/stop_outcome.hpp"

#include <gtest/gtest.h>

namespace tamo::HardStop {
namespace {

TEST(OutcomeTest, TheTextOfEveryCaseIsFixed) {
  EXPECT_EQ(text(Spared{"young_core", false}), "spared(\"young_core\", gone: false)");
  EXPECT_EQ(text(Spared{"revert_release", true}), "spared(\"revert_release\", gone: true)");
  EXPECT_EQ(text(KilledGroup{4242, true}), "killedGroup(4242, gone: true)");
  EXPECT_EQ(text(KilledGroup{4242, false}), "killedGroup(4242, gone: false)");
  EXPECT_EQ(text(KilledProcess{17, true}), "killedProcess(17, gone: true)");
  EXPECT_EQ(text(KilledProcess{-17, false}), "killedProcess(-17, gone: false)");
  EXPECT_EQ(text(KilledGroup{2147483647, true}), "killedGroup(2147483647, gone: true)");
  EXPECT_EQ(text(Spared{"", true}), "spared(\"\", gone: true)");
  EXPECT_EQ(text(Exited()), "exited");
  EXPECT_EQ(text(Cancelled()), "cancelled");
}

TEST(OutcomeTest, TheReasonIsNotEscaped) {
  EXPECT_EQ(text(Spared{"a\"b\\c", false}), "spared(\"a\"b\\c\", gone: false)");
}

TEST(OutcomeTest, EqualNeedsTheSameCaseAndTheSamePayload) {
  const Outcome outcome = KilledGroup{4242, true};
  EXPECT_EQ(outcome, Outcome(KilledGroup{4242, true}));
  EXPECT_NE(outcome, Outcome(KilledGroup{4242, false}));
  EXPECT_NE(outcome, Outcome(KilledGroup{4243, true}));
  EXPECT_NE(outcome, Outcome(KilledProcess{4242, true}));
  EXPECT_NE(Outcome(Spared{"a", true}), Outcome(Spared{"b", true}));
  EXPECT_NE(Outcome(Spared{"a", true}), Outcome(Spared{"a", false}));
  EXPECT_NE(Outcome(Exited()), Outcome(Cancelled()));
}

}  // namespace
}  // namespace tamo::HardStop
