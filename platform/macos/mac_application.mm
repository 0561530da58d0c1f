#include "platform/macos/mac_application.hpp"

#import <AppKit/AppKit.h>
#include <string>
#include <vector>

#include "platform/fatal.hpp"
#include "platform/macos/foundation_values.hpp"

namespace {

using tamo::platform::ApplicationDelegate;

// Nothing may be thrown into the system's frames.
void launched(ApplicationDelegate& delegate) noexcept {
  delegate.applicationDidFinishLaunching();
}

void opened(ApplicationDelegate& delegate, NSArray<NSURL*>* urls) noexcept {
  std::vector<std::string> open;
  for (NSURL* url in urls)
    open.push_back(tamo::macos::textOf(url.absoluteString).value_or(""));
  delegate.application(open);
}

}  // namespace

/// Passes what the application object tells on to the platform's delegate.
@interface TamoApplicationDelegate : NSObject <NSApplicationDelegate>
- (instancetype)initWithDelegate:(tamo::platform::ApplicationDelegate&)delegate;
@end

@implementation TamoApplicationDelegate {
  tamo::platform::ApplicationDelegate* _delegate;
}

- (instancetype)initWithDelegate:(tamo::platform::ApplicationDelegate&)delegate {
  self = [super init];
  if (self != nil) _delegate = &delegate;
  return self;
}

- (void)applicationDidFinishLaunching:(NSNotification*)__unused notification {
  launched(*_delegate);
}

- (void)application:(NSApplication*)__unused application openURLs:(NSArray<NSURL*>*)urls {
  opened(*_delegate, urls);
}

@end

namespace tamo::macos {

void MacApplication::becomeAccessory() {
  @autoreleasepool {
    // A refusal has no consequence: the bundle's own list asks for the same.
    [[NSApplication sharedApplication] setActivationPolicy:NSApplicationActivationPolicyAccessory];
  }
}

void MacApplication::setDelegate(platform::ApplicationDelegate& delegate) {
  // The application object does not keep its delegate alive.
  static TamoApplicationDelegate* kept = nil;
  @autoreleasepool {
    kept = [[TamoApplicationDelegate alloc] initWithDelegate:delegate];
    [NSApplication sharedApplication].delegate = kept;
  }
}

void MacApplication::run() {
  @autoreleasepool {
    [[NSApplication sharedApplication] run];
  }
}

void MacApplication::terminate() {
  if (NSApp == nil) platform::fatal("there is no application to terminate");
  [NSApp terminate:nil];
}

}  // namespace tamo::macos
