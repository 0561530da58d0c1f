#pragma once

#include "fakes/fake_clock.hpp"
#include "platform/lock_files.hpp"

namespace tamo::fakes {

/// One lock file in memory, which somebody else may hold until a moment. Notes "lock: open P", "lock: try",
/// "lock: unlock 7", "lock: close 7".
class FakeLockFiles final : public platform::LockFiles {
 public:
  FakeLockFiles(Ledger& ledger, const FakeClock& clock) : ledger_(ledger), clock_(clock) {}

  static constexpr int descriptor = 7;
  /// What an opening gives.
  int given = descriptor;
  bool opens = true;
  /// The lock is somebody else's before this moment.
  std::chrono::nanoseconds heldUntil{0};
  bool held = false;

  [[nodiscard]] int open(const std::string& path) override {
    note("open " + path);
    return opens ? given : -1;
  }
  [[nodiscard]] bool tryLock(int /*descriptor*/) override {
    note("try");
    held = clock_.monotonicNow() >= heldUntil;
    return held;
  }
  void unlock(int unlocked) override {
    note("unlock " + std::to_string(unlocked));
    held = false;
  }
  void close(int closed) override { note("close " + std::to_string(closed)); }

 private:
  void note(const std::string& deed) { ledger_.note(clock_.monotonicNow(), "lock: " + deed); }

  Ledger& ledger_;
  const FakeClock& clock_;
};

}  // namespace tamo::fakes
