#include "platform/macos/mac_workspace.hpp"

#import <AppKit/AppKit.h>
#include <utility>

#include "platform/macos/foundation_values.hpp"

namespace tamo::macos {
namespace {

/// A completion never comes inside the call that asks for it.
void failLater(const MacWorkspace::Completion& deliver) {
  const auto later = deliver;
  dispatch_async(dispatch_get_global_queue(QOS_CLASS_DEFAULT, 0), ^{
    later(platform::errorOf(std::nullopt));
  });
}

}  // namespace

/// The list changes only while the main loop turns (NSWorkspace.h), so whoever waits for a change has to let
/// it turn. Both values may be missing.
std::vector<platform::RunningApplication> MacWorkspace::runningApplications() {
  @autoreleasepool {
    std::vector<platform::RunningApplication> applications;
    for (NSRunningApplication* running in NSWorkspace.sharedWorkspace.runningApplications)
      applications.push_back(
          {.bundleIdentifier = textOf(running.bundleIdentifier), .bundlePath = pathOf(running.bundleURL)});
    return applications;
  }
}

void MacWorkspace::openApplication(const std::string& path, Completion completion) {
  const auto deliver = std::move(completion);
  @autoreleasepool {
    NSURL* url = fileURL(path);
    if (url == nil) return failLater(deliver);
    NSWorkspaceOpenConfiguration* configuration = [NSWorkspaceOpenConfiguration configuration];
    configuration.activates = YES;
    // Else a copy that runs from another place, the one that was moved, would be brought forward instead.
    configuration.allowsRunningApplicationSubstitution = NO;
    [NSWorkspace.sharedWorkspace
        openApplicationAtURL:url
               configuration:configuration
           completionHandler:^(NSRunningApplication* __unused opened, NSError* error) {
             deliver(failureOf(error));
           }];
  }
}

}  // namespace tamo::macos
