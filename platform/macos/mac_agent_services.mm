#include "platform/macos/mac_agent_services.hpp"

#import <ServiceManagement/ServiceManagement.h>
#include <utility>

#include "values/fatal.hpp"
#include "platform/macos/foundation_values.hpp"

namespace tamo::macos {
namespace {

using platform::Error;

class MacAgentService final : public platform::AgentService {
 public:
  explicit MacAgentService(SMAppService* service) : service_(service) {}

  [[nodiscard]] std::int64_t status() override {
    @autoreleasepool {
      return service_.status;
    }
  }
  void registerAgent() override {
    // Raised outside the autorelease pool, which an exception would leave unemptied.
    const auto failure = failureOfRegistering();
    if (failure) throw Error(*failure);
  }
  void unregisterAgent(Completion completion) override {
    const auto deliver = std::move(completion);
    @autoreleasepool {
      [service_ unregisterWithCompletionHandler:^(NSError* error) {
        deliver(failureOf(error));
      }];
    }
  }

 private:
  [[nodiscard]] std::optional<Error> failureOfRegistering() {
    @autoreleasepool {
      NSError* error = nil;
      if ([service_ registerAndReturnError:&error]) return std::nullopt;
      return platform::errorOf(reportOf(error));
    }
  }

  SMAppService* service_;
};

}  // namespace

std::unique_ptr<platform::AgentService> MacAgentServices::agent(const std::string& plistName) {
  @autoreleasepool {
    NSString* name = foundationText(plistName);
    // The name is the product's own constant, so it is a text.
    if (name == nil) values::fatal("the name of an agent's property list is no text");
    return std::make_unique<MacAgentService>([SMAppService agentServiceWithPlistName:name]);
  }
}

void MacAgentServices::openSystemSettingsLoginItems() {
  @autoreleasepool {
    [SMAppService openSystemSettingsLoginItems];
  }
}

}  // namespace tamo::macos
