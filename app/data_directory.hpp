#pragma once

#include <optional>
#include <string>

#include "app/tamo_core_config.hpp"
#include "platform/user.hpp"

namespace tamo {

/// The product's data directory of the real user, always with a "/" at its end, so that callers append a bare
/// file name. Computed only: nothing is looked at or created, and a proofHome with a "/" at its end gives a
/// double one. Absent when the user database has no entry, also with a proofHome. An entry without a home
/// stops the process (fatal), except with a proofHome, which takes its place. Any thread.
[[nodiscard]] std::optional<std::string> dataDirectory(const platform::User& user,
                                                       const TamoCoreConfig& config);

/// The home of the user's password entry. For callers that cannot go on without it: no entry, or an entry
/// without a home, stops the process (fatal).
[[nodiscard]] std::string passwordHome(const platform::User& user);

}  // namespace tamo
