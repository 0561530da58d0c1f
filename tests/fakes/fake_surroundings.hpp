#pragma once

#include <map>
#include <set>

#include "fakes/fake_clock.hpp"
#include "platform/bundles.hpp"
#include "platform/local_sockets.hpp"
#include "platform/log.hpp"
#include "platform/user.hpp"

namespace tamo::fakes {

/// A running bundle by its path. Notes "bundles: original P".
class FakeBundles final : public platform::Bundles {
 public:
  FakeBundles(Ledger& ledger, const FakeClock& clock) : ledger_(ledger), clock_(clock) {}

  std::string mainBundle = "/Applications/Tamo.app/Contents/Library/LoginItems/Tamo Core.app";
  std::map<std::string, std::string> originals;

  [[nodiscard]] std::string mainBundlePath() const override { return mainBundle; }
  [[nodiscard]] std::optional<std::string> originalLocation(const std::string& appPath) const override {
    ledger_.note(clock_.monotonicNow(), "bundles: original " + appPath);
    const auto found = originals.find(appPath);
    if (found == originals.end()) return std::nullopt;
    return found->second;
  }

 private:
  Ledger& ledger_;
  const FakeClock& clock_;
};

/// User 501 with the home /Users/u.
class FakeUser final : public platform::User {
 public:
  std::optional<platform::PasswordEntry> entry = platform::PasswordEntry{"/Users/u"};

  [[nodiscard]] std::uint32_t realUserID() const override { return 501; }
  [[nodiscard]] std::optional<platform::PasswordEntry> passwordEntry() const override { return entry; }
};

/// Sockets by their paths. Notes "sockets: connect P".
class FakeLocalSockets final : public platform::LocalSockets {
 public:
  FakeLocalSockets(Ledger& ledger, const FakeClock& clock) : ledger_(ledger), clock_(clock) {}

  std::set<std::string> accepting;

  [[nodiscard]] bool accepts(const std::string& path) override {
    ledger_.note(clock_.monotonicNow(), "sockets: connect " + path);
    return accepting.contains(path);
  }

 private:
  Ledger& ledger_;
  const FakeClock& clock_;
};

/// A log in the ledger: "log: default|error LINE", with each private argument as "<private:TEXT>".
class FakeLogSystem final : public platform::LogSystem {
 public:
  FakeLogSystem(Ledger& ledger, const FakeClock& clock) : ledger_(ledger), clock_(clock) {}

  [[nodiscard]] std::unique_ptr<platform::Logger> logger(const std::string& subsystem,
                                                         const std::string& category) override;

 private:
  Ledger& ledger_;
  const FakeClock& clock_;
};

}  // namespace tamo::fakes
