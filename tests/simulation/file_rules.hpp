#pragma once

#include <string_view>

#include "simulation/companion.hpp"

/// The rules of where a companion looks and writes: which files belong to its action, and where the Core's
/// sockets are.
namespace tamo::simulation::Referee {

/// A companion asks something of the file system about a path, or changes what is there.
void touches(Companion& companion, Call call, std::string_view path);
/// A companion tries a socket, and is told whether somebody accepts.
void triesSocket(Companion& companion, std::string_view path, bool accepted);

}  // namespace tamo::simulation::Referee
