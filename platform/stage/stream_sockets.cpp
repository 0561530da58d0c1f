#include "platform/stage/stream_sockets.hpp"

#include <cstring>
#include <fcntl.h>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

#include "values/paths.hpp"

namespace tamo::stage {
namespace {

using platform::Descriptor;

const sockaddr* generic(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

Descriptor folderOf(const std::string& path) {
  const std::string folder(values::parentPath(path));
  return Descriptor(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

/// How a socket is named to the kernel. An address has room for 107 bytes: what is longer is named through the
/// descriptor of its folder, which has to stay open as long.
struct Address {
  sockaddr_un form{};
  Descriptor folder{};
};

bool fill(sockaddr_un& form, const std::string& path) {
  form.sun_family = AF_UNIX;
  if (path.size() >= sizeof form.sun_path) return false;
  std::memcpy(form.sun_path, path.c_str(), path.size() + 1);
  return true;
}

/// Absent without the folder, or when even the name alone is too long.
std::optional<Address> addressOf(const std::string& path) {
  Address address;
  if (fill(address.form, path)) return address;
  address.folder = folderOf(path);
  const auto nearPath = "/proc/self/fd/" + std::to_string(address.folder.get()) + "/" +
                        std::string(values::lastComponent(path));
  if (!address.folder || !fill(address.form, nearPath)) return std::nullopt;
  return address;
}

bool isBound(const Descriptor& socket, const sockaddr_un& address) {
  return ::bind(socket.get(), generic(address), sizeof address) == 0;
}

}  // namespace

Descriptor connectedTo(const std::string& path, FullBacklog when) {
  const auto address = addressOf(path);
  if (!address) return {};
  const int waits = when == FullBacklog::Refuses ? SOCK_NONBLOCK : 0;
  Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | waits, 0));
  if (!socket) return {};
  const auto result = platform::uninterrupted(
      [&] { return ::connect(socket.get(), generic(address->form), sizeof address->form); });
  return result == 0 ? std::move(socket) : Descriptor();
}

Descriptor listeningAt(const std::string& path) {
  const auto address = addressOf(path);
  if (!address) return {};
  Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!socket) return {};
  // A socket that a killed process has left behind would keep its successor from binding. Nothing there is the usual
  // case.
  if (!isBound(socket, address->form)) {
    ::unlink(path.c_str());
    if (!isBound(socket, address->form)) return {};
  }
  if (::listen(socket.get(), SOMAXCONN) != 0) return {};
  return socket;
}

}  // namespace tamo::stage
