#pragma once

#include "platform/bundles.hpp"
#include "platform/files.hpp"
#include "platform/local_sockets.hpp"
#include "platform/lock_files.hpp"
#include "platform/user.hpp"
#include "platform/user_files.hpp"
#include "simulation/companion.hpp"

/// Files and what goes with them, as one companion meets them.
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

class SimulatedLockFiles final : public platform::LockFiles {
 public:
  explicit SimulatedLockFiles(Companion& companion) : companion_(companion) {}
  [[nodiscard]] int open(const std::string& path) override;
  [[nodiscard]] bool tryLock(int descriptor) override;
  void unlock(int descriptor) override;
  void close(int descriptor) override;

 private:
  Companion& companion_;
};

class SimulatedBundles final : public platform::Bundles {
 public:
  explicit SimulatedBundles(Companion& companion) : companion_(companion) {}
  [[nodiscard]] std::string mainBundlePath() const override { return companion_.bundlePath(); }
  [[nodiscard]] std::optional<std::string> originalLocation(const std::string& appPath) const override;

 private:
  Companion& companion_;
};

class SimulatedUser final : public platform::User {
 public:
  explicit SimulatedUser(Companion& companion) : companion_(companion) {}
  [[nodiscard]] std::uint32_t realUserID() const override { return 501; }
  [[nodiscard]] std::optional<platform::PasswordEntry> passwordEntry() const override;

 private:
  Companion& companion_;
};

class SimulatedLocalSockets final : public platform::LocalSockets {
 public:
  explicit SimulatedLocalSockets(Companion& companion) : companion_(companion) {}
  [[nodiscard]] bool accepts(const std::string& asked) override;

 private:
  Companion& companion_;
};

}  // namespace tamo::simulation
