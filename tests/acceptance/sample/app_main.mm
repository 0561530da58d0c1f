#import <AppKit/AppKit.h>

/// The sample's outer application: it does nothing but run, in the Dock like any other, until it is told to quit or gets
/// a signal.
int main() {
  @autoreleasepool {
    [[NSApplication sharedApplication] setActivationPolicy:NSApplicationActivationPolicyRegular];
    [NSApp run];
  }
  return 0;
}
