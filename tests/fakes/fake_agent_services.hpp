#pragma once

#include <deque>
#include <functional>
#include <optional>

#include "fakes/fake_clock.hpp"
#include "platform/agent_services.hpp"

namespace tamo::fakes {

/// Service management with one agent, in memory. Notes "service: status -> 1", "service: register",
/// "service: unregister", "service: settings", "service: agent NAME".
class FakeAgentServices final : public platform::AgentServices {
 public:
  FakeAgentServices(Ledger& ledger, const FakeClock& clock) : ledger_(ledger), clock_(clock) {}

  /// What status() answers from now on; registering and unregistering change it.
  std::int64_t status = 0;
  /// Answers that come first, one a reading, for a status that changes under the reader.
  std::deque<std::int64_t> nextStatuses;
  /// The status that a successful register leaves: 2 when approval is withheld.
  std::int64_t statusAfterRegister = 1;
  std::optional<platform::Error> registerError;
  std::optional<platform::Error> unregisterError;
  /// How the unregister's completion is delivered; at once, inside the call, by itself. A test may keep it
  /// for later.
  std::function<void(std::function<void()> deliver)> unregisterDelivery = [](auto deliver) { deliver(); };

  [[nodiscard]] std::unique_ptr<platform::AgentService> agent(const std::string& plistName) override;
  void openSystemSettingsLoginItems() override { note("settings"); }

 private:
  class Agent;
  void note(const std::string& deed) { ledger_.note(clock_.monotonicNow(), "service: " + deed); }

  Ledger& ledger_;
  const FakeClock& clock_;
};

}  // namespace tamo::fakes
