#pragma once

#include <functional>
#include <utility>

#include "platform/files.hpp"

namespace tamo {

/// Forwards, and lets something happen before each file is written.
class SlowWriting final : public platform::Files {
 public:
  SlowWriting(platform::Files& files, std::function<void()> before)
      : files_(files), before_(std::move(before)) {}

  [[nodiscard]] bool exists(const std::string& path) const override { return files_.exists(path); }
  [[nodiscard]] std::optional<std::string> readWhole(const std::string& path) const override {
    return files_.readWhole(path);
  }
  [[nodiscard]] std::string resolvedPath(const std::string& path) const override {
    return files_.resolvedPath(path);
  }
  [[nodiscard]] bool writeAtomically(const std::string& path, std::string_view bytes) override {
    before_();
    return files_.writeAtomically(path, bytes);
  }
  [[nodiscard]] bool createDirectories(const std::string& path) override {
    return files_.createDirectories(path);
  }
  bool remove(const std::string& path) override { return files_.remove(path); }
  [[nodiscard]] std::unique_ptr<platform::OutputFile> openForWriting(const std::string& path) override {
    return files_.openForWriting(path);
  }
  [[nodiscard]] std::optional<std::string> temporaryDirectory() const override {
    return files_.temporaryDirectory();
  }

 private:
  platform::Files& files_;
  std::function<void()> before_;
};

}  // namespace tamo
