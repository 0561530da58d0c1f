#include "fakes/fake_agent_services.hpp"

#include <string>
#include <utility>

namespace tamo::fakes {

class FakeAgentServices::Agent final : public platform::AgentService {
 public:
  explicit Agent(FakeAgentServices& services) : services_(services) {}

  [[nodiscard]] std::int64_t status() override {
    auto answer = services_.status;
    if (!services_.nextStatuses.empty()) {
      answer = services_.nextStatuses.front();
      services_.nextStatuses.pop_front();
    }
    services_.note("status -> " + std::to_string(answer));
    return answer;
  }

  void registerAgent() override {
    services_.note("register");
    if (services_.registerError) throw platform::Error(*services_.registerError);
    services_.status = services_.statusAfterRegister;
  }

  void unregisterAgent(Completion completion) override {
    services_.note("unregister");
    services_.unregisterDelivery([&services = services_, completion = std::move(completion)] {
      if (!services.unregisterError) services.status = 0;
      completion(services.unregisterError);
    });
  }

 private:
  FakeAgentServices& services_;
};

std::unique_ptr<platform::AgentService> FakeAgentServices::agent(const std::string& plistName) {
  note("agent " + plistName);
  return std::make_unique<Agent>(*this);
}

}  // namespace tamo::fakes
