#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

#include "platform/macos/mac_application.hpp"

namespace tamo::macos {
namespace {

TEST(MacApplicationTest, AppKitIsToldWhatToMakeOfArgumentsAndExceptions) {
  MacApplication().becomeAccessory();
  NSUserDefaults* defaults = NSUserDefaults.standardUserDefaults;
  EXPECT_TRUE([[defaults stringForKey:@"NSTreatUnknownArgumentsAsOpen"] isEqualToString:@"NO"]);
  EXPECT_TRUE([defaults boolForKey:@"NSApplicationCrashOnExceptions"]);
}

}  // namespace
}  // namespace tamo::macos
