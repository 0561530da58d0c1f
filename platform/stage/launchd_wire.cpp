#include "platform/stage/launchd_wire.hpp"

#include <limits>
#include <string_view>
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

}  // namespace

/// The end of the question is the end of the half connection, and launchd's end is that of the answer; so neither
/// needs a length in front. There is no limit here: the answer to a kickstart comes when the old process has ended,
/// however long its exit timeout is.
std::optional<LaunchdAnswer> askLaunchd(const StageRoot& root, const std::vector<std::string>& words) {
  const auto socket = connectedTo(root.control("launchd.sock"));
  if (!socket || !sendAll(socket.get(), bytesOf(words))) return std::nullopt;
  ::shutdown(socket.get(), SHUT_WR);
  const auto bytes = platform::readToEnd(socket.get(), std::numeric_limits<std::size_t>::max());
  return bytes ? answerOf(*bytes) : std::nullopt;
}

/// Each word is closed by a zero byte, as the kernel keeps arguments: no word can hold one.
std::vector<std::string> wordsOf(const std::string& question) {
  std::vector<std::string> words;
  for (std::size_t start = 0; start < question.size();) {
    const auto end = std::min(question.find('\0', start), question.size());
    words.push_back(question.substr(start, end - start));
    start = end + 1;
  }
  return words;
}

std::string bytesOf(const std::vector<std::string>& words) {
  std::string bytes;
  for (const auto& word : words)
    bytes.append(word).push_back('\0');
  return bytes;
}

/// An answer that launchd's end has cut off is none, for half of one would read as another.
std::optional<LaunchdAnswer> answerOf(const std::string& bytes) {
  const auto output = bytes.find('\0');
  if (output == std::string::npos) return std::nullopt;
  const auto errors = bytes.find('\0', output + 1);
  const auto status = values::decimalInt32(std::string_view(bytes).substr(0, output));
  if (errors == std::string::npos || !status) return std::nullopt;
  return LaunchdAnswer{.status = *status,
                       .output = bytes.substr(output + 1, errors - output - 1),
                       .errors = bytes.substr(errors + 1)};
}

std::string bytesOf(const LaunchdAnswer& answer) {
  auto bytes = std::to_string(answer.status);
  bytes.push_back('\0');
  bytes += answer.output;
  bytes.push_back('\0');
  return bytes + answer.errors;
}

}  // namespace tamo::stage
