#pragma once

#include "platform/local_sockets.hpp"
#include "platform/stage/stage_root.hpp"

namespace tamo::stage {

/// Sockets of the stage: real listeners. The length that counts is the stage path's, which the caller looks
/// at; the host path may be as long as it likes.
///
/// Known differences from a Mac: a process that listens is found by any path that leads to its socket, also
/// through a link that is absolute on the stage; and a listener with a full backlog makes the caller wait, where a
/// Mac refuses.
class StageLocalSockets final : public platform::LocalSockets {
 public:
  explicit StageLocalSockets(const StageRoot& root) : root_(root) {}

  [[nodiscard]] bool accepts(const std::string& path) override;

 private:
  const StageRoot root_;
};

}  // namespace tamo::stage
