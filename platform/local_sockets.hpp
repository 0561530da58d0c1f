#pragma once

#include <string>

namespace tamo::platform {

/// Stream sockets in the file system. Any thread.
class LocalSockets {
 public:
  virtual ~LocalSockets() = default;

  /// Whether a stream socket at `path` takes a connection, which is closed again at once; what the listener
  /// does with it is not waited for. No time limit is set: where the listener's backlog is full, a Mac refuses
  /// at once (unp_connect in XNU's uipc_usrreq.c), and so does the stage. The path with its closing zero byte
  /// must fit 104 bytes, macOS's limit.
  [[nodiscard]] virtual bool accepts(const std::string& path) = 0;
};

}  // namespace tamo::platform
