#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tamo::platform {

/// A tool to start. Standard input is inherited; every descriptor that is not named here stays closed in the
/// tool.
struct ToolLaunch {
  /// Absolute path of the executable, which is also argument zero.
  std::string path;
  /// Without the program name.
  std::vector<std::string> arguments;
  /// An open descriptor of the caller, or -1 for the null device.
  int standardOutput = -1;
  /// Whether standard error goes to a pipe (see Tool::readErrors) or to the null device.
  bool capturesErrors = false;
};

/// A tool that was started. Destroying it neither ends nor waits for the tool; a tool left running is reaped
/// when the next one is started, at the latest by the end of this process. One thread.
class Tool {
 public:
  virtual ~Tool() = default;

  [[nodiscard]] virtual bool running() = 0;

  /// Blocks until the tool has exited, without limit. Gives the exit status, or the number of the signal that
  /// ended it; -1 when the system does not tell it.
  [[nodiscard]] virtual std::int32_t wait() = 0;

  /// Sends SIGTERM unless the tool is known to have exited. Does not wait.
  virtual void terminate() = 0;

  /// Reads standard error to its end, which blocks until the tool and every process that inherited it have
  /// closed it, and gives the first `limit` bytes. Once, and only when the launch captures errors.
  [[nodiscard]] virtual std::string readErrors(std::size_t limit) = 0;
};

/// The way other programs are started. One thread.
class Processes {
 public:
  virtual ~Processes() = default;

  /// Absent (null) when the tool could not be started.
  [[nodiscard]] virtual std::unique_ptr<Tool> start(const ToolLaunch& launch) = 0;
};

}  // namespace tamo::platform
