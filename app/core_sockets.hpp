#pragma once

#include <optional>
#include <string>

#include "platform/local_sockets.hpp"

namespace tamo {

/// Whether a running Core takes connections on one of its sockets in the data directory: "core.sock", then
/// "talk.sock". False without a data directory. A path that does not fit macOS's socket address with its
/// closing zero byte is passed over, not cut. No time limit is set (see
/// LocalSockets).
[[nodiscard]] bool coreAnswers(platform::LocalSockets& sockets,
                               const std::optional<std::string>& dataDirectory);

}  // namespace tamo
