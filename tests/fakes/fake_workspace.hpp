#pragma once

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "fakes/fake_clock.hpp"
#include "platform/workspace.hpp"

namespace tamo::fakes {

/// Applications in memory; opening one adds nothing to those that run. Notes "workspace: list" and
/// "workspace: open P".
class FakeWorkspace final : public platform::Workspace {
 public:
  FakeWorkspace(Ledger& ledger, const FakeClock& clock) : ledger_(ledger), clock_(clock) {}

  /// What runs; a test changes it as time passes. A Mac's list would stand still while the caller blocks,
  /// which here only the ledger shows: a wait that blocks is noted by the clock.
  std::vector<platform::RunningApplication> running;
  /// What becomes of an opening.
  std::optional<platform::Error> openError;
  /// How the completion of an opening is delivered; at once, inside the call, by itself. A test may keep it
  /// for later.
  std::function<void(std::function<void()> deliver)> openDelivery = [](auto deliver) { deliver(); };

  [[nodiscard]] std::vector<platform::RunningApplication> runningApplications() override {
    note("list");
    return running;
  }
  void openApplication(const std::string& path, Completion completion) override {
    note("open " + path);
    openDelivery([this, completion = std::move(completion)] { completion(openError); });
  }

 private:
  void note(const std::string& deed) { ledger_.note(clock_.monotonicNow(), "workspace: " + deed); }

  Ledger& ledger_;
  const FakeClock& clock_;
};

}  // namespace tamo::fakes
