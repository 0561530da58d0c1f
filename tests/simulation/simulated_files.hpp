#pragma once

#include "platform/files.hpp"
#include "platform/user_files.hpp"
#include "simulation/companion.hpp"

/// Files, as one companion meets them.
namespace tamo::simulation {

class SimulatedFiles final : public platform::Files {
 public:
  explicit SimulatedFiles(Companion& companion) : companion_(companion) {}
  [[nodiscard]] bool exists(const std::string& asked) const override;
  [[nodiscard]] std::optional<std::string> readWhole(const std::string& path) const override;
  [[nodiscard]] std::string resolvedPath(const std::string& path) const override;
  [[nodiscard]] bool writeAtomically(const std::string& path, std::string_view bytes) override;
  [[nodiscard]] bool createDirectories(const std::string& path) override;
  bool remove(const std::string& path) override;
  [[nodiscard]] std::unique_ptr<platform::OutputFile> openForWriting(const std::string& path) override;
  [[nodiscard]] std::optional<std::string> temporaryDirectory() const override;

 private:
  Companion& companion_;
};

class SimulatedUserFiles final : public platform::UserFiles {
 public:
  explicit SimulatedUserFiles(Companion& companion) : companion_(companion) {}
  [[nodiscard]] bool isWritable(const std::string& path) const override;
  [[nodiscard]] bool moveToTrash(const std::string& path) override;

 private:
  Companion& companion_;
};

}  // namespace tamo::simulation
