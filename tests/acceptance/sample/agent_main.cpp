#include <fcntl.h>
#include <iostream>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

#include "platform/posix/posix_files.hpp"
#include "platform/posix/posix_local_sockets.hpp"
#include "stage/core/core_program.hpp"

namespace {

using tamo::platform::Descriptor;

Descriptor listeningAt(const std::string& path) {
  const auto address = tamo::platform::socketAddress(path);
  auto socket = tamo::platform::localStreamSocket();
  if (!address || !socket) return {};
  // Nothing there is the usual case.
  ::unlink(path.c_str());
  const auto* form = reinterpret_cast<const sockaddr*>(&*address);
  const bool listens = ::bind(socket.get(), form, sizeof *address) == 0 && ::listen(socket.get(), 16) == 0 &&
                       ::fcntl(socket.get(), F_SETFL, O_NONBLOCK) == 0;
  return listens ? std::move(socket) : Descriptor();
}

/// Which of two builds this is, so that an executable can be changed for another that behaves alike.
constexpr auto build = TAMO_AGENT_BUILD;

}  // namespace

/// The sample's Core, which is that of a stage. How it behaves stands in the file "core" of the folder "acceptance" in
/// the data directory; what happens to it goes to "core.log" there. Without the folder it ends at once.
int main() {
  const auto* user = ::getpwuid(::getuid());
  if (user == nullptr || user->pw_dir == nullptr) return 78;
  const auto data = std::string(user->pw_dir) + "/Library/Application Support/Tamo";
  const auto folder = data + "/acceptance";
  const int log = ::open((folder + "/core.log").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
  if (log < 0) return 78;
  ::dup2(log, STDOUT_FILENO);
  ::close(log);
  const auto words = tamo::platform::posix::readWhole(folder + "/core").value_or("");
  const auto behaviour = tamo::stage::coreBehaviour(words);
  if (!behaviour) {
    std::cout << "core: \"" << behaviour.error() << "\" is no behaviour of the " << build << " build"
              << std::endl;
    return 64;
  }
  return tamo::stage::runCore({.dataDirectory = data, .presence = folder, .listen = listeningAt}, *behaviour);
}
