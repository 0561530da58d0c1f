#import <AppKit/AppKit.h>
#include <cstdlib>
#include <filesystem>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "contract/backend.hpp"
#include "platform/macos/foundation_values.hpp"
#include "platform/macos/mac_host.hpp"
#include "platform/posix/posix_local_sockets.hpp"

/// An application that only leaves its main loop when it is asked to terminate. A process has one application
/// object for good, so each test of the main loop needs a process of its own, as ctest gives it.
@interface TamoOutlivingApplication : NSApplication
@end

@implementation TamoOutlivingApplication

- (void)terminate:(id)__unused sender {
  [self stop:nil];
  // The loop looks whether it was stopped only after an event.
  [self postEvent:[NSEvent otherEventWithType:NSEventTypeApplicationDefined
                                     location:NSZeroPoint
                                modifierFlags:0
                                    timestamp:0
                                 windowNumber:0
                                      context:nil
                                      subtype:0
                                        data1:0
                                        data2:0]
          atStart:YES];
}

@end

namespace tamo::contract {
namespace {

/// The Mac that the tests run on, with a folder in its temporary one, named without links: so the system names
/// the applications that run from there.
class MacBackend final : public Backend {
 public:
  MacBackend() {
    std::string made = "/private/tmp/tamo.XXXXXX";
    if (::mkdtemp(made.data()) == nullptr) ADD_FAILURE() << "no folder below /private/tmp";
    folder_ = made;
  }
  ~MacBackend() override {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  [[nodiscard]] const platform::Platform& platform() const override { return host_.platform(); }
  [[nodiscard]] std::string folder() const override { return folder_; }
  [[nodiscard]] std::string host(const std::string& path) const override { return path; }
  [[nodiscard]] platform::Descriptor listen(const std::string& path) const override {
    auto made = platform::localStreamSocket();
    const auto address = platform::socketAddress(path);
    if (!made || !address) return {};
    const auto* form = reinterpret_cast<const sockaddr*>(&*address);
    if (::bind(made.get(), form, sizeof *address) != 0 || ::listen(made.get(), 8) != 0) return {};
    return made;
  }
  void outliveTerminate() override { [TamoOutlivingApplication sharedApplication]; }
  /// Handed to the delegate as the system does it. That the system delivers the URLs of the scheme at all
  /// takes an installed bundle and is not tested here.
  void sendURLs(const std::vector<std::string>& urls) const override {
    NSMutableArray<NSURL*>* open = [NSMutableArray array];
    for (const auto& url : urls)
      [open addObject:[NSURL URLWithString:macos::foundationText(url)]];
    dispatch_async(dispatch_get_main_queue(), ^{
      [NSApp.delegate application:NSApp openURLs:open];
    });
  }
  [[nodiscard]] bool seesZombies() const override { return false; }

 private:
  std::string folder_;
  macos::MacHost host_;
};

}  // namespace

std::vector<BackendKind> backends() {
  return {{.name = "Mac", .make = [] { return std::make_unique<MacBackend>(); }}};
}

}  // namespace tamo::contract
