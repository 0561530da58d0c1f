#include "contract/fake_launchd.hpp"

#include <array>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

#include "platform/posix/byte_stream.hpp"
#include "platform/posix/descriptor.hpp"
#include "platform/stage/stream_sockets.hpp"
#include "values/fatal.hpp"

namespace tamo::contract {

using platform::Descriptor;

namespace {

/// The question, or no words from one who hangs up before it is whole.
std::vector<std::string> heard(int asker) {
  std::string question;
  std::array<char, 4096> portion;
  for (;;) {
    const auto count = ::read(asker, portion.data(), portion.size());
    if (count <= 0) return {};
    question.append(portion.data(), static_cast<std::size_t>(count));
    if (auto words = stage::wordsOf(question)) return *words;
  }
}

}  // namespace

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
    const auto words = heard(asker.get());
    const bool last = words == std::vector<std::string>{"shutdown"};
    const auto answer = last ? stage::LaunchdAnswer{} : answering_(words);
    static_cast<void>(platform::writeAll(asker.get(), stage::bytesOf(answer)));
    if (last) return;
  }
}

}  // namespace tamo::contract
