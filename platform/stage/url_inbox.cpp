#include "platform/stage/url_inbox.hpp"

#include <array>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

#include "platform/posix/posix_files.hpp"
#include "platform/stage/stream_sockets.hpp"
#include "values/fatal.hpp"
#include "values/text.hpp"

namespace tamo::stage {
namespace {

using platform::Descriptor;

/// The folder is there but for the first companion of a stage. Should it not be to be had, that is told.
Descriptor listening(const StageRoot& root, const std::string& path) {
  auto listener = listeningAt(path);
  if (listener || !platform::posix::createDirectories(root.control("companions"))) return listener;
  return listeningAt(path);
}

}  // namespace

std::vector<std::string> urlsIn(std::string_view lines) {
  std::vector<std::string> urls;
  for (std::optional rest(lines); rest;) {
    const auto line = values::takeLine(rest);
    if (!line.empty()) urls.emplace_back(line);
  }
  return urls;
}

/// A name for each process, so that a sender can choose among companions and what a killed one left is in nobody's
/// way. A companion that nobody can reach would look like one that ignores what it is sent.
UrlInbox::UrlInbox(const StageRoot& root)
    : path_(root.control("companions/" + std::to_string(::getpid()) + ".sock")),
      listener_(listening(root, path_)) {
  if (!listener_) values::fatal("no URLs can be received at " + path_);
}

UrlInbox::~UrlInbox() {
  ::unlink(path_.c_str());
}

/// All of them, as a sender that stays silent must not keep the others waiting.
std::vector<int> UrlInbox::descriptors() const {
  std::vector<int> all{listener_.get()};
  for (const auto& sender : senders_)
    all.push_back(sender.connection.get());
  return all;
}

std::vector<std::vector<std::string>> UrlInbox::receive() {
  acceptSenders();
  std::vector<std::vector<std::string>> deliveries;
  for (auto& sender : senders_) {
    readFrom(sender);
    if (auto urls = urlsIn(sender.text); sender.finished && !urls.empty())
      deliveries.push_back(std::move(urls));
  }
  std::erase_if(senders_, [](const Sender& sender) { return sender.finished; });
  return deliveries;
}

void UrlInbox::acceptSenders() {
  for (;;) {
    Descriptor connection(::accept4(listener_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!connection) return;
    senders_.push_back({.connection = std::move(connection), .text = {}});
  }
}

void UrlInbox::readFrom(Sender& sender) {
  std::array<char, 4096> portion;
  for (;;) {
    const auto count = platform::uninterrupted(
        [&] { return ::read(sender.connection.get(), portion.data(), portion.size()); });
    if (count < 0 && errno == EAGAIN) return;
    // A connection that breaks counts as closed: what came over it is delivered.
    if (count <= 0) {
      sender.finished = true;
      return;
    }
    sender.text.append(portion.data(), static_cast<std::size_t>(count));
  }
}

}  // namespace tamo::stage
