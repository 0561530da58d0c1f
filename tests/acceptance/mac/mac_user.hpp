#pragma once

#include "acceptance/mac/mac_settings.hpp"
#include "acceptance/place.hpp"

namespace tamo::acceptance {

/// The user of a Mac. What only a person can do is asked for in one sentence, and waited for.
class MacUser final : public User {
 public:
  /// All must outlive it.
  MacUser(const MacSettings& settings, const Copies& copies, Companions& companions, Evidence& evidence)
      : settings_(settings), copies_(copies), companions_(companions), evidence_(evidence) {}

  void open(Copy copy) override;
  std::vector<RunningApp> applications() override;
  std::string front() override;
  std::string whereabouts(int directory) override;
  void approve(bool granted) override;
  void loseApplications(const std::string& answer) override;
  void sleepAWhile() override;

  /// Whether the agent may be registered without being loaded.
  [[nodiscard]] bool approvalMayBeWithheld() const { return withheld_; }

 private:
  [[nodiscard]] std::string outcomeOf(const std::string& action);

  const MacSettings& settings_;
  const Copies& copies_;
  Companions& companions_;
  Evidence& evidence_;
  bool withheld_ = false;
};

}  // namespace tamo::acceptance
