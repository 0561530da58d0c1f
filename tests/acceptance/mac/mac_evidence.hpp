#pragma once

#include <string>

#include "acceptance/place.hpp"

namespace tamo::acceptance {

/// The unified log, and the crash reports of the user.
class MacEvidence final : public Evidence {
 public:
  explicit MacEvidence(std::string home) : home_(std::move(home)) {}

  [[nodiscard]] std::int64_t now() override;
  [[nodiscard]] std::vector<Line> lines(std::int64_t since, std::size_t endings) override;
  [[nodiscard]] std::vector<std::string> crashes(std::int64_t since) override;

 private:
  std::string home_;
};

}  // namespace tamo::acceptance
