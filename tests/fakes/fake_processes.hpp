#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "fakes/fake_clock.hpp"
#include "fakes/fake_files.hpp"
#include "platform/processes.hpp"

namespace tamo::fakes {

/// What one start of a tool comes to.
struct ToolScript {
  bool starts = true;
  std::int32_t status = 0;
  /// Written to the output file at the start.
  std::string output = {};
  std::string errors = {};
  /// Virtual time until the tool exits; absent for one that never does.
  std::optional<std::chrono::nanoseconds> runsFor = std::chrono::nanoseconds(0);
  /// What else the start brings about.
  std::function<void()> effect = [] {};
};

/// Tools that do what the test arranged for them. A start that nothing was arranged for fails the test. Notes
/// "tool: PATH ARGUMENT…", "tool: terminate PATH", "tool: wait PATH".
class FakeProcesses final : public platform::Processes {
 public:
  FakeProcesses(Ledger& ledger, FakeClock& clock, FakeFiles& files)
      : ledger_(ledger), clock_(clock), files_(files) {}

  /// Arranges the next start whose path and first arguments are these; arrangements for the same command are
  /// used up in order.
  void once(std::vector<std::string> command, ToolScript script);
  /// Arranges every start whose path and first arguments are these, where no single one is left.
  void always(std::vector<std::string> command, ToolScript script);

  [[nodiscard]] std::unique_ptr<platform::Tool> start(const platform::ToolLaunch& launch) override;

 private:
  class FakeTool;
  struct Arrangement {
    std::vector<std::string> command;
    ToolScript script;
    bool forEver;
  };
  std::optional<ToolScript> scriptFor(const std::vector<std::string>& command);

  Ledger& ledger_;
  FakeClock& clock_;
  FakeFiles& files_;
  std::vector<Arrangement> arrangements_;
};

}  // namespace tamo::fakes
