#include "platform/stage/stage_local_sockets.hpp"

#include "platform/stage/stream_sockets.hpp"

namespace tamo::stage {

/// A listener that takes nobody any more refuses at once. Linux would let the caller wait for room, and the companion
/// with him.
bool StageLocalSockets::accepts(const std::string& path) {
  const auto socket = root_.existing(path);
  return socket && connectedTo(*socket, FullBacklog::Refuses);
}

}  // namespace tamo::stage
