#include "platform/stage/stage_local_sockets.hpp"

#include "platform/stage/stream_sockets.hpp"

namespace tamo::stage {

bool StageLocalSockets::accepts(const std::string& path) {
  const auto socket = root_.existing(path);
  return socket && connectedTo(*socket, FullBacklog::Refuses);
}

}  // namespace tamo::stage
