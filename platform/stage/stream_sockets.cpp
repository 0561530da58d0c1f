#include "platform/stage/stream_sockets.hpp"

#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

#include "values/paths.hpp"

namespace tamo::stage {
namespace {

using platform::Descriptor;

Descriptor folderOf(const std::string& path) {
  const std::string folder(values::parentPath(path));
  return Descriptor(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

/// The address names the socket through the descriptor of its folder, which keeps it short. False when even the name
/// alone is too long. A played path may be as long as a Mac's sockets allow, however deep the stage in front of it
/// lies.
bool fill(sockaddr_un& address, const Descriptor& folder, const std::string& path) {
  address = {};
  address.sun_family = AF_UNIX;
  const auto nearPath =
      "/proc/self/fd/" + std::to_string(folder.get()) + "/" + std::string(values::lastComponent(path));
  if (nearPath.size() >= sizeof address.sun_path) return false;
  std::memcpy(address.sun_path, nearPath.c_str(), nearPath.size() + 1);
  return true;
}

const sockaddr* generic(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

}  // namespace

Descriptor connectedTo(const std::string& path, FullBacklog when) {
  const auto folder = folderOf(path);
  sockaddr_un address;
  if (!folder || !fill(address, folder, path)) return {};
  const int waits = when == FullBacklog::Refuses ? SOCK_NONBLOCK : 0;
  Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | waits, 0));
  if (!socket) return {};
  const auto result =
      platform::uninterrupted([&] { return ::connect(socket.get(), generic(address), sizeof address); });
  return result == 0 ? std::move(socket) : Descriptor();
}

Descriptor listeningAt(const std::string& path) {
  const auto folder = folderOf(path);
  sockaddr_un address;
  if (!folder || !fill(address, folder, path)) return {};
  Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!socket) return {};
  // A socket that a killed process has left behind would keep its successor from binding. Nothing there is the usual
  // case.
  ::unlink(path.c_str());
  if (::bind(socket.get(), generic(address), sizeof address) != 0) return {};
  if (::listen(socket.get(), SOMAXCONN) != 0) return {};
  return socket;
}

}  // namespace tamo::stage
