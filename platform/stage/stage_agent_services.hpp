#pragma once

#include "platform/agent_services.hpp"
#include "platform/bundles.hpp"
#include "platform/error.hpp"
#include "platform/main_queue.hpp"
#include "platform/stage/launchd_wire.hpp"
#include "platform/stage/stage_root.hpp"
#include "platform/threads.hpp"

namespace tamo::stage {

/// The error that an answer of launchd carries; absent when the answer is a success. An answer that is none,
/// or carries no readable error, is an error of the domain "TamoStage".
[[nodiscard]] std::optional<platform::Error> errorFrom(const std::optional<LaunchdAnswer>& answer);

/// Service management, kept by the stage's launchd. Each question is one exchange with it and blocks until it
/// answers.
///
/// Known differences from a Mac: an unregister is asked for on a thread of its own, or on the main thread
/// when none can be had, and its completion is called there; without launchd the status reads not found (3)
/// and the operations fail with an error of the domain "TamoStage"; no signature is checked; opening the
/// login-items settings only leaves a note.
class StageAgentServices final : public platform::AgentServices {
 public:
  /// All four must outlive it and every unregister under way.
  StageAgentServices(const StageRoot& root, const platform::Bundles& bundles, platform::Threads& threads,
                     platform::MainQueue& queue)
      : root_(root), bundles_(bundles), threads_(threads), queue_(queue) {}

  [[nodiscard]] std::unique_ptr<platform::AgentService> agent(const std::string& plistName) override;
  void openSystemSettingsLoginItems() override;

 private:
  const StageRoot& root_;
  const platform::Bundles& bundles_;
  platform::Threads& threads_;
  platform::MainQueue& queue_;
};

}  // namespace tamo::stage
