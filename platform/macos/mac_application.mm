#include "platform/macos/mac_application.hpp"

#import <AppKit/AppKit.h>
#include <string>
#include <vector>

#include "values/fatal.hpp"
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
namespace {

/// What AppKit reads of its user defaults. A registered value counts as long as the user has set none.
void registerDefaults() {
  [NSUserDefaults.standardUserDefaults registerDefaults:@{
    // Else AppKit takes an argument that it doesn't know for a file to open. A text, as on a command line.
    @"NSTreatUnknownArgumentsAsOpen" : @"NO",
    // Else AppKit logs an exception that reaches the main loop and goes on, with an action that never ends.
    @"NSApplicationCrashOnExceptions" : @YES,
  }];
}

/// The application object. Its defaults are there before it is made, because it reads some as it begins.
NSApplication* application() {
  static NSApplication* const made = [] {
    registerDefaults();
    return [NSApplication sharedApplication];
  }();
  return made;
}

/// Without it the system slows down a process that has no window and is not in front: in such ones, waits
/// were seen to take many times as long. The machine may still fall asleep.
id beginAction() {
  return [NSProcessInfo.processInfo beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                                                      reason:@"One action on the Core"];
}

}  // namespace

void MacApplication::becomeAccessory() {
  @autoreleasepool {
    // A refusal has no consequence: the bundle's own list asks for the same.
    [application() setActivationPolicy:NSApplicationActivationPolicyAccessory];
  }
}

void MacApplication::setDelegate(platform::ApplicationDelegate& delegate) {
  // The application object does not keep its delegate alive.
  static TamoApplicationDelegate* kept = nil;
  @autoreleasepool {
    kept = [[TamoApplicationDelegate alloc] initWithDelegate:delegate];
    application().delegate = kept;
  }
}

void MacApplication::run() {
  @autoreleasepool {
    // From the launch on, because a process lives for one action, and the wait for its URLs counts as well.
    // The terminate request ends the process inside the loop; what follows is for a loop that is stopped.
    const id action = beginAction();
    [application() run];
    [NSProcessInfo.processInfo endActivity:action];
  }
}

void MacApplication::terminate() {
  if (NSApp == nil) values::fatal("there is no application to terminate");
  [NSApp terminate:nil];
}

}  // namespace tamo::macos
