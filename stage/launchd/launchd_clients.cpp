#include "stage/launchd/launchd_clients.hpp"

#include <array>
#include <chrono>
#include <sys/socket.h>

#include "platform/stage/launchd_wire.hpp"

namespace tamo::stage {
namespace {

short eventsOf(int descriptor, const std::vector<pollfd>& polled) {
  for (const auto& entry : polled)
    if (entry.fd == descriptor) return entry.revents;
  return 0;
}

bool wouldBlock() {
  return errno == EAGAIN || errno == EWOULDBLOCK;
}

}  // namespace

void LaunchdClients::addTo(std::vector<pollfd>& polled) const {
  if (listening_) polled.push_back({.fd = listening_.get(), .events = POLLIN, .revents = 0});
  for (const auto& [number, client] : clients_) {
    // One who waits for an answer is watched for hanging up only, which is always reported.
    short events = 0;
    if (!client.asked) events = POLLIN;
    if (client.answered) events = POLLOUT;
    polled.push_back({.fd = client.socket.get(), .events = events, .revents = 0});
  }
}

void LaunchdClients::serve(const std::vector<pollfd>& polled) {
  // Taken down beforehand: serving a client may end it, and its question may answer others.
  std::vector<std::uint64_t> numbers;
  numbers.reserve(clients_.size());
  for (const auto& [number, client] : clients_)
    numbers.push_back(number);
  for (const auto number : numbers)
    serveClient(number, eventsOf(clients_.at(number).socket.get(), polled));
  // Last, because what newcomers are polled for is known only from the next turn on.
  if (listening_ && eventsOf(listening_.get(), polled) != 0) accept();
}

/// Who still waits for an answer gets none: what it would tell ends with the stage.
void LaunchdClients::finish() {
  listening_.close();
  std::erase_if(clients_, [](const auto& entry) { return !entry.second.answered; });
  // One who does not take his answer must not keep launchd from ending.
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
  while (!clients_.empty() && std::chrono::steady_clock::now() < end) {
    std::vector<pollfd> polled;
    addTo(polled);
    ::poll(polled.data(), polled.size(), 100);
    serve(polled);
  }
}

void LaunchdClients::accept() {
  for (;;) {
    platform::Descriptor socket(::accept4(listening_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!socket) return;
    clients_[next_++].socket = std::move(socket);
  }
}

void LaunchdClients::serveClient(std::uint64_t number, short events) {
  if (events == 0) return;
  auto& client = clients_.at(number);
  bool stays = true;
  if (!client.asked) {
    stays = read(number, client);
  } else if (client.answered) {
    stays = write(client);
  } else {
    // Whoever hangs up is forgotten; what he asked for goes on, and its answer finds nobody.
    stays = (events & (POLLHUP | POLLERR)) == 0;
  }
  if (!stays) clients_.erase(number);
}

/// One who hangs up before the question is whole has asked nothing.
bool LaunchdClients::read(std::uint64_t number, Client& client) {
  std::array<char, 4096> bytes;
  const auto size =
      platform::uninterrupted([&] { return ::recv(client.socket.get(), bytes.data(), bytes.size(), 0); });
  if (size < 0) return wouldBlock();
  if (size == 0) return false;
  client.question.append(bytes.data(), static_cast<std::size_t>(size));
  const auto words = wordsOf(client.question);
  if (!words) return true;
  client.asked = true;
  handler_(*words, [this, number](const LaunchdAnswer& given) { answer(number, given); });
  return true;
}

/// As much as the socket takes; the rest goes when it takes more. A client that has gone is no reason for launchd to
/// die of a broken pipe.
bool LaunchdClients::write(Client& client) {
  const auto sent = platform::uninterrupted(
      [&] { return ::send(client.socket.get(), client.answer.data(), client.answer.size(), MSG_NOSIGNAL); });
  if (sent < 0) return wouldBlock();
  client.answer.erase(0, static_cast<std::size_t>(sent));
  return !client.answer.empty();
}

void LaunchdClients::answer(std::uint64_t number, const LaunchdAnswer& answer) {
  const auto client = clients_.find(number);
  if (client == clients_.end()) return;
  client->second.answer = bytesOf(answer);
  client->second.answered = true;
}

}  // namespace tamo::stage
