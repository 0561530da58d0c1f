#include "contract/fake_launchd.hpp"

#include <poll.h>
#include <sys/socket.h>
#include <utility>

#include "platform/posix/byte_stream.hpp"
#include "platform/posix/descriptor.hpp"
#include "platform/stage/stream_sockets.hpp"
#include "values/fatal.hpp"

namespace tamo::contract {

using platform::Descriptor;

FakeLaunchd::FakeLaunchd(const stage::StageRoot& root, Answering answering)
    : root_(root), answering_(std::move(answering)) {
  auto listener = stage::listeningAt(root_.control("launchd.sock"));
  if (!listener) values::fatal("the test's launchd cannot listen");
  thread_ = std::thread([this, number = listener.release()] {
    const Descriptor owned(number);
    serve(owned.get());
  });
}

FakeLaunchd::~FakeLaunchd() {
  static_cast<void>(stage::askLaunchd(root_, {"shutdown"}));
  thread_.join();
}

void FakeLaunchd::serve(int listener) {
  for (;;) {
    pollfd source{.fd = listener, .events = POLLIN, .revents = 0};
    ::poll(&source, 1, -1);
    const Descriptor asker(::accept(listener, nullptr, nullptr));
    const auto words =
        platform::readUntilWhole(asker.get(), stage::wordsOf).value_or(std::vector<std::string>());
    const bool last = words == std::vector<std::string>{"shutdown"};
    const auto answer = last ? stage::LaunchdAnswer{} : answering_(words);
    static_cast<void>(platform::writeAll(asker.get(), stage::bytesOf(answer)));
    if (last) return;
  }
}

}  // namespace tamo::contract
