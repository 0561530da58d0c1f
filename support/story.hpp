#pragma once

#include <string>
#include <vector>

#include "support/moment.hpp"

namespace tamo::support {

/// What one line says.
struct Step {
  Moment at{};
  std::string text{};
};

/// An action in plain words.
struct Story {
  /// What was asked, as the log names it, and what that is for; empty where the log doesn't tell.
  std::string action{};
  std::string purpose{};
  /// What came of it: "done".
  std::string verdict{};
  /// What the companion saw and did, line by line.
  std::vector<Step> steps{};
  /// What follows from it, and what to do. Empty where all is well.
  std::vector<std::string> meaning{};
  std::vector<std::string> advice{};
  /// The headings of the troubleshooting page that fit, without "## ", each once.
  std::vector<std::string> headings{};
};

}  // namespace tamo::support
