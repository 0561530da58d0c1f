#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/descriptor.hpp"
#include "stage/core/core_behaviour.hpp"

namespace tamo::stage {

/// What a Core finds around it. The program itself is plain POSIX, so that a real Mac can be given the same one.
struct CoreSurroundings {
  /// Where its sockets and markers lie; a path of this machine, without a "/" at its end.
  std::string dataDirectory;
  /// It ends when this directory disappears, and its helpers with it.
  std::string presence;
  /// Makes a listening socket at a path, whose accepting does not block; none when that cannot be done.
  std::function<platform::Descriptor(const std::string& path)> listen;
  /// Notes a moment of the calling process, a helper's as well, as a stage's journal does. Does nothing by itself.
  std::function<void(std::string_view word, const std::vector<std::string>& texts)> note =
      [](std::string_view, const std::vector<std::string>&) {};
};

/// Plays the Core until it ends as ordered, or its surroundings disappear. It writes a line for everything that
/// happens to it to standard output and listens on "core.sock" and "talk.sock" in the data directory. Gives the exit
/// status. Once in a process.
[[nodiscard]] int runCore(const CoreSurroundings& surroundings, const CoreBehaviour& behaviour);

}  // namespace tamo::stage
