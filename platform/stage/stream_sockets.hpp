#pragma once

#include <string>

#include "platform/posix/descriptor.hpp"

/// Local stream sockets at host paths of any length: a stage may lie deep in a build folder, far beyond the
/// 107 bytes that a socket's address holds. The descriptors are closed on exec. Any thread.
namespace tamo::stage {

/// What a listener does with one caller more than it may keep: Linux lets a caller wait who does not mind.
enum class FullBacklog { Waits, Refuses };

/// Connects, blocking unless it is said that nobody waits. None when nothing listens there. The connection of
/// one who does not wait does not block either.
[[nodiscard]] platform::Descriptor connectedTo(const std::string& path,
                                               FullBacklog when = FullBacklog::Waits);

/// Listens, replacing a socket that an earlier process left there; accepting does not block. None when that
/// cannot be done.
[[nodiscard]] platform::Descriptor listeningAt(const std::string& path);

}  // namespace tamo::stage
