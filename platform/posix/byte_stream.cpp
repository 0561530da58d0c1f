#include "platform/posix/byte_stream.hpp"

#include <algorithm>

namespace tamo::platform {

/// What is beyond the limit is read as well, and dropped: a writer whose pipe is full waits, and would never
/// end.
std::optional<std::string> readToEnd(int descriptor, std::size_t limit, std::size_t size) {
  std::string kept;
  std::array<char, 65536> portion;
  for (;;) {
    const auto count = uninterrupted([&] { return ::read(descriptor, portion.data(), portion.size()); });
    if (count < 0) return std::nullopt;
    if (count == 0) return kept;
    kept.append(portion.data(), std::min(static_cast<std::size_t>(count), limit - kept.size()));
    if (kept.size() == size) return kept;
  }
}

/// A call may take less than it is given, as a pipe that is nearly full does.
bool writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto count = uninterrupted([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
    if (count < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace tamo::platform
