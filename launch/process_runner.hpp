#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/processes.hpp"

namespace tamo {

/// Runs a tool to its end and keeps what it complained about. Only for tools that may take as long as they
/// like (an administrator may be typing a password); launchctl has its own runner with a deadline. One
/// thread.
class ProcessRunner {
 public:
  /// `processes` must outlive this.
  explicit ProcessRunner(platform::Processes& processes) : processes_(processes) {}

  /// Blocks without limit, until the tool has exited and everything that inherited its standard error has
  /// closed it. `arguments` do not name the program. Gives the exit status, or -1 when the tool could not be
  /// started; never raises.
  ///
  /// After a start `errors` holds the first 4096 bytes of standard error as UTF-8, with U+FFFD for what is
  /// not; without one it keeps the caller's value. Standard output is discarded.
  [[nodiscard]] std::int32_t run(const std::string& path, const std::vector<std::string>& arguments,
                                 std::string& errors);

 private:
  platform::Processes& processes_;
};

}  // namespace tamo
