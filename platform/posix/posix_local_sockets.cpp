#include "platform/posix/posix_local_sockets.hpp"

#include <algorithm>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace tamo::platform {

/// The closing zero has to fit, too. A path that is cut would lead to another socket.
std::optional<sockaddr_un> socketAddress(const std::string& path) {
  sockaddr_un address{};
  if (path.size() >= sizeof address.sun_path) return std::nullopt;
  address.sun_family = AF_UNIX;
  std::copy(path.begin(), path.end(), address.sun_path);
  return address;
}

/// A Mac's call has no flag for closing on exec, so that is set by another.
Descriptor localStreamSocket() {
  Descriptor made(::socket(AF_UNIX, SOCK_STREAM, 0));
  if (made) ::fcntl(made.get(), F_SETFD, FD_CLOEXEC);
  return made;
}

Descriptor connectedTo(const std::string& path) {
  const auto address = socketAddress(path);
  auto made = localStreamSocket();
  if (!address || !made) return {};
  const auto* form = reinterpret_cast<const sockaddr*>(&*address);
  const int result = uninterrupted([&] { return ::connect(made.get(), form, sizeof *address); });
  if (result != 0) return {};
  return made;
}

/// A file at the path tells nothing: a process that was killed leaves its socket behind. So it is tried.
bool PosixLocalSockets::accepts(const std::string& path) {
  return static_cast<bool>(connectedTo(path));
}

}  // namespace tamo::platform
