#include "platform/fatal.hpp"

#include <csignal>
#include <gtest/gtest.h>

namespace tamo::platform {
namespace {

TEST(FatalDeathTest, TheReasonIsSaidAndTheProcessAborts) {
  EXPECT_EXIT(fatal("no such thing"), ::testing::KilledBySignal(SIGABRT), "^fatal: no such thing\n$");
}

}  // namespace
}  // namespace tamo::platform
