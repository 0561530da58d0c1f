#pragma once

#include "platform/files.hpp"
#include "platform/stage/stage_root.hpp"

namespace tamo::stage {

/// Files of the stage. Links are followed inside the stage, an absolute one from the stage's root.
///
/// The setting "temporary-directory" moves the temporary directory; "none" takes it away.
///
/// Known differences from a Mac: names are bytes, so letter case and the form of accents always count, and a
/// path is never given back in another case; nothing is read-only, protected or on another volume unless the
/// host makes it so.
class StageFiles final : public platform::Files {
 public:
  explicit StageFiles(const StageRoot& root) : root_(root) {}

  [[nodiscard]] bool exists(const std::string& path) const override;
  [[nodiscard]] std::optional<std::string> readWhole(const std::string& path) const override;
  [[nodiscard]] std::string resolvedPath(const std::string& path) const override;
  [[nodiscard]] bool writeAtomically(const std::string& path, std::string_view bytes) override;
  [[nodiscard]] bool createDirectories(const std::string& path) override;
  bool remove(const std::string& path) override;
  [[nodiscard]] std::unique_ptr<platform::OutputFile> openForWriting(const std::string& path) override;
  [[nodiscard]] std::optional<std::string> temporaryDirectory() const override;

 private:
  const StageRoot root_;
};

}  // namespace tamo::stage
