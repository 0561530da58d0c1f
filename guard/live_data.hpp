#pragma once

#include <mutex>
#include <string>
#include <string_view>

#include "guard/live_data_guard.hpp"
#include "platform/bundles.hpp"
#include "platform/files.hpp"
#include "platform/user.hpp"

namespace tamo {

/// The guard's answer for the running process. The program makes one of these and keeps it to its end: the
/// answer is worked out on first use and stands from then on, even when the copy is moved or another one is
/// installed meanwhile. Any thread; what it refers to outlives it.
class LiveData {
 public:
  LiveData(const platform::FileReader& files, const platform::Bundles& bundles, const platform::User& user)
      : files_(files), bundles_(bundles), user_(user) {}

  /// Whether the copy that this process belongs to may open live data. The first call reads a file; others
  /// that come meanwhile wait for its answer.
  [[nodiscard]] bool current() const;

  /// The home under which this process is to open data.
  [[nodiscard]] std::string dataHome() const;

  /// A path as this process may open it.
  [[nodiscard]] std::string clamp(std::string_view path) const;

 private:
  [[nodiscard]] LiveDataGuard::Access access() const;

  const platform::FileReader& files_;
  const platform::Bundles& bundles_;
  const platform::User& user_;
  mutable std::once_flag once_;
  mutable bool current_ = false;
};

}  // namespace tamo
