#pragma once

#include <functional>

#include "fakes/fake_clock.hpp"
#include "platform/application.hpp"

namespace tamo::fakes {

/// An application object whose loop is whatever the test says. Notes "application: …".
class FakeApplication final : public platform::Application {
 public:
  FakeApplication(Ledger& ledger, const FakeClock& clock) : ledger_(ledger), clock_(clock) {}

  /// What run() does; nothing by itself.
  std::function<void()> loop = [] {};
  platform::ApplicationDelegate* delegate = nullptr;

  void becomeAccessory() override { note("accessory"); }
  void setDelegate(platform::ApplicationDelegate& installed) override {
    note("delegate");
    delegate = &installed;
  }
  void run() override {
    note("run");
    loop();
  }
  void terminate() override { note("terminate"); }

 private:
  void note(const char* deed) { ledger_.note(clock_.monotonicNow(), std::string("application: ") + deed); }

  Ledger& ledger_;
  const FakeClock& clock_;
};

}  // namespace tamo::fakes
