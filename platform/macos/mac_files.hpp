#pragma once

#include "platform/files.hpp"

namespace tamo::macos {

/// The Mac's own files, by POSIX calls alone. A resolved path has its components in the letter case of the
/// disk.
class MacFiles final : public platform::Files {
 public:
  [[nodiscard]] bool exists(const std::string& path) const override;
  [[nodiscard]] std::optional<std::string> readWhole(const std::string& path) const override;
  [[nodiscard]] std::string resolvedPath(const std::string& path) const override;
  [[nodiscard]] bool writeAtomically(const std::string& path, std::string_view bytes) override;
  [[nodiscard]] bool createDirectories(const std::string& path) override;
  bool remove(const std::string& path) override;
  [[nodiscard]] std::unique_ptr<platform::OutputFile> openForWriting(const std::string& path) override;
  [[nodiscard]] std::optional<std::string> temporaryDirectory() const override;
};

}  // namespace tamo::macos
