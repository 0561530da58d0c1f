#pragma once

#include <optional>

#include "platform/local_sockets.hpp"
#include "platform/posix/descriptor.hpp"

struct sockaddr_un;

namespace tamo::platform {

/// The address of a stream socket; absent when the path does not fit the host's form. That is 104 bytes with
/// the closing zero on a Mac and 108 on Linux, so a caller that wants the same answer everywhere looks first.
[[nodiscard]] std::optional<sockaddr_un> socketAddress(const std::string& path);

/// A new stream socket, closed in every tool. Owns nothing when the host gives none.
[[nodiscard]] Descriptor localStreamSocket();

/// A connection to the listener at `path`; owns nothing when there is none. On Linux it
/// blocks while the listener's backlog is full.
[[nodiscard]] Descriptor connectedTo(const std::string& path);

/// Sockets on the host's own paths.
class PosixLocalSockets final : public LocalSockets {
 public:
  [[nodiscard]] bool accepts(const std::string& path) override;
};

}  // namespace tamo::platform
