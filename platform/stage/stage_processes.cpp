#include "platform/stage/stage_processes.hpp"

namespace tamo::stage {

std::unique_ptr<platform::Tool> StageProcesses::start(const platform::ToolLaunch& launch) {
  const auto executable = root_.existing(launch.path);
  if (!executable) return nullptr;
  return host_.start(launch, *executable);
}

}  // namespace tamo::stage
