#import <AppKit/AppKit.h>
#include <cstdint>
#include <cstdlib>

/// An application for tests to open. It does nothing, and ends by itself should nobody end it.
int main() {
  @autoreleasepool {
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 120 * static_cast<std::int64_t>(NSEC_PER_SEC)),
                   dispatch_get_main_queue(), ^{
                     std::exit(0);
                   });
    [[NSApplication sharedApplication] setActivationPolicy:NSApplicationActivationPolicyAccessory];
    [NSApp run];
  }
  return 0;
}
