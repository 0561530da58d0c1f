#pragma once

#include <string>

#include "acceptance/mac/mac_settings.hpp"
#include "acceptance/place.hpp"

namespace tamo::acceptance {

/// The unified log, and the crash reports of the user.
class MacEvidence final : public Evidence {
 public:
  /// They must outlive it.
  explicit MacEvidence(const MacSettings& settings) : settings_(settings) {}

  [[nodiscard]] std::int64_t now() override;
  [[nodiscard]] std::vector<Line> lines(std::int64_t since, std::size_t endings) override;
  [[nodiscard]] std::string unreadable() override { return settings_.unreadable; }
  [[nodiscard]] std::vector<std::string> crashes(std::int64_t since) override;

 private:
  const MacSettings& settings_;
};

/// Why this user cannot read the log, in the words of the tool; empty when he can.
[[nodiscard]] std::string logFault();

}  // namespace tamo::acceptance
