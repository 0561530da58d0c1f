#include "app/core_sockets.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace tamo {
namespace {

constexpr std::array<std::string_view, 2> socketNames{"core.sock", "talk.sock"};

/// The path field of a local socket's address on macOS, which the closing zero byte must fit as well.
constexpr std::size_t addressPathBytes = 104;

}  // namespace

bool coreAnswers(platform::LocalSockets& sockets, const std::optional<std::string>& dataDirectory) {
  if (!dataDirectory) return false;
  return std::any_of(socketNames.begin(), socketNames.end(), [&](std::string_view name) {
    const auto path = *dataDirectory + std::string(name);
    return path.size() + 1 <= addressPathBytes && sockets.accepts(path);
  });
}

}  // namespace tamo
