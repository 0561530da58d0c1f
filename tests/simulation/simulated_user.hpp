#pragma once

#include "platform/bundles.hpp"
#include "platform/local_sockets.hpp"
#include "platform/lock_files.hpp"
#include "platform/user.hpp"
#include "simulation/companion.hpp"

/// The lock, and what tells a companion where it is and whose: its bundle, its user, the Core's sockets.
namespace tamo::simulation {

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
