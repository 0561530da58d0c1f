#pragma once

#include "acceptance/mac/journal.hpp"
#include "acceptance/mac/mac_settings.hpp"
#include "acceptance/place.hpp"

namespace tamo::acceptance {

/// Another user of a Mac: a person logs in as one and runs a script there, whose companion is then seen among the
/// processes. Nothing else of that session is looked at: it may take an administrator.
class MacOtherUser final : public OtherUser {
 public:
  /// All must outlive it.
  MacOtherUser(const MacSettings& settings, Journal& journal, Evidence& evidence)
      : settings_(settings), journal_(journal), evidence_(evidence) {}

  pid_t start(const std::string& action) override;
  [[nodiscard]] bool ended() override;
  [[nodiscard]] std::vector<Line> lines() override;

 private:
  const MacSettings& settings_;
  Journal& journal_;
  Evidence& evidence_;
  pid_t companion_ = 0;
  std::int64_t since_ = 0;
};

}  // namespace tamo::acceptance
