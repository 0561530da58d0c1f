#pragma once

#include <optional>
#include <string>

namespace tamo::platform {

/// What the system knows of application bundles beyond their files. Any thread.
class Bundles {
 public:
  virtual ~Bundles() = default;

  /// Absolute path of the running bundle as it was launched, symbolic links and all. For an executable
  /// outside any bundle, the folder that holds it.
  [[nodiscard]] virtual std::string mainBundlePath() const = 0;

  /// Where a translocated copy really lies; absent when the system cannot tell.
  [[nodiscard]] virtual std::optional<std::string> originalLocation(const std::string& appPath) const = 0;
};

}  // namespace tamo::platform
