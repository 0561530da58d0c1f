#pragma once

#include "platform/bundles.hpp"

namespace tamo::macos {

/// The running bundle as the system sees it, and the place that a translocated copy was started from.
class MacBundles final : public platform::Bundles {
 public:
  /// Stops the process (fatal) when the system knows no main bundle, which cannot be.
  [[nodiscard]] std::string mainBundlePath() const override;
  [[nodiscard]] std::optional<std::string> originalLocation(const std::string& appPath) const override;
};

}  // namespace tamo::macos
