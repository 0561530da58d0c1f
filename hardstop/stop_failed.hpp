#pragma once

#include <mutex>

namespace tamo {

/// The flag by which a failed stop request calls the watcher of a hard stop off. Shared by the main thread,
/// which sets it, and the watcher's, which reads it. It is never cleared: every hard stop has its own.
class StopFailed {
 public:
  /// Any thread.
  [[nodiscard]] bool value() const;
  /// Any thread; repeating it is harmless.
  void set();

 private:
  mutable std::mutex lock_;
  bool failed_ = false;
};

}  // namespace tamo
