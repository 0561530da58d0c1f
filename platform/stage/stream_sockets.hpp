#pragma once

#include <string>

#include "platform/posix/descriptor.hpp"

/// Local stream sockets at host paths of any length: a stage may lie deep in a build folder, far beyond the
/// 107 bytes that a socket's address holds. The descriptors are closed on exec. Any thread.
namespace tamo::stage {

/// Connects, blocking. None when nothing listens there.
[[nodiscard]] platform::Descriptor connectedTo(const std::string& path);

/// Listens, replacing a socket that an earlier process left there; accepting does not block. None when that
/// cannot be done.
[[nodiscard]] platform::Descriptor listeningAt(const std::string& path);

}  // namespace tamo::stage
