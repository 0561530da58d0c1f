#include "platform/stage/launchd_wire.hpp"

#include <sys/socket.h>

#include "platform/posix/byte_stream.hpp"
#include "platform/posix/descriptor.hpp"
#include "platform/stage/stream_sockets.hpp"
#include "values/text.hpp"

namespace tamo::stage {
namespace {

bool sendAll(int socket, std::string_view bytes) {
  while (!bytes.empty()) {
    // Not write(): a launchd that goes away must not take its asker with it by SIGPIPE.
    const auto sent =
        platform::uninterrupted([&] { return ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL); });
    if (sent < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

/// A zero byte closes each text, as the kernel keeps arguments: none can hold one.
std::string closed(std::string text) {
  text.push_back('\0');
  return text;
}

/// Takes a text off the front; absent when its end has not come yet.
std::optional<std::string_view> takeText(std::string_view& rest) {
  const auto end = rest.find('\0');
  if (end == std::string_view::npos) return std::nullopt;
  const auto text = rest.substr(0, end);
  rest.remove_prefix(end + 1);
  return text;
}

}  // namespace

/// Both sides see by the bytes that a question or an answer is whole, and wait for no end of the connection: each wait
/// would be one more process that has to be woken. There is no limit here: the answer to a kickstart comes when the old
/// process has ended, however long its exit timeout is.
std::optional<LaunchdAnswer> askLaunchd(const StageRoot& root, const std::vector<std::string>& words) {
  const auto socket = connectedTo(root.control("launchd.sock"));
  if (!socket || !sendAll(socket.get(), bytesOf(words))) return std::nullopt;
  return platform::readUntilWhole(socket.get(), answerOf);
}

std::optional<std::vector<std::string>> wordsOf(std::string_view question) {
  const auto count = takeText(question);
  const auto number = count ? values::decimalInt32(*count) : std::nullopt;
  if (!number) return std::nullopt;
  std::vector<std::string> words;
  for (auto left = *number; left > 0; --left) {
    const auto word = takeText(question);
    if (!word) return std::nullopt;
    words.emplace_back(*word);
  }
  return words;
}

std::string bytesOf(const std::vector<std::string>& words) {
  auto bytes = closed(std::to_string(words.size()));
  for (const auto& word : words)
    bytes += closed(word);
  return bytes;
}

/// An answer that launchd's end has cut off is none, for half of one would read as another.
std::optional<LaunchdAnswer> answerOf(std::string_view bytes) {
  const auto number = takeText(bytes);
  const auto output = takeText(bytes);
  const auto errors = takeText(bytes);
  const auto status = number ? values::decimalInt32(*number) : std::nullopt;
  if (!status || !output || !errors) return std::nullopt;
  return LaunchdAnswer{.status = *status, .output = std::string(*output), .errors = std::string(*errors)};
}

std::string bytesOf(const LaunchdAnswer& answer) {
  return closed(std::to_string(answer.status)) + closed(answer.output) + closed(answer.errors);
}

}  // namespace tamo::stage
