#include "fakes/fake_processes.hpp"

#include <algorithm>
#include <gtest/gtest.h>

namespace tamo::fakes {

class FakeProcesses::FakeTool final : public platform::Tool {
 public:
  FakeTool(FakeProcesses& owner, std::string path, ToolScript script)
      : owner_(owner),
        path_(std::move(path)),
        script_(std::move(script)),
        started_(owner.clock_.monotonicNow()) {}

  [[nodiscard]] bool running() override {
    return !script_.runsFor || owner_.clock_.monotonicNow() < started_ + *script_.runsFor;
  }
  [[nodiscard]] std::int32_t wait() override {
    note("wait");
    if (!script_.runsFor) ADD_FAILURE() << "waits for ever for " << path_;
    if (script_.runsFor) owner_.clock_.advanceTo(started_ + *script_.runsFor);
    return script_.status;
  }
  void terminate() override { note("terminate"); }
  [[nodiscard]] std::string readErrors(std::size_t limit) override {
    note("read errors");
    return script_.errors.substr(0, limit);
  }

 private:
  void note(const std::string& deed) {
    owner_.ledger_.note(owner_.clock_.monotonicNow(), "tool: " + deed + " " + path_);
  }

  FakeProcesses& owner_;
  std::string path_;
  ToolScript script_;
  std::chrono::nanoseconds started_;
};

void FakeProcesses::once(std::vector<std::string> command, ToolScript script) {
  arrangements_.push_back({std::move(command), std::move(script), false});
}

void FakeProcesses::always(std::vector<std::string> command, ToolScript script) {
  arrangements_.push_back({std::move(command), std::move(script), true});
}

std::optional<ToolScript> FakeProcesses::scriptFor(const std::vector<std::string>& command) {
  const auto fits = [&command](const Arrangement& one) {
    return one.command.size() <= command.size() &&
           std::equal(one.command.begin(), one.command.end(), command.begin());
  };
  const auto single = std::find_if(arrangements_.begin(), arrangements_.end(),
                                   [&fits](const auto& one) { return !one.forEver && fits(one); });
  if (single != arrangements_.end()) {
    auto script = std::move(single->script);
    arrangements_.erase(single);
    return script;
  }
  const auto standing = std::find_if(arrangements_.begin(), arrangements_.end(), fits);
  if (standing == arrangements_.end()) return std::nullopt;
  return standing->script;
}

std::unique_ptr<platform::Tool> FakeProcesses::start(const platform::ToolLaunch& launch) {
  std::vector<std::string> command{launch.path};
  command.insert(command.end(), launch.arguments.begin(), launch.arguments.end());
  std::string text = "tool:";
  for (const auto& word : command)
    text += " " + word;
  ledger_.note(clock_.monotonicNow(), text);
  auto script = scriptFor(command);
  if (!script) {
    ADD_FAILURE() << "nothing was arranged for \"" << text << "\"";
    return nullptr;
  }
  if (!script->starts) return nullptr;
  if (launch.standardOutput >= 0) files_.appendTo(launch.standardOutput, script->output);
  script->effect();
  return std::make_unique<FakeTool>(*this, launch.path, std::move(*script));
}

}  // namespace tamo::fakes
