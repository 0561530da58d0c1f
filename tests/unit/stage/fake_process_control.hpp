#pragma once

#include <string>
#include <vector>

#include "stage/launchd/job_table.hpp"

namespace tamo::stage {

/// Processes that exist as numbers, from 100 on, and a ledger of what was done to them.
class FakeProcessControl final : public ProcessControl {
 public:
  std::optional<pid_t> start(const JobDefinition& definition) override {
    ledger.push_back("start " + definition.label);
    if (!startable) return std::nullopt;
    return next++;
  }
  void terminate(pid_t pid) override { ledger.push_back("terminate " + std::to_string(pid)); }
  void kill(pid_t pid) override { ledger.push_back("kill " + std::to_string(pid)); }
  void killGroup(pid_t group) override { ledger.push_back("kill group " + std::to_string(group)); }

  std::vector<std::string> ledger;
  bool startable = true;
  pid_t next = 100;
};

/// An answer that may not have come yet.
struct Answered {
  JobTable::Reply reply = [this](const LaunchdAnswer& answer) { answers.push_back(answer); };
  Answered() = default;
  Answered(const Answered&) = delete;
  Answered& operator=(const Answered&) = delete;

  [[nodiscard]] std::optional<std::int32_t> status() const {
    return answers.size() == 1 ? std::optional(answers.front().status) : std::nullopt;
  }
  std::vector<LaunchdAnswer> answers;
};

}  // namespace tamo::stage
