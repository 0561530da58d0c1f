#pragma once

#include <string>
#include <string_view>

#include "launch/process_runner.hpp"
#include "platform/files.hpp"
#include "platform/user_files.hpp"

namespace tamo {

/// Copies an application bundle with the system's own tools, which keep its modes, links, times and
/// attributes. The plain copy comes first; the administrator is asked only when the user's own rights are
/// what is missing. One thread.
class BundleCopy {
 public:
  struct Needs {
    ProcessRunner runner;
    platform::Files& files;
    const platform::UserFiles& userFiles;
  };

  explicit BundleCopy(Needs needs) : needs_(needs) {}

  /// Both paths are absolute and standardised. Blocks without limit while the tools run, the time at the
  /// administrator prompt among it. Gives "moved", "copy_failed", "cancelled" or "not_writable"; never raises.
  /// After a failure what lies at `to` is removed, as far as the user may, so whoever wants to keep it takes it
  /// away first.
  ///
  /// The mark of a download is cleared from the copy. In the plain copy a failure of that is ignored; with
  /// the administrator's rights it fails the whole, because one command does both.
  [[nodiscard]] std::string_view copy(const std::string& source, const std::string& to);

 private:
  [[nodiscard]] bool copiedPlainly(const std::string& source, const std::string& to);
  [[nodiscard]] std::string_view copyAsAdministrator(const std::string& source, const std::string& to);

  Needs needs_;
};

}  // namespace tamo
