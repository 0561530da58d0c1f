#include "acceptance/mac/mac_front.hpp"

#import <AppKit/AppKit.h>

namespace tamo::acceptance {

std::string frontmostApplication() {
  @autoreleasepool {
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, false);
    NSString* path = NSWorkspace.sharedWorkspace.frontmostApplication.bundleURL.path;
    return path == nil ? std::string() : std::string(path.UTF8String);
  }
}

}  // namespace tamo::acceptance
