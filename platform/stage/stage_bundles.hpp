#pragma once

#include "platform/bundles.hpp"
#include "platform/stage/stage_root.hpp"

namespace tamo::stage {

/// The host path by which this process was started: absolute, but with its symbolic links.
[[nodiscard]] std::string executableAsLaunched();

/// The bundle that an executable of the stage belongs to: what stands before "/Contents/MacOS/NAME", or else
/// the executable's folder.
[[nodiscard]] std::string bundleOf(const std::string& executable);

/// Bundles of the stage.
///
/// A companion is translocated when the control room's file "translocated" says so: a line
/// "STAGE-PATH<TAB>ORIGINAL" for each copy that pretends to be one. Read afresh at each call.
///
/// Known differences from a Mac: nothing is translocated by itself; of the path as launched, the empty, "."
/// and ".." components are taken out as text.
class StageBundles final : public platform::Bundles {
 public:
  /// `executable` is the host path of the running program as launched. Stops the process (fatal) when that
  /// does not lie below the stage.
  StageBundles(const StageRoot& root, const std::string& executable);

  [[nodiscard]] std::string mainBundlePath() const override { return mainBundle_; }
  [[nodiscard]] std::optional<std::string> originalLocation(const std::string& appPath) const override;

 private:
  const StageRoot root_;
  std::string mainBundle_;
};

}  // namespace tamo::stage
