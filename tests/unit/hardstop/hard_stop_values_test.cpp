#include <gtest/gtest.h>

#include "hardstop/spare_reason.hpp"
#include "hardstop/stop_outcome.hpp"

/// What is not said of a process is never a ground to signal somebody or to call a process gone.
namespace tamo::HardStop {
namespace {

TEST(SeenTest, BeginsWithNoProcessThatCouldBeSignalled) {
  EXPECT_EQ(Seen(), (Seen{.pid = 0, .startMicros = 0, .group = 0, .zombie = false}));
}

TEST(SpareFactsTest, BeginWithNothingThatSpares) {
  EXPECT_FALSE(SpareFacts().revertFilesPresent);
  EXPECT_EQ(spareReason({}), std::nullopt);
}

TEST(OutcomeTest, TheCasesHaveTheirOrder) {
  EXPECT_EQ(Outcome(Spared()).index(), 0U);
  EXPECT_EQ(Outcome(KilledGroup()).index(), 1U);
  EXPECT_EQ(Outcome(KilledProcess()).index(), 2U);
  EXPECT_EQ(Outcome(Exited()).index(), 3U);
  EXPECT_EQ(Outcome(Cancelled()).index(), 4U);
}

TEST(OutcomeTest, NobodyIsGoneUnlessItIsSaid) {
  EXPECT_EQ(Spared(), (Spared{.reason = "", .gone = false}));
  EXPECT_EQ(KilledGroup(), (KilledGroup{.group = 0, .gone = false}));
  EXPECT_EQ(KilledProcess(), (KilledProcess{.pid = 0, .gone = false}));
}

}  // namespace
}  // namespace tamo::HardStop
