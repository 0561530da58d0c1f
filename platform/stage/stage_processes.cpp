#include "platform/stage/stage_processes.hpp"

#include <csignal>
#include <utility>

namespace tamo::stage {
namespace {

/// A tool whose end is noted when its starter first sees it.
class NotedTool final : public platform::Tool {
 public:
  NotedTool(std::unique_ptr<platform::Tool> tool, pid_t pid, const Journal& journal)
      : tool_(std::move(tool)), pid_(pid), journal_(journal) {}

  [[nodiscard]] bool running() override {
    const bool runs = tool_->running();
    if (!runs) noteEnd();
    return runs;
  }
  [[nodiscard]] std::int32_t wait() override {
    const auto status = tool_->wait();
    noteEnd();
    return status;
  }
  void terminate() override {
    if (!ended_) journal_.note("signals", {std::to_string(SIGTERM), "process", std::to_string(pid_)});
    tool_->terminate();
  }
  [[nodiscard]] std::string readErrors(std::size_t limit) override { return tool_->readErrors(limit); }

 private:
  /// The status of a tool that has exited stays to be had.
  void noteEnd() {
    if (std::exchange(ended_, true)) return;
    journal_.note("tool-ended", {std::to_string(pid_), std::to_string(tool_->wait())});
  }

  std::unique_ptr<platform::Tool> tool_;
  pid_t pid_;
  const Journal& journal_;
  bool ended_ = false;
};

std::vector<std::string> startTexts(pid_t pid, const platform::ToolLaunch& launch) {
  std::vector<std::string> texts = {std::to_string(pid), launch.path};
  texts.insert(texts.end(), launch.arguments.begin(), launch.arguments.end());
  return texts;
}

}  // namespace

/// The pid is told while the tool is started, because a started tool has none to give: nothing of the product needs
/// it. A start that fails is noted as well.
std::unique_ptr<platform::Tool> StageProcesses::start(const platform::ToolLaunch& launch) {
  const auto executable = root_.existing(launch.path);
  pid_t pid = 0;
  auto tool =
      executable ? host_.start(launch, *executable, [&pid](pid_t started) { pid = started; }) : nullptr;
  journal_.note("starts", startTexts(pid, launch));
  if (tool == nullptr) return nullptr;
  return std::make_unique<NotedTool>(std::move(tool), pid, journal_);
}

}  // namespace tamo::stage
