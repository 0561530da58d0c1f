#pragma once

#include <functional>
#include <map>

#include "fakes/fake_clock.hpp"
#include "platform/kernel_processes.hpp"

namespace tamo::fakes {

/// Processes in memory. Notes "kernel: look P", "kernel: kill P", "kernel: kill group G". A signal does
/// nothing by itself: the test says what dies of it.
class FakeKernelProcesses final : public platform::KernelProcesses {
 public:
  FakeKernelProcesses(Ledger& ledger, const FakeClock& clock) : ledger_(ledger), clock_(clock) {}

  std::map<std::int32_t, platform::ProcessInfo> processes;
  std::int32_t pid = 900;
  std::int32_t group = 900;
  std::function<void(std::int32_t)> onKill = [](std::int32_t) {};
  std::function<void(std::int32_t)> onKillGroup = [](std::int32_t) {};

  [[nodiscard]] std::optional<platform::ProcessInfo> info(std::int32_t asked) const override {
    note("look " + std::to_string(asked));
    const auto found = processes.find(asked);
    if (found == processes.end()) return std::nullopt;
    return found->second;
  }
  [[nodiscard]] std::int32_t ownPid() const override { return pid; }
  [[nodiscard]] std::int32_t ownGroup() const override { return group; }
  void kill(std::int32_t target) override {
    note("kill " + std::to_string(target));
    onKill(target);
  }
  void killGroup(std::int32_t target) override {
    note("kill group " + std::to_string(target));
    onKillGroup(target);
  }

 private:
  void note(const std::string& deed) const { ledger_.note(clock_.monotonicNow(), "kernel: " + deed); }

  Ledger& ledger_;
  const FakeClock& clock_;
};

}  // namespace tamo::fakes
