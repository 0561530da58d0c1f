#pragma once

#include "platform/agent_services.hpp"
#include "platform/application.hpp"
#include "platform/log.hpp"
#include "platform/main_queue.hpp"
#include "platform/workspace.hpp"
#include "simulation/companion.hpp"

/// The application object, service management, the workspace and the log, as one companion meets them.
namespace tamo::simulation {

class SimulatedApplication final : public platform::Application {
 public:
  explicit SimulatedApplication(Companion& companion) : companion_(companion) {}
  void becomeAccessory() override;
  void setDelegate(platform::ApplicationDelegate& delegate) override { delegate_ = &delegate; }
  void run() override { companion_.run(*delegate_); }
  void terminate() override;

 private:
  Companion& companion_;
  platform::ApplicationDelegate* delegate_ = nullptr;
};

class SimulatedMainQueue final : public platform::MainQueue {
 public:
  explicit SimulatedMainQueue(Companion& companion) : companion_(companion) {}
  [[nodiscard]] bool isMain() const override { return companion_.onMain(); }
  void post(std::function<void()> work) override { companion_.post(std::move(work)); }
  void postAfter(std::chrono::nanoseconds delay, std::function<void()> work) override {
    companion_.postAfter(delay, std::move(work));
  }

 private:
  Companion& companion_;
};

class SimulatedAgentServices final : public platform::AgentServices {
 public:
  explicit SimulatedAgentServices(Companion& companion) : companion_(companion) {}
  [[nodiscard]] std::unique_ptr<platform::AgentService> agent(const std::string& plistName) override;
  void openSystemSettingsLoginItems() override;

 private:
  Companion& companion_;
};

class SimulatedWorkspace final : public platform::Workspace {
 public:
  explicit SimulatedWorkspace(Companion& companion) : companion_(companion) {}
  [[nodiscard]] std::vector<platform::RunningApplication> runningApplications() override;
  void openApplication(const std::string& path, Completion completion) override;
  /// Brings the list up to date.
  void turn();

 private:
  Companion& companion_;
  std::vector<RunningApp> known_;
};

class SimulatedLogSystem final : public platform::LogSystem {
 public:
  explicit SimulatedLogSystem(Companion& companion) : companion_(companion) {}
  [[nodiscard]] std::unique_ptr<platform::Logger> logger(const std::string& subsystem,
                                                         const std::string& category) override;

 private:
  Companion& companion_;
};

}  // namespace tamo::simulation
